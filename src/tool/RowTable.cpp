#include "tool/RowTable.h"

#include <algorithm>
#include <ostream>
#include <string>
#include <string_view>

#include "sqlite/NumberText.h"
#include "tool/Counted.h"
#include "tool/JsonValues.h"
#include "tool/VisibleText.h"

namespace korvex {
namespace {

using Cells = std::vector<std::string>;

constexpr std::size_t widestCell = 40;  // a wider one moves the rest of its line to the right
constexpr std::size_t longestBlob = 16;

bool isNumber(const Value& value) { return value.type() == ValueType::Integer || value.type() == ValueType::Real; }

std::string plainText(const Value& value) {
  if (isNumber(value)) return textOfNumber(value.view());
  if (const auto text = value.text()) return std::string(*text);
  return sqlOfValue(value.view());
}

// ---------------------------------------------------------------------------------------------
// For people

std::string shownCell(const Value& value) {
  const auto blob = value.blob();
  if (blob && blob->size() > longestBlob) return "(" + counted(blob->size(), "byte") + ")";
  return visibleText(plainText(value));
}

std::size_t columnsOfText(std::string_view text) {
  std::size_t columns = 0;
  while (!text.empty()) {
    const std::string_view character = firstCharacter(text);
    columns += columnsOf(character);
    text.remove_prefix(character.size());
  }
  return columns;
}

Cells namesOf(const Dictionary& row) {
  Cells names;
  for (const Dictionary::Entry& entry : row) names.push_back(visibleText(entry.name));
  return names;
}

Cells cellsOf(const Dictionary& row) {
  Cells cells;
  for (const Dictionary::Entry& entry : row) cells.push_back(shownCell(entry.value));
  return cells;
}

void printCells(std::ostream& out, const Cells& cells, const std::vector<std::size_t>& widths) {
  std::string line;
  for (std::size_t column = 0; column < cells.size(); ++column) {
    const std::size_t width = columnsOfText(cells[column]);
    line += cells[column] + std::string(widths[column] - std::min(width, widths[column]) + 2, ' ');
  }
  line.erase(line.find_last_not_of(' ') + 1);
  out << line << '\n';
}

void printTable(std::ostream& out, const std::vector<Dictionary>& rows) {
  if (rows.empty()) return;
  std::vector<Cells> lines = {namesOf(rows.front())};
  std::transform(rows.begin(), rows.end(), std::back_inserter(lines), cellsOf);
  std::vector<std::size_t> widths(lines.front().size());
  for (const Cells& line : lines) {
    for (std::size_t column = 0; column < widths.size(); ++column) {
      const std::size_t width = columnsOfText(line[column]);
      if (width <= widestCell) widths[column] = std::max(widths[column], width);
    }
  }
  for (const Cells& line : lines) printCells(out, line, widths);
}

// ---------------------------------------------------------------------------------------------
// For programs

void printJson(std::ostream& out, const std::vector<Dictionary>& rows) {
  Json json = Json::array();
  for (const Dictionary& row : rows) json.push_back(jsonOfValue(Value(row)));
  out << jsonText(json) << '\n';
}

// RFC 4180, with line feeds only. NULL is an empty field, empty text is "".
std::string csvText(std::string_view text) {
  if (!text.empty() && text.find_first_of("\",\r\n") == std::string_view::npos) return std::string(text);
  std::string quoted = "\"";
  for (const char character : text) quoted.append(character == '"' ? 2 : 1, character);
  return quoted + '"';
}

void printCsv(std::ostream& out, const std::vector<Dictionary>& rows) {
  if (rows.empty()) return;
  const char* separator = "";
  for (const Dictionary::Entry& entry : rows.front()) {
    out << separator << csvText(entry.name);
    separator = ",";
  }
  out << '\n';
  for (const Dictionary& row : rows) {
    separator = "";
    for (const Dictionary::Entry& entry : row) {
      out << separator << (entry.value.isNull() ? "" : csvText(plainText(entry.value)));
      separator = ",";
    }
    out << '\n';
  }
}

}  // namespace

void printRows(std::ostream& out, const std::vector<Dictionary>& rows, RowFormat format) {
  if (format == RowFormat::Json) return printJson(out, rows);
  return format == RowFormat::Csv ? printCsv(out, rows) : printTable(out, rows);
}

}  // namespace korvex
