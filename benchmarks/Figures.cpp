#include "benchmarks/Figures.h"

#include <algorithm>
#include <array>
#include <iomanip>
#include <iostream>
#include <sstream>
#include <string_view>

#include "korvex/QXDAOPackReader.h"

namespace korvex::benchmarks {

namespace {

enum class Unit { Seconds, BytesPerSecond, PerSecond, Bytes, Count };

// A goal for the quotient of two figures.
struct Goal {
  enum class Kind { None, AtMost, AtLeast };
  Kind kind = Kind::None;
  double limit = 0;

  [[nodiscard]] bool metBy(double ratio) const { return kind == Kind::AtMost ? ratio <= limit : ratio >= limit; }
};

constexpr Goal none{};
constexpr Goal atMost(double limit) { return {Goal::Kind::AtMost, limit}; }
constexpr Goal atLeast(double limit) { return {Goal::Kind::AtLeast, limit}; }

// One row: two figures of the same unit, and a goal for the first divided by the second.
struct Comparison {
  std::string_view title;
  std::string_view ours;
  std::string_view besideTitle;
  std::string_view beside;
  Unit unit;
  Goal goal;
};

// Ahead of a format by half of its time or more.
constexpr Goal farAhead = atMost(1 / 1.5);
constexpr Goal growth = atMost(105);
constexpr Goal growthOfPack = atMost(10.5);
constexpr Goal answer = atMost(2);

constexpr std::array comparisons{
    Comparison{"1 load, not strict", "load/fast", "pugixml's parse", "parse/pugixml", Unit::Seconds, atMost(4.5)},
    Comparison{"1 load, not strict", "load/fast", "libxml2's parse", "parse/libxml2", Unit::Seconds, atMost(0.7)},
    Comparison{"1 load, not strict", "load/fast", "tinyxml2's parse", "parse/tinyxml2", Unit::Seconds, none},
    Comparison{"1 load, not strict", "load/fast", "Expat's bare pass", "parse/Expat", Unit::Seconds, none},
    Comparison{"1 load, strict", "load/strict", "Expat's bare pass", "parse/Expat", Unit::Seconds, atMost(1.1)},
    Comparison{"1 index", "load/index", "pugixml's parse", "parse/pugixml", Unit::Seconds, atMost(1.5)},
    Comparison{"1 first load of a process", "first/load", "pugixml's", "first/pugixml", Unit::Seconds, atMost(2.5)},
    Comparison{"1 first index of a process", "first/index", "pugixml's", "first/pugixml", Unit::Seconds, none},
    Comparison{"1 destroying", "load/destruction", "the load", "load/fast", Unit::Seconds, atMost(0.15)},

    Comparison{"2 text without %", "text/search:bytes_per_second", "memchr", "memchr:bytes_per_second",
               Unit::BytesPerSecond, atLeast(0.5)},
    Comparison{"2 an element of it", "text/plain:bytes_per_second", "a copy", "copy:bytes_per_second",
               Unit::BytesPerSecond, none},
    Comparison{"2 list references", "text/references:bytes_per_second", "the goal's 400 MB/s", "goal/references",
               Unit::BytesPerSecond, atLeast(1)},

    Comparison{"3 pack", "pack/ours", "written by hand", "pack/hand", Unit::Seconds, atMost(1.25)},
    Comparison{"3 pack", "pack/ours", "protobuf", "pack/protobuf", Unit::Seconds, atMost(1)},
    Comparison{"3 pack", "pack/ours", "MessagePack", "pack/MessagePack", Unit::Seconds, farAhead},
    Comparison{"3 pack", "pack/ours", "BSON", "pack/BSON", Unit::Seconds, farAhead},
    Comparison{"3 pack", "pack/ours", "FlexBuffers", "pack/FlexBuffers", Unit::Seconds, farAhead},
    Comparison{"3 pack", "pack/ours", "CBOR", "pack/CBOR", Unit::Seconds, farAhead},
    Comparison{"3 unpack", "unpack/ours", "protobuf", "unpack/protobuf", Unit::Seconds, atMost(1)},
    Comparison{"3 unpack", "unpack/ours", "MessagePack", "unpack/MessagePack", Unit::Seconds, farAhead},
    Comparison{"3 unpack", "unpack/ours", "BSON", "unpack/BSON", Unit::Seconds, farAhead},
    Comparison{"3 unpack", "unpack/ours", "FlexBuffers", "unpack/FlexBuffers", Unit::Seconds, farAhead},
    Comparison{"3 unpack", "unpack/ours", "CBOR", "unpack/CBOR", Unit::Seconds, farAhead},

    Comparison{"4 100 times the definitions", "growth/load", "pugixml's", "growth/pugixml", Unit::Count, atMost(1)},
    Comparison{"4 10000 fragments", "load/fragments/10000", "100", "load/fragments/100", Unit::Seconds, growth},
    Comparison{"4 10000 references", "load/references/10000", "100", "load/references/100", Unit::Seconds, growth},
    Comparison{"4 10000 columns", "load/columns/10000", "100", "load/columns/100", Unit::Seconds, growth},
    Comparison{"4 pack 250 properties", "pack/wide/250", "25", "pack/wide/25", Unit::Seconds, growthOfPack},
    Comparison{"4 unpack 250 properties", "unpack/wide/250", "25", "unpack/wide/25", Unit::Seconds, growthOfPack},
    Comparison{"4 layout of 250 properties", "layout/wide/250", "25", "layout/wide/25", Unit::Seconds, growthOfPack},

    Comparison{"5 heap held by trees", "heap/trees", "the document", "document/bytes", Unit::Bytes, atMost(3)},
    Comparison{"5 allocations of a load", "heap/allocations", "elements", "document/elements", Unit::Count,
               atMost(0.1)},
    Comparison{"5 heap held by pugixml", "heap/pugixml", "the document", "document/bytes", Unit::Bytes, none},

    Comparison{"6 two threads packing", "pack/threads/threads:2:items_per_second", "one thread",
               "pack/threads/threads:1:items_per_second", Unit::PerSecond, atLeast(1.9)},

    Comparison{"7 text of the core", "core/text", "the goal's 130 KB", "goal/text", Unit::Bytes, atMost(1)},

    Comparison{"8 change and findings", "serve/change", "a check", "serve/check", Unit::Seconds, answer},
    Comparison{"8 completion", "serve/completion", "a check", "serve/check", Unit::Seconds, answer},
    Comparison{"8 hover", "serve/hover", "a check", "serve/check", Unit::Seconds, answer},
    Comparison{"8 symbols", "serve/symbols", "a check", "serve/check", Unit::Seconds, answer},
    Comparison{"8 definition", "serve/definition", "a check", "serve/check", Unit::Seconds, answer},

    Comparison{"9 a select", "engine/select", "sqlite3 by hand", "hand/select", Unit::Seconds, atMost(1.15)},
    Comparison{"9 in a transaction", "engine/selectInTransaction", "by hand", "hand/selectInTransaction", Unit::Seconds,
               atMost(1.6)},
    Comparison{"9 20 objects", "engine/objects", "sqlite3 by hand", "hand/objects", Unit::Seconds, atMost(1.05)},
    Comparison{"9 1000 inserts", "engine/inserts", "sqlite3 by hand", "hand/inserts", Unit::Seconds, atMost(1.3)},

    Comparison{"10 a set", "set/build", "a load", "set/load", Unit::Seconds, atMost(1.25)},
    Comparison{"10 36000 variants", "verify/all", "the goal's second", "goal/second", Unit::Seconds, atMost(1)},
};

struct Scale {
  double atLeast;
  double divisor;
  std::string_view name;
};

// The first scale whose lower bound the value reaches; the last one has none.
std::string scaled(double value, std::initializer_list<Scale> scales) {
  const Scale* scale = scales.begin();
  while (value < scale->atLeast) ++scale;
  const double number = value / scale->divisor;
  std::ostringstream text;
  text << std::fixed << std::setprecision(number < 10 ? 2 : number < 100 ? 1 : 0) << number << scale->name;
  return text.str();
}

std::string written(double value, Unit unit) {
  switch (unit) {
    case Unit::Seconds:
      return scaled(value, {{1e-3, 1e-3, " ms"}, {1e-6, 1e-6, " µs"}, {0, 1e-9, " ns"}});
    case Unit::BytesPerSecond:
      return scaled(value, {{1e10, 1e9, " GB/s"}, {0, 1e6, " MB/s"}});
    case Unit::PerSecond:
      return scaled(value, {{0, 1e6, " million/s"}});
    case Unit::Bytes:
      return scaled(value, {{1e6, 1e6, " MB"}, {0, 1e3, " KB"}});
    case Unit::Count:
      return std::to_string(static_cast<long long>(value));
  }
  return {};
}

std::string shortNumber(double value) {
  std::ostringstream text;
  text << std::setprecision(3) << value;
  return text.str();
}

std::string written(const Goal& goal) {
  if (goal.kind == Goal::Kind::None) return {};
  return (goal.kind == Goal::Kind::AtMost ? "≤ " : "≥ ") + shortNumber(goal.limit);
}

std::string verdict(const Goal& goal, double ratio) {
  if (goal.kind == Goal::Kind::None) return {};
  return goal.metBy(ratio) ? "yes" : "NO";
}

using Cells = std::vector<std::string>;

// The cells of a comparison; none when one of its figures is missing.
Cells cellsOf(const Comparison& comparison, const Figures& figures) {
  const auto ours = figures.find(comparison.ours);
  const auto beside = figures.find(comparison.beside);
  if (ours == figures.end() || beside == figures.end()) return {};
  const double ratio = ours->second / beside->second;
  return {std::string(comparison.title),
          written(ours->second, comparison.unit),
          std::string(comparison.besideTitle),
          written(beside->second, comparison.unit),
          shortNumber(ratio),
          written(comparison.goal),
          verdict(comparison.goal, ratio)};
}

// Characters, not bytes: "µ" and "≤" are one each.
std::size_t widthOf(std::string_view text) {
  return static_cast<std::size_t>(
      std::count_if(text.begin(), text.end(), [](char byte) { return (byte & 0xC0) != 0x80; }));
}

void printRow(std::ostream& out, const Cells& cells, const std::vector<std::size_t>& widths) {
  for (std::size_t at = 0; at < widths.size(); ++at) {
    out << "| " << cells[at] << std::string(widths[at] - widthOf(cells[at]) + 1, ' ');
  }
  out << "|\n";
}

// Without what Google Benchmark adds on the kind of clock.
std::string nameOf(const benchmark::BenchmarkReporter::Run& run) {
  const benchmark::BenchmarkName& name = run.run_name;
  return name.threads.empty() ? name.function_name : name.function_name + '/' + name.threads;
}

}  // namespace

bool FigureCollector::ReportContext(const Context& /*context*/) { return true; }

void FigureCollector::ReportRuns(const std::vector<Run>& runs) {
  for (const Run& run : runs) {
    if (run.error_occurred) {
      std::cerr << run.benchmark_name() << ": " << run.error_message << '\n';
      _failed = true;
    }
    if (run.run_type != Run::RT_Iteration) continue;
    const std::string name = nameOf(run);
    const double seconds = run.real_accumulated_time / static_cast<double>(run.iterations);
    const auto time = _figures.emplace(name, seconds).first;
    time->second = std::min(time->second, seconds);
    for (const auto& [counter, value] : run.counters) {
      double& best = _figures[name + ':' + counter];
      best = std::max(best, value.value);
    }
  }
}

void printTable(std::ostream& out, const Figures& figures, bool judged) {
  std::vector<Cells> rows{{"figure", "ours", "beside it", "", "ratio", "goal", "met"}};
  for (const Comparison& comparison : comparisons) {
    if (Cells cells = cellsOf(comparison, figures); !cells.empty()) rows.push_back(std::move(cells));
  }
  std::vector<std::size_t> widths(rows.front().size() - (judged ? 0 : 1));
  for (const Cells& cells : rows) {
    for (std::size_t at = 0; at < widths.size(); ++at) widths[at] = std::max(widths[at], widthOf(cells[at]));
  }
  Cells rule;
  for (const std::size_t width : widths) rule.emplace_back(width, '-');
  rows.insert(rows.begin() + 1, rule);
  for (const Cells& cells : rows) printRow(out, cells, widths);
}

}  // namespace korvex::benchmarks
