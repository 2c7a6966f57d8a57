#include "dao/methods/ResultSpelling.h"
#include "korvex/OptionalString.h"
#include "korvex/QXDAOElement.h"
#include "korvex/QXDAOMethod.h"
#include "korvex/QXDAORule.h"

namespace korvex {

void QXDAOMethod::decideResultType(OptionalStringView declaration) {
  if (isEmpty(declaration)) {
    setErrorWithName(QXDAORule::MissingResult);
    return;
  }
  const SpelledResult result = readResult(*declaration);
  if (result.arrayed) _resultArrayed = true;
  _resultType = result.type;
  setResultTypeName(result.name);
}

}  // namespace korvex
