// korvex_benchmarks [--brief] [--core-text=BYTES] [--benchmark_OPTION...]: measures and prints the
// table. --brief runs everything once, shortly, and judges nothing; the size of the core's text is
// for who built it to know. The other options are Google Benchmark's own.
#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include "benchmarks/Figures.h"
#include "benchmarks/Measuring.h"

namespace {

using korvex::benchmarks::Figures;

// What Google Benchmark is told before the user's own options. Repetitions of all benchmarks take
// turns, so that what slows the machine down for a while slows all of them down; they are many and
// short, so that some of each are not disturbed.
std::vector<std::string> optionsFor(bool brief) {
  if (brief) return {"--benchmark_min_time=0.001"};
  return {"--benchmark_min_time=0.02", "--benchmark_repetitions=31", "--benchmark_enable_random_interleaving=true"};
}

// Takes the options that are not Google Benchmark's out of the arguments.
bool takeBrief(std::vector<std::string>& arguments) { return std::erase(arguments, "--brief") > 0; }

void takeCoreText(std::vector<std::string>& arguments, Figures& figures) {
  constexpr std::string_view option = "--core-text=";
  std::erase_if(arguments, [&](const std::string& argument) {
    if (!argument.starts_with(option)) return false;
    figures["core/text"] = std::stod(argument.substr(option.size()));
    return true;
  });
}

// By how much `many` costs more than `few`, if both were measured.
void addGrowth(Figures& figures, const char* name, const char* many, const char* few) {
  if (figures.contains(many) && figures.contains(few)) figures[name] = figures[many] / figures[few];
}

// The arguments must outlive the benchmarks.
void initialize(const char* program, bool brief, std::vector<std::string>& arguments) {
  const std::vector<std::string> defaults = optionsFor(brief);
  arguments.insert(arguments.begin(), defaults.begin(), defaults.end());
  arguments.emplace(arguments.begin(), program);
  std::vector<char*> pointers;
  std::transform(arguments.begin(), arguments.end(), std::back_inserter(pointers),
                 [](std::string& argument) { return argument.data(); });
  pointers.push_back(nullptr);
  int count = static_cast<int>(arguments.size());
  benchmark::Initialize(&count, pointers.data());
  if (benchmark::ReportUnrecognizedArguments(count, pointers.data())) std::exit(2);
}

}  // namespace

int main(int argc, char** argv) {
  if (korvex::benchmarks::measuredFirstLoad(argc, argv)) return 0;
  Figures figures{{"goal/references", 400e6}, {"goal/text", 130e3}, {"goal/second", 1.0}};
  std::vector<std::string> arguments(argv + 1, argv + argc);
  const bool brief = takeBrief(arguments);
  takeCoreText(arguments, figures);
  initialize(argv[0], brief, arguments);

  korvex::benchmarks::measureHeap(figures);
  korvex::benchmarks::registerLoading();
  korvex::benchmarks::registerTexts();
  korvex::benchmarks::registerPacking();
  korvex::benchmarks::registerServing();
  korvex::benchmarks::registerEngine();
  korvex::benchmarks::registerVerifying();
  korvex::benchmarks::FigureCollector collector(figures);
  if (benchmark::RunSpecifiedBenchmarks(&collector) == 0 || collector.failed()) return 1;
  addGrowth(figures, "growth/load", "load/fast", "load/definitions/60");
  addGrowth(figures, "growth/pugixml", "parse/pugixml", "parse/pugixml/60");
  korvex::benchmarks::measureFirstLoads(figures, brief);
  korvex::benchmarks::printTable(std::cout, figures, !brief);
}
