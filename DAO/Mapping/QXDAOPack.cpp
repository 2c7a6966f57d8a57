#include "DAO/Core/Messages.h"
#include "DAO/QXDAOElement.h"

namespace korvex {

namespace {

constexpr std::size_t fewestProperties = 2;

}  // namespace

void QXDAOPack::initWithXML(const XMLNode& xml) {
  QXDAOElement::initWithXML(xml);
  setColumn(spaceBothEndsTrimmed(xml.valueOfAttribute(C_AS)));
  if (isEmpty(column())) setError(std::string(Messages::emptyPackColumn));
  const OptionalStringView properties = xml.valueOfAttribute(C_PROPERTIES);
  if (isEmpty(properties)) setError(filledFormat(Messages::emptyPackProperties, column()));
  if (failed()) return;
  readPropertyList(*properties);
  if (failed()) return;
  if (const OptionalStringView crypt = spaceBothEndsTrimmed(xml.valueOfAttribute(C_CRYPT))) {
    _crypted = asciiLowerCase(*crypt) == C_TRUE;
  }
}

void QXDAOPack::readPropertyList(std::string_view properties) {
  const std::vector<std::string_view> pieces = splitAt(properties, ',');
  if (pieces.size() < fewestProperties) {
    setError(filledFormat(Messages::tooFewPackProperties, column()));
    return;
  }
  _propertyList.emplace();
  _propertyList->reserve(pieces.size());
  for (const std::string_view piece : pieces) _propertyList->emplace_back(spaceBothEndsTrimmed(piece));
}

}  // namespace korvex
