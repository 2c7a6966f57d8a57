// Texts with and without list references.
#include <cstring>
#include <string>

#include "benchmarks/Documents.h"
#include "benchmarks/Measuring.h"

namespace korvex::benchmarks {

namespace {

// Large enough that the clock does not count, small enough for the cache.
constexpr std::size_t textBytes = 256 * 1024;

// Each iteration works on a copy that was just made, outside the clock.
template <typename Work>
void timeOnCopies(benchmark::State& state, const std::string& text, Work work) {
  OptionalString copy;
  for ([[maybe_unused]] auto iteration : state) {
    copy = text;
    const auto begin = std::chrono::steady_clock::now();
    work(copy);
    const auto end = std::chrono::steady_clock::now();
    state.SetIterationTime(std::chrono::duration<double>(end - begin).count());
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * text.size()));
}

template <typename Work>
void registerText(const char* name, const std::string& text, Work work) {
  benchmark::RegisterBenchmark(name, [text, work](benchmark::State& state) { timeOnCopies(state, text, work); })
      ->UseManualTime()
      ->MinTime(timeOfSmallPart);
}

void expand(OptionalString& text) {
  QXDAOText element;
  element.initWithText(std::move(text));
  benchmark::DoNotOptimize(element);
}

void search(OptionalString& text) { benchmark::DoNotOptimize(std::memchr(text->data(), '%', text->size())); }

bool expandsTo(const std::string& text, std::string_view beginning) {
  QXDAOText element;
  element.initWithText(text);
  return element.expression()->starts_with(beginning);
}

}  // namespace

void registerTexts() {
  const std::string plain = plainText(textBytes);
  const std::string references = referencesAlone(textBytes);
  require(expandsTo(plain, plain), "a text without references was changed");
  require(expandsTo(references, "p.id, p.given_name, p.family_namep.id"), "references were not expanded");
  registerText("text/plain", plain, expand);
  registerText("memchr", plain, search);
  registerText("text/references", references, expand);
}

}  // namespace korvex::benchmarks
