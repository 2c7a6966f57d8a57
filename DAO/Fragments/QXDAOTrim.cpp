#include <array>

#include "DAO/Core/Messages.h"
#include "DAO/QXDAOElement.h"
#include "Platform/Tables.h"

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
  if (!value) return {};
  const std::vector<std::string_view> pieces = splitAt(*value, '|');
  return {pieces.begin(), pieces.end()};
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
    _operationName = "where";
    _prefixOverrides = {"AND ", "OR ", "and ", "or "};
  } else if (tag == C_SET) {
    _operationName = "set";
    _suffixOverrides = {","};
  }
}

void QXDAOTrim::readTrim(const XMLNode& xml) {
  _operationName = ownedString(xml.valueOfAttribute(C_PREFIX));
  const OptionalStringView prefixes = xml.valueOfAttribute(C_PREFIX_OVERRIDES);
  const OptionalStringView suffixes = xml.valueOfAttribute(C_SUFFIX_OVERRIDES);
  if (isEmpty(_operationName) || (isEmpty(prefixes) && isEmpty(suffixes))) {
    setError(filledFormat(Messages::invalidFragment, xml.name()));
    return;
  }
  _prefixOverrides = overridesOf(prefixes);
  _suffixOverrides = overridesOf(suffixes);
}

}  // namespace korvex
