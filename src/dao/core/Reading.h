// Helpers with which several elements read their attributes and child nodes.
#pragma once

#include <string>
#include <string_view>

#include "korvex/Export.h"
#include "korvex/Keywords.h"
#include "korvex/OptionalString.h"
#include "korvex/QXDAOPackReader.h"
#include "korvex/XMLNode.h"
#include "platform/Strings.h"

namespace korvex {

// The node to report if a child violates a rule: the child if it is an element, which has a position in the source,
// otherwise its parent.
[[nodiscard]] inline XMLNode nodeAtFault(const XMLNode& child, const XMLNode& parent) {
  return child.kind() == XMLNodeKind::Element ? child : parent;
}

// Sets a flag to the Boolean value of its attribute; an absent or empty attribute leaves it unchanged.
inline void readBoolean(OptionalStringView attribute, bool& flag) {
  if (!isEmpty(attribute)) flag = booleanAttributeValue(attribute);
}

// The text of an element that may contain only text and comments.
class PlainText {
 public:
  // The pieces before the offender, concatenated. A single piece is a view, which is valid while the document lives.
  [[nodiscard]] std::string_view text() const { return _joined.empty() ? _first : _joined; }
  // The first node of another kind; null if there is none.
  [[nodiscard]] XMLNode offender() const { return _offender; }

 private:
  friend PlainText plainTextOf(const XMLNode& element, std::string_view (*piece)(std::string_view text));
  void append(std::string_view piece);

  std::string_view _first;
  std::string _joined;
  XMLNode _offender;
};

[[nodiscard]] KORVEX_EXPORT PlainText plainTextOf(const XMLNode& element,
                                                  std::string_view (*piece)(std::string_view text));

// The text of an sql block: each piece is trimmed on its own, and comments between pieces are dropped.
[[nodiscard]] inline PlainText textOfSqlBlock(const XMLNode& element) {
  return plainTextOf(element, spaceNewLineTabBothEndsTrimmed);
}
// The text of a foreach, to be trimmed as a whole.
[[nodiscard]] inline PlainText textOfForeach(const XMLNode& element) {
  return plainTextOf(element, [](std::string_view piece) { return piece; });
}

enum class TextPlace {
  Node,       // a text node
  Content,    // the element after its start tag
  Attribute,  // the element's only attribute
};

// Calls `take(text, place, node)` for each text of an element that may contain list references, without the texts of
// its child elements. `text` is not expanded yet; `node` is the text node or the element.
template <typename Take>
void forEachText(const XMLNode& element, const Take& take) {
  const OptionalStringView tag = element.name();
  if (tag == C_CONST) {
    take(element.onlyAttribute().stringValue().value_or(std::string_view()), TextPlace::Attribute, element);
  } else if (tag == C_SQL) {
    take(textOfSqlBlock(element).text(), TextPlace::Content, element);
  } else if (tag == C_FOREACH) {
    const PlainText gathered = textOfForeach(element);
    take(spaceNewLineTabBothEndsTrimmed(gathered.text()), TextPlace::Content, element);
  } else {
    for (const XMLNode& node : element.children()) {
      if (const OptionalStringView text = node.text())
        take(spaceNewLineTabBothEndsTrimmed(*text), TextPlace::Node, node);
    }
  }
}

}  // namespace korvex
