// korvex-dao run: one method on a database.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "tool/RowTable.h"
#include "tool/Tool.h"

namespace korvex {

struct RunOptions {
  std::string definitions;  // a file, a directory, or - for standard input
  std::string method;
  std::vector<std::string> arguments;  // "name=value"
  std::optional<std::string> argumentsFile;
  std::optional<std::string> database;
  std::string table;  // for a method with assignedTable
  RowFormat format = RowFormat::Table;
  bool printSql = false;
  bool write = false;
};

// Prints rows to `console.out`, and the number of rows or changed rows to `console.err`.
[[nodiscard]] ExitCode runMethod(const RunOptions& options, const Console& console);

}  // namespace korvex
