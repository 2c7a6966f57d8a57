// What the benchmarks share.
#pragma once

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <ctime>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "benchmarks/Figures.h"
#include "korvex/Definition.h"
#include "korvex/Document.h"

namespace korvex::benchmarks {

// Ends the program: a figure about wrong results would be worse than none.
inline void require(bool holds, std::string_view what) {
  if (holds) return;
  std::cerr << "korvex_benchmarks: " << what << '\n';
  std::exit(1);
}

// The least time to measure, in seconds, where much more passes outside the clock.
inline constexpr double timeOfSmallPart = 0.002;

// Has malloc join the small blocks that were freed. The first large block that is asked for does so
// anyway: without this the next measurement would pay for what the last one has freed.
inline void settleHeap() {
  constexpr std::size_t large = 100'000;
  void* block = std::malloc(large);
  benchmark::DoNotOptimize(block);
  std::free(block);
}

// The processor time of this thread so far, in seconds.
[[nodiscard]] inline double threadSeconds() {
  timespec time{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

// Times make() alone; what it returns is destroyed outside the clock. For benchmarks that use manual
// time.
template <typename Make>
void timeMaking(benchmark::State& state, Make make) {
  for ([[maybe_unused]] auto iteration : state) {
    settleHeap();
    const double begin = threadSeconds();
    auto made = make();
    benchmark::DoNotOptimize(made);
    state.SetIterationTime(threadSeconds() - begin);
  }
}

// The other way round: times the destruction of what make() returns.
template <typename Make>
void timeDestroying(benchmark::State& state, Make make) {
  for ([[maybe_unused]] auto iteration : state) {
    std::optional made(make());
    benchmark::DoNotOptimize(made);
    const double begin = threadSeconds();
    made.reset();
    state.SetIterationTime(threadSeconds() - begin);
  }
}

struct Loaded {
  std::unique_ptr<Document> document;
  std::vector<Definition> definitions;
};

// From bytes to finished element trees, as an app does at its start; the bytes are copied on the way.
[[nodiscard]] inline Loaded load(std::string_view bytes, bool strict) {
  LoadOptions options;
  options.strict = strict;
  Document::Result read = Document::fromBytes(std::string(bytes), options);
  if (read.error) require(false, read.error->message + " in line " + std::to_string(read.error->position.line));
  std::vector<Definition> definitions = loadDefinitions(*read.document);
  return {std::move(read.document), std::move(definitions)};
}

// The believable document that most figures are about.
[[nodiscard]] const std::string& document();

// Each registers the benchmarks of its file, after it has checked that they give what they should.
void registerLoading();
void registerTexts();
void registerPacking();
void registerServing();
void registerEngine();
void registerVerifying();
// Loads the document once in many processes of this program, each started for one load.
void measureFirstLoads(Figures& figures, bool brief);
// Whether this is such a process; then it has loaded and printed the time.
[[nodiscard]] bool measuredFirstLoad(int argc, char** argv);
// Counts elements, bytes and allocations at once.
void measureHeap(Figures& figures);

}  // namespace korvex::benchmarks
