// The "result" attribute of a select: an optional pair of brackets for a list, and inside it a
// keyword, ":" and the name of a result map, or a class name. Nothing is trimmed.
#include <array>

#include "korvex/OptionalString.h"
#include "korvex/QXDAOElement.h"
#include "korvex/QXDAOMethod.h"
#include "korvex/QXDAORule.h"
#include "platform/Tables.h"

namespace korvex {

namespace {

struct ResultKeyword {
  std::string_view keyword;
  QXDAOSelectResultType type;
};

constexpr std::array<ResultKeyword, 7> resultKeywords = {{
    {"int", QXDAOSelectResultTypeInt},
    {"long long", QXDAOSelectResultTypeLongLong},
    {"bool", QXDAOSelectResultTypeBool},
    {"double", QXDAOSelectResultTypeDouble},
    {"string", QXDAOSelectResultTypeString},
    {"binary", QXDAOSelectResultTypeBinary},
    {"{}", QXDAOSelectResultTypeColumnMap},
}};

QXDAOSelectResultType typeOfWord(std::string_view word) {
  const ResultKeyword* row = rowWith(resultKeywords, &ResultKeyword::keyword, word);
  return row ? row->type : QXDAOSelectResultTypeObject;
}

}  // namespace

void QXDAOMethod::decideResultType(OptionalStringView declaration) {
  if (isEmpty(declaration)) {
    setErrorWithName(QXDAORule::MissingResult);
    return;
  }
  std::string_view result = *declaration;
  if (result.starts_with('[') && result.ends_with(']')) {
    _resultArrayed = true;
    result = result.substr(1, result.size() - 2);
  }
  const bool mapped = result.starts_with(':');
  _resultType = mapped ? QXDAOSelectResultTypeMappedObject : typeOfWord(result);
  setResultTypeName(result.substr(mapped ? 1 : 0));
}

}  // namespace korvex
