// Skips strings, quoted names and comments in SQL.
#pragma once
#include <array>
#include <cstddef>
#include <string_view>

#include "korvex/QXDAOPackReader.h"

namespace korvex {

enum class SqlPiece { Code, Quoted, Comment };

struct SqlStretch {
  SqlPiece piece = SqlPiece::Code;
  std::size_t end = 0;
};

// Divides a text from its beginning on.
class SqlStretches {
 public:
  explicit SqlStretches(std::string_view sql) : _sql(sql) {}

  // The string, quoted name or comment that begins there, and where it ends; else one character of code. A quote that
  // is not closed is code, since it may be closed in another text.
  [[nodiscard]] SqlStretch at(std::size_t begin);

 private:
  static constexpr std::size_t delimiters = 6;

  std::string_view _sql;
  std::array<bool, delimiters> _notClosed{};  // from there on, to avoid repeated searches
};

}  // namespace korvex
