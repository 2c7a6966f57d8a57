// What was measured, by name, and the table that is made of it.
#pragma once
#include <benchmark/benchmark.h>

#include <map>
#include <ostream>
#include <string>
#include <vector>

#include "korvex/QXDAOPackReader.h"

namespace korvex::benchmarks {

// Times in seconds, rates per second, sizes in bytes, numbers as they are.
using Figures = std::map<std::string, double, std::less<>>;

// Takes from each benchmark the best of its repetitions: the least real time of one iteration as
// "name", the maximum of a counter as "name:counter".
class FigureCollector final : public benchmark::BenchmarkReporter {
 public:
  explicit FigureCollector(Figures& figures) : _figures(figures) {}

  bool ReportContext(const Context& context) override;
  void ReportRuns(const std::vector<Run>& runs) override;

  // Whether a benchmark gave up.
  [[nodiscard]] bool failed() const { return _failed; }

 private:
  Figures& _figures;
  bool _failed = false;
};

// Prints the comparisons whose two figures are there as a table in Markdown. Unless judged, the
// column that says whether a goal is met stays out.
void printTable(std::ostream& out, const Figures& figures, bool judged);

}  // namespace korvex::benchmarks
