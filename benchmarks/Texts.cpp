// Texts with and without list references.
#include <cstring>
#include <memory>
#include <string>

#include "benchmarks/Documents.h"
#include "benchmarks/Measuring.h"
#include "korvex/QXDAOText.h"

namespace korvex::benchmarks {

namespace {

// Large enough that the clock does not count, small enough for the cache.
constexpr std::size_t textBytes = 256 * 1024;

template <typename Work>
void registerText(const char* name, const std::string& text, Work work) {
  benchmark::RegisterBenchmark(name, [text, work](benchmark::State& state) {
    for ([[maybe_unused]] auto iteration : state) work(text);
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * text.size()));
  });
}

// The search for list references alone: a text without one stays the element's, so it is set once.
void registerSearch(const char* name, const std::string& text) {
  const auto element = std::make_shared<QXDAOText>();
  element->initWithText(text);
  registerText(name, text, [element](const std::string& /*text*/) {
    element->processText();
    benchmark::DoNotOptimize(element->expression());
  });
}

void makeElement(const std::string& text) {
  QXDAOText element;
  element.initWithText(text);
  benchmark::DoNotOptimize(element);
}

void findPercent(const std::string& text) { benchmark::DoNotOptimize(std::memchr(text.data(), '%', text.size())); }

void copy(const std::string& text) {
  std::string copied(text);
  benchmark::DoNotOptimize(copied);
}

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
  registerSearch("text/search", plain);
  registerText("memchr", plain, findPercent);
  registerText("text/plain", plain, makeElement);
  registerText("copy", plain, copy);
  registerText("text/references", references, makeElement);
}

}  // namespace korvex::benchmarks
