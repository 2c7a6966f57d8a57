// The spelling of the attribute "result" of a select: a keyword, ":" and the name of a map, or a class name, in square
// brackets for a list. Nothing is trimmed.
#pragma once

#include <array>
#include <string>
#include <string_view>

#include "korvex/Keywords.h"
#include "korvex/QXDAOMethod.h"
#include "platform/Tables.h"

namespace korvex {

struct ResultKeyword {
  std::string_view keyword;
  QXDAOSelectResultType type;
};

inline constexpr std::array<ResultKeyword, 7> resultKeywords = {{
    {C_INT, QXDAOSelectResultTypeInt},
    {C_LONG_LONG, QXDAOSelectResultTypeLongLong},
    {C_BOOL, QXDAOSelectResultTypeBool},
    {C_DOUBLE, QXDAOSelectResultTypeDouble},
    {C_STRING, QXDAOSelectResultTypeString},
    {C_BINARY, QXDAOSelectResultTypeBinary},
    {C_COLUMN_MAP, QXDAOSelectResultTypeColumnMap},
}};

struct SpelledResult {
  bool arrayed = false;
  QXDAOSelectResultType type = QXDAOSelectResultTypeObject;
  std::string_view name;  // the keyword, or the name of the map or class; points into what was read
};

[[nodiscard]] constexpr SpelledResult readResult(std::string_view spelling) {
  const bool arrayed = spelling.starts_with('[') && spelling.ends_with(']');
  const std::string_view row = arrayed ? spelling.substr(1, spelling.size() - 2) : spelling;
  if (row.starts_with(':')) return {arrayed, QXDAOSelectResultTypeMappedObject, row.substr(1)};
  const ResultKeyword* keyword = rowWith(resultKeywords, &ResultKeyword::keyword, row);
  return {arrayed, keyword ? keyword->type : QXDAOSelectResultTypeObject, row};
}

// The spelling of these parts.
[[nodiscard]] inline std::string resultSpelling(bool arrayed, bool mapped, std::string_view name) {
  const std::string row = std::string(mapped ? ":" : "").append(name);
  return arrayed ? '[' + row + ']' : row;
}

}  // namespace korvex
