#include "tool/PackedTable.h"

#include <algorithm>
#include <array>
#include <ostream>

#include "korvex/QXDAOPackReader.h"
#include "tool/VisibleText.h"

namespace korvex {
namespace {

using Line = std::array<std::string, 4>;
using Widths = std::array<std::size_t, 3>;  // the last column ends the line

// A longer cell moves the rest of its line to the right, but not other lines.
constexpr std::size_t maxCellWidth = 40;

// The width in characters.
std::size_t widthOf(std::string_view text) {
  std::size_t width = 0;
  for (; !text.empty(); text.remove_prefix(firstCharacter(text).size())) ++width;
  return width;
}

Line lineOf(const QXDAOPackRecord& record) {
  return {visibleText(record.name), packedTypeName(record.encode), packedContentText(record),
          std::to_string(record.bytes.size()) + " at " + std::to_string(record.bytesOffset)};
}

void widen(Widths& widths, const Line& line) {
  for (std::size_t column = 0; column < widths.size(); ++column) {
    const std::size_t width = widthOf(line[column]);
    if (width <= maxCellWidth) widths[column] = std::max(widths[column], width);
  }
}

void printLine(std::ostream& out, const Line& line, const Widths& widths) {
  out << "  ";
  for (std::size_t column = 0; column < widths.size(); ++column) {
    const std::size_t width = widthOf(line[column]);
    out << line[column] << std::string(widths[column] - std::min(width, widths[column]) + 2, ' ');
  }
  out << line.back() << '\n';
}

void printRecords(std::ostream& out, const std::vector<QXDAOPackRecord>& records) {
  std::vector<Line> lines = {{"property", "type", "value", "bytes at offset"}};
  std::transform(records.begin(), records.end(), std::back_inserter(lines), lineOf);
  Widths widths{};
  for (const Line& line : lines) widen(widths, line);
  for (const Line& line : lines) printLine(out, line, widths);
}

}  // namespace

void printPackedTable(std::ostream& out, const PackedValue& value) {
  if (!value.records.empty()) printRecords(out, value.records);
  if (!value.stop) return;
  out << "  stopped at byte " << value.stop->offset << " of " << value.size << ": " << value.stop->reason << '\n';
}

}  // namespace korvex
