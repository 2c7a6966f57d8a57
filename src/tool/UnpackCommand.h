// korvex-dao unpack: the contents of packed columns.
#pragma once

#include <optional>
#include <string>

#include "korvex/QXDAOPackReader.h"
#include "tool/Database.h"
#include "tool/Tool.h"

namespace korvex {

enum class UnpackFormat { Table, Json };

// One value from a file or from hexadecimal digits; a column of values if neither is given.
struct UnpackOptions {
  std::optional<std::string> path;
  std::optional<std::string> hex;  // the digits, or "-" for standard input
  ColumnQuery column;
  UnpackFormat format = UnpackFormat::Table;
};

// Prints to `console.out`; the number of rows, and inputs that cannot be read, to `console.err`.
[[nodiscard]] ExitCode runUnpack(const UnpackOptions& options, const Console& console);

}  // namespace korvex
