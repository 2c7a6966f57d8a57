// The rows of a select, for people and for programs.
#pragma once

#include <iosfwd>
#include <vector>

#include "korvex/Value.h"

namespace korvex {

enum class RowFormat { Table, Json, Csv };

// Prints the columns of each row; all rows of a select have the same columns. Tables and CSV begin with a line of
// column names, unless there are no rows.
void printRows(std::ostream& out, const std::vector<Dictionary>& rows, RowFormat format);

}  // namespace korvex
