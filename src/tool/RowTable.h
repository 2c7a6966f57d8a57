// The rows of a select, for people and for programs.
#pragma once

#include <iosfwd>
#include <vector>

#include "korvex/Value.h"

namespace korvex {

enum class RowFormat { Table, Json, Csv };

// Each row by its columns; all of one select have the same ones. A table and CSV have a line with the columns' names
// first, unless there is no row.
void printRows(std::ostream& out, const std::vector<Dictionary>& rows, RowFormat format);

}  // namespace korvex
