// What several elements do with their attributes and the nodes below them.
#pragma once

#include <string>
#include <string_view>

#include "korvex/Export.h"
#include "korvex/QXDAOPackReader.h"
#include "korvex/XMLNode.h"
#include "platform/Strings.h"

namespace korvex {

// The node to point at when a child breaks a rule: the child when it is an element, which has a
// place of its own in the source, else its parent.
[[nodiscard]] inline XMLNode nodeAtFault(const XMLNode& child, const XMLNode& parent) {
  return child.kind() == XMLNodeKind::Element ? child : parent;
}

// Sets a flag to the Boolean value of its attribute; an absent or empty attribute leaves it alone.
inline void readBoolean(OptionalStringView attribute, bool& flag) {
  if (!isEmpty(attribute)) flag = booleanAttributeValue(attribute);
}

// The text of an element that may hold nothing but text and comments.
class PlainText {
 public:
  // The pieces before the offender, joined with nothing between them. Of a single piece it is a
  // view, valid as long as the document is.
  [[nodiscard]] std::string_view text() const { return _joined.empty() ? _first : _joined; }
  // The first node of another kind; null when there is none.
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

}  // namespace korvex
