// One column of an SQLite database, read and never written.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace korvex {

struct ColumnQuery {
  std::string path;  // of a file: no name has a meaning of its own, "file:" and ":memory:" included
  std::string table;
  std::string column;
  std::optional<std::string> where;  // an SQL condition on the rows, as the user wrote it
};

struct ColumnCell {
  std::optional<std::int64_t> rowid;  // absent in a view and in a table WITHOUT ROWID
  const char* storage;                // "blob", "null", "text", "integer" or "real"
  std::string_view bytes;             // of a blob; valid until the next row
};

// Visits the rows that meet the condition, in ascending order of their rowids, and returns why
// reading failed, if it did. Rows visited before that were read well. A name that is no table or
// column is a failure, and so is a condition that is anything but one condition. Another program's
// lock is waited for, a second at the most.
[[nodiscard]] std::optional<std::string> readColumn(const ColumnQuery& query,
                                                    const std::function<void(const ColumnCell&)>& visit);

}  // namespace korvex
