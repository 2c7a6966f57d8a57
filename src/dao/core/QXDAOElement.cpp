#include "korvex/QXDAOElement.h"

#include <array>

#include "dao/core/Messages.h"
#include "korvex/Keywords.h"
#include "korvex/QXDAOConst.h"
#include "korvex/QXDAOCryptProperty.h"
#include "korvex/QXDAOError.h"
#include "korvex/QXDAOMap.h"
#include "korvex/QXDAOMethod.h"
#include "korvex/QXDAOPack.h"
#include "korvex/QXDAORule.h"
#include "korvex/QXDAOSqlBlock.h"
#include "platform/Strings.h"
#include "platform/Tables.h"

namespace korvex {

namespace {

using ElementBuilder = std::unique_ptr<QXDAOElement> (*)(const XMLNode& xml);

template <typename T>
std::unique_ptr<QXDAOElement> buildPlain(const XMLNode& xml) {
  auto element = std::make_unique<T>();
  element->initWithXML(xml);
  return element;
}

template <typename T>
std::unique_ptr<QXDAOElement> buildNamed(const XMLNode& xml) {
  auto element = std::make_unique<T>();
  element->initNamedElementWithXML(xml);
  return element;
}

struct RootTag {
  std::string_view tag;
  ElementBuilder build;
};

// Every other tag is a method's, or for the method to refuse.
constexpr std::array<RootTag, 5> rootTags = {{
    {C_SQL, buildNamed<QXDAOSqlBlock>},
    {C_MAP, buildNamed<QXDAOMap>},
    {C_CONST, buildPlain<QXDAOConst>},
    {C_CRYPT, buildPlain<QXDAOCryptProperty>},
    {C_PACK, buildPlain<QXDAOPack>},
}};

ElementBuilder builderOfRootTag(OptionalStringView tag) {
  const RootTag* row = rowWith(rootTags, &RootTag::tag, tag);
  return row ? row->build : buildNamed<QXDAOMethod>;
}

}  // namespace

std::unique_ptr<QXDAOElement> QXDAOElement::elementWithXML(const XMLNode& xml, std::optional<QXDAOError>* error) {
  std::unique_ptr<QXDAOElement> element = builderOfRootTag(xml.name())(xml);
  if (!element->failed()) return element;
  if (error) *error = element->takenError(xml);
  return nullptr;
}

QXDAOError QXDAOElement::takenError(const XMLNode& xml) {
  QXDAOError error;
  error.domain = QXDAO_ERROR_DOMAIN;
  error.rule = _error->rule;
  error.userInfo.emplace("error", std::move(_error->message));
  error.userInfo.emplace("xml", xml);
  error.origin = _error->origin ? _error->origin : xml;
  return error;
}

void QXDAOElement::initWithXML(const XMLNode& /*xml*/) {
  _name = {};
  _error.reset();
}

void QXDAOElement::initNamedElementWithXML(const XMLNode& xml) {
  _name = {};
  _error.reset();
  if (xml.kind() == XMLNodeKind::Element) _name = CompactString(xml.valueOfAttribute(C_ID));
  if (isEmpty(name())) setError(QXDAORule::MissingName);
}

void QXDAOElement::setError(QXDAORule rule, OptionalStringView quoted, const XMLNode& origin) {
  _error = std::make_unique<Failure>(Failure{rule, filledFormat(ruleTextOf(rule).message, quoted), origin});
}

void QXDAOElement::setErrorWithName(QXDAORule rule) { setError(rule, name()); }

bool QXDAOElement::adoptErrorOf(const QXDAOElement& child, const XMLNode& childXML) {
  if (!child.failed()) return false;
  _error = std::make_unique<Failure>(*child._error);
  if (!_error->origin) _error->origin = childXML;
  return true;
}

}  // namespace korvex
