#include "korvex/QXDAOForeach.h"

#include <array>

#include "dao/core/Building.h"
#include "dao/core/Reading.h"
#include "korvex/Keywords.h"
#include "korvex/QXDAOElement.h"
#include "korvex/QXDAORule.h"
#include "korvex/QXDAOText.h"
#include "platform/Strings.h"
#include "platform/Tables.h"

namespace korvex {

namespace {

struct ForeachAttribute {
  std::string_view name;
  void (*store)(QXDAOForeach& element, OptionalStringView value);
};

template <void (QXDAOForeach::*set)(OptionalStringView)>
void storeText(QXDAOForeach& element, OptionalStringView value) {
  (element.*set)(value);
}

void storeReverse(QXDAOForeach& element, OptionalStringView value) { element.setReverse(booleanAttributeValue(value)); }

// The only attributes that a foreach may have.
constexpr std::array<ForeachAttribute, 6> foreachAttributes = {{
    {C_ITEM, storeText<&QXDAOForeach::setItem>},
    {C_COLLECTION, storeText<&QXDAOForeach::setCollection>},
    {C_OPEN, storeText<&QXDAOForeach::setOpen>},
    {C_SEPARATOR, storeText<&QXDAOForeach::setSeparator>},
    {C_CLOSE, storeText<&QXDAOForeach::setClose>},
    {C_REVERSE, storeReverse},
}};

}  // namespace

void QXDAOForeach::initWithXML(const XMLNode& xml) {
  QXDAOElement::initWithXML(xml);
  readAttributes(xml);
  if (isEmpty(item()) || isEmpty(collection())) setError(QXDAORule::ForeachParameters);
  if (failed()) return;
  readText(xml);
}

void QXDAOForeach::readAttributes(const XMLNode& xml) {
  for (const XMLAttribute& attribute : xml.attributes()) {
    const ForeachAttribute* known = rowWith(foreachAttributes, &ForeachAttribute::name, attribute.name());
    if (!known) {
      setError(QXDAORule::ForeachParameters);
      return;
    }
    known->store(*this, attribute.stringValue());
  }
}

void QXDAOForeach::readText(const XMLNode& xml) {
  const PlainText gathered = textOfForeach(xml);
  if (gathered.offender()) setError(QXDAORule::ForeachContent, {}, nodeAtFault(gathered.offender(), xml));
  _text = Building::text(Building::memoryOf(*this), spaceNewLineTabBothEndsTrimmed(gathered.text()));
}

}  // namespace korvex
