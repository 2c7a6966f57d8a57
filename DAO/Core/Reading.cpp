#include "DAO/Core/Reading.h"

namespace korvex {

namespace {

constexpr std::size_t usualTextLength = 200;

}  // namespace

PlainText plainTextOf(const XMLNode& element, std::string_view (*piece)(std::string_view text)) {
  PlainText gathered;
  gathered.text.reserve(usualTextLength);
  for (const XMLNode& node : element.children()) {
    if (node.kind() == XMLNodeKind::Comment) continue;
    if (node.kind() != XMLNodeKind::Text) {
      gathered.offender = node;
      break;
    }
    gathered.text.append(piece(node.text().value_or(std::string_view())));
  }
  return gathered;
}

}  // namespace korvex
