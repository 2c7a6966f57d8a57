#include "korvex/QXDAOTrim.h"

#include <array>

#include "dao/core/Building.h"
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

std::string_view asWritten(std::string_view piece) { return piece; }

using Texts = CompactList<std::string_view>;

constexpr std::array<std::string_view, 4> whereOverrides = {"AND ", "OR ", "and ", "or "};
constexpr std::array<std::string_view, 1> setOverrides = {","};

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
    _prefixOverrides = Texts(whereOverrides, false);
  } else if (tag == C_SET) {
    setOperationName("set");
    _suffixOverrides = Texts(setOverrides, false);
  }
}

void QXDAOTrim::readTrim(const XMLNode& xml) {
  const auto [prefix, prefixes, suffixes] = xml.valuesOfAttributes(C_PREFIX, C_PREFIX_OVERRIDES, C_SUFFIX_OVERRIDES);
  setOperationName(prefix);
  if (isEmpty(prefix) || (isEmpty(prefixes) && isEmpty(suffixes))) {
    setError(QXDAORule::FragmentFormat, xml.name());
    return;
  }
  if (prefixes) _prefixOverrides = Building::pieces(Building::memoryOf(*this), prefixes, '|', asWritten);
  if (suffixes) _suffixOverrides = Building::pieces(Building::memoryOf(*this), suffixes, '|', asWritten);
}

void QXDAOTrim::setPrefixOverrides(std::span<const std::string_view> overrides) {
  _prefixOverrides = Building::texts<std::string_view>(Building::memoryOf(*this), overrides);
}

void QXDAOTrim::setSuffixOverrides(std::span<const std::string_view> overrides) {
  _suffixOverrides = Building::texts<std::string_view>(Building::memoryOf(*this), overrides);
}

}  // namespace korvex
