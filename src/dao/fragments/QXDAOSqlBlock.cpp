#include "korvex/QXDAOSqlBlock.h"

#include "dao/core/Building.h"
#include "dao/core/Reading.h"
#include "korvex/Keywords.h"
#include "korvex/QXDAOElement.h"
#include "korvex/QXDAORule.h"
#include "korvex/QXDAOText.h"
#include "platform/Strings.h"

namespace korvex {

namespace {

// No other character becomes "T" in upper case.
bool isReservedName(std::string_view name) { return asciiLowerCase(name) == asciiLowerCase(C_RESERVED_TABLE); }

}  // namespace

void QXDAOSqlBlock::initNamedElementWithXML(const XMLNode& xml) {
  QXDAOElement::initNamedElementWithXML(xml);
  if (failed()) return;
  if (isReservedName(*name())) {
    setError(QXDAORule::ReservedSqlName, C_RESERVED_TABLE);
    return;
  }
  readText(xml);
}

void QXDAOSqlBlock::readText(const XMLNode& xml) {
  const PlainText gathered = textOfSqlBlock(xml);
  if (gathered.offender()) setError(QXDAORule::SqlFormat, name(), nodeAtFault(gathered.offender(), xml));
  _text = Building::text(Building::memoryOf(*this), gathered.text());
}

}  // namespace korvex
