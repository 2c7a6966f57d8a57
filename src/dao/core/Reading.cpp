#include "dao/core/Reading.h"

namespace korvex {

namespace {

constexpr std::size_t usualTextLength = 200;

}  // namespace

void PlainText::append(std::string_view piece) {
  if (text().empty()) {
    _first = piece;
  } else {
    if (_joined.empty()) {
      _joined.reserve(usualTextLength);
      _joined = _first;
    }
    _joined.append(piece);
  }
}

PlainText plainTextOf(const XMLNode& element, std::string_view (*piece)(std::string_view text)) {
  PlainText gathered;
  for (const XMLNode& node : element.children()) {
    if (node.kind() == XMLNodeKind::Comment) continue;
    if (node.kind() != XMLNodeKind::Text) {
      gathered._offender = node;
      break;
    }
    gathered.append(piece(node.text().value_or(std::string_view())));
  }
  return gathered;
}

}  // namespace korvex
