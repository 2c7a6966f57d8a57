#include "DAO/Core/Messages.h"
#include "DAO/QXDAOElement.h"

namespace korvex {

namespace {

// No other character becomes "T" in upper case.
bool isReservedName(std::string_view name) { return asciiLowerCase(name) == asciiLowerCase(C_RESERVED_TABLE); }

constexpr std::size_t usualTextLength = 200;

}  // namespace

void QXDAOSqlBlock::initNamedElementWithXML(const XMLNode& xml) {
  QXDAOElement::initNamedElementWithXML(xml);
  if (failed()) return;
  if (isReservedName(*name())) {
    setError(filledFormat(Messages::reservedSqlName, C_RESERVED_TABLE));
    return;
  }
  readText(xml);
}

// Each piece of text is trimmed on its own; comments between pieces leave nothing behind.
void QXDAOSqlBlock::readText(const XMLNode& xml) {
  std::string gathered;
  gathered.reserve(usualTextLength);
  for (const XMLNode& node : xml.children()) {
    if (node.kind() == XMLNodeKind::Comment) continue;
    if (node.kind() != XMLNodeKind::Text) {
      setError(filledFormat(Messages::invalidSqlBlock, name()), node.kind() == XMLNodeKind::Element ? node : xml);
      break;
    }
    gathered.append(spaceNewLineTabBothEndsTrimmed(node.text().value_or(std::string_view())));
  }
  _text = std::make_unique<QXDAOText>();
  _text->initWithText(std::move(gathered));
}

}  // namespace korvex
