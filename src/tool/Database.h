// Reads one column of an SQLite database.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace korvex {

struct ColumnQuery {
  std::string path;  // of a file; "file:" and ":memory:" have no special meaning
  std::string table;
  std::string column;
  std::optional<std::string> where;  // an SQL condition on the rows, as the user wrote it
};

struct ColumnCell {
  std::optional<std::int64_t> rowid;  // absent in a view and in a table WITHOUT ROWID
  const char* storage;                // "blob", "null", "text", "integer" or "real"
  std::string_view bytes;             // of a blob; valid until the next row
};

// Visits the rows that meet the condition, in ascending order of their rowids. Returns the error if reading failed; the
// rows visited before are valid. An unknown table or column is an error, and so is a condition with any other SQL.
// Waits for at most a second for a lock of another program.
[[nodiscard]] std::optional<std::string> readColumn(const ColumnQuery& query,
                                                    const std::function<void(const ColumnCell&)>& visit);

}  // namespace korvex
