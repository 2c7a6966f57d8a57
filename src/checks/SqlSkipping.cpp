#include "checks/SqlSkipping.h"

namespace korvex {

namespace {

struct Delimiters {
  std::string_view opening;
  std::string_view closing;
  SqlPiece piece;
};

constexpr std::array<Delimiters, 6> rows = {{
    {"'", "'", SqlPiece::Quoted},
    {"\"", "\"", SqlPiece::Quoted},
    {"`", "`", SqlPiece::Quoted},
    {"[", "]", SqlPiece::Quoted},
    {"--", "\n", SqlPiece::Comment},
    {"/*", "*/", SqlPiece::Comment},
}};

}  // namespace

SqlStretch SqlStretches::at(std::size_t begin) {
  static_assert(rows.size() == delimiters);
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const Delimiters& row = rows[i];
    if (_notClosed[i] || !_sql.substr(begin).starts_with(row.opening)) continue;
    const std::size_t close = _sql.find(row.closing, begin + row.opening.size());
    if (close != std::string_view::npos) return {row.piece, close + row.closing.size()};
    if (row.piece == SqlPiece::Comment) return {row.piece, _sql.size()};
    _notClosed[i] = true;
  }
  return {SqlPiece::Code, begin + 1};
}

}  // namespace korvex
