#include "korvex/QXDAOPack.h"

#include <algorithm>

#include "dao/core/Building.h"
#include "korvex/Keywords.h"
#include "korvex/QXDAOElement.h"
#include "korvex/QXDAORule.h"
#include "platform/Strings.h"

namespace korvex {

namespace {

constexpr std::size_t fewestProperties = 2;

}  // namespace

void QXDAOPack::initWithXML(const XMLNode& xml) {
  QXDAOElement::initWithXML(xml);
  setColumn(spaceBothEndsTrimmed(xml.valueOfAttribute(C_AS)));
  if (isEmpty(column())) setError(QXDAORule::MissingPackColumn);
  const OptionalStringView properties = xml.valueOfAttribute(C_PROPERTIES);
  if (isEmpty(properties)) setError(QXDAORule::MissingPackProperties, column());
  if (failed()) return;
  readPropertyList(*properties);
  if (failed()) return;
  if (const OptionalStringView crypt = spaceBothEndsTrimmed(xml.valueOfAttribute(C_CRYPT))) {
    _crypted = asciiLowerCase(*crypt) == C_TRUE;
  }
}

void QXDAOPack::readPropertyList(std::string_view properties) {
  const auto count = 1 + static_cast<std::size_t>(std::count(properties.begin(), properties.end(), ','));
  if (count < fewestProperties) {
    setError(QXDAORule::SinglePackProperty, column());
    return;
  }
  _propertyList = Building::pieces(Building::memoryOf(*this), properties, ',',
                                   [](std::string_view name) { return spaceBothEndsTrimmed(name); });
}

void QXDAOPack::setPropertyList(std::optional<std::span<const std::string_view>> list) {
  _propertyList = Building::texts(Building::memoryOf(*this), list);
}

}  // namespace korvex
