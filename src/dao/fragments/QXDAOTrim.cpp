#include "korvex/QXDAOTrim.h"

#include <array>

#include "korvex/Keywords.h"
#include "korvex/QXDAOElement.h"
#include "korvex/QXDAORule.h"
#include "platform/Strings.h"
#include "platform/Tables.h"

namespace korvex {

namespace {

struct OnVoidWord {
  std::string_view word;
  QXDAOTrimOnVoidType type;
};

constexpr std::array<OnVoidWord, 2> onVoidWords = {{
    {"ignoreAfter", QXDAOTrimOnVoidTypeIgnoreAfter},
    {"quit", QXDAOTrimOnVoidTypeQuit},
}};

QXDAOTrimOnVoidType onVoidOf(OptionalStringView value) {
  const OnVoidWord* row = rowWith(onVoidWords, &OnVoidWord::word, value);
  return row ? row->type : QXDAOTrimOnVoidTypeNone;
}

// The pieces between "|", untrimmed: one empty piece for an empty text, none for an absent one.
std::vector<std::string> overridesOf(OptionalStringView value) {
  std::vector<std::string> pieces;
  while (value) pieces.emplace_back(takePiece(value, '|'));
  return pieces;
}

}  // namespace

void QXDAOTrim::initWithXML(const XMLNode& xml) {
  QXDAOElement::initWithXML(xml);
  _onVoid = onVoidOf(xml.valueOfAttribute(C_ON_VOID));
  readOperation(xml);
  if (!failed()) processNodes(xml);
}

void QXDAOTrim::readOperation(const XMLNode& xml) {
  const OptionalStringView tag = xml.name();
  if (tag == C_TRIM) {
    readTrim(xml);
  } else if (tag == C_WHERE) {
    setOperationName("where");
    _prefixOverrides = {"AND ", "OR ", "and ", "or "};
  } else if (tag == C_SET) {
    setOperationName("set");
    _suffixOverrides = {","};
  }
}

void QXDAOTrim::readTrim(const XMLNode& xml) {
  const auto [prefix, prefixes, suffixes] = xml.valuesOfAttributes(C_PREFIX, C_PREFIX_OVERRIDES, C_SUFFIX_OVERRIDES);
  setOperationName(prefix);
  if (isEmpty(prefix) || (isEmpty(prefixes) && isEmpty(suffixes))) {
    setError(QXDAORule::FragmentFormat, xml.name());
    return;
  }
  _prefixOverrides = overridesOf(prefixes);
  _suffixOverrides = overridesOf(suffixes);
}

}  // namespace korvex
