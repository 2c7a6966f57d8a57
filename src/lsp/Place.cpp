#include "lsp/Place.h"

#include <string_view>

#include "markup/Names.h"

namespace korvex::lsp {

namespace {

// The element that contains the offset. An element that is not closed also contains the end of the text, where its
// content is being typed.
const MarkupElement* parentAt(const Markup& markup, std::size_t textEnd, std::size_t offset,
                              const MarkupElement* element) {
  const auto isBehind = [&](const MarkupElement& candidate) {
    return offset >= candidate.whole.end && (candidate.closed || candidate.whole.end < textEnd);
  };
  while (element && isBehind(*element)) element = markup.parentOf(*element);
  return element;
}

// After the last start tag before the offset, where only end tags and markup without elements are.
Place placeAfter(const Markup& markup, std::string_view text, std::size_t offset, const MarkupElement* element) {
  if (markup.isInOpaqueMarkup(offset)) return {};
  const std::size_t behindTag = element ? element->startTag.end : 0;
  const std::size_t at = offset == 0 ? std::string_view::npos : text.rfind("</", offset - 1);
  if (at != std::string_view::npos && at >= behindTag && !markup.isInOpaqueMarkup(at + 1)) {
    if (offset == at + 1) return {};
    const Span name = nameSpanAt(text, at + 2);
    if (name.touches(offset)) return {PlaceKind::EndTagName, parentAt(markup, text.size(), at, element), nullptr, name};
  }
  return {PlaceKind::Content, parentAt(markup, text.size(), offset, element), nullptr, {offset, offset}};
}

Place placeInTag(const MarkupElement& element, std::size_t offset) {
  if (element.name.touches(offset)) return {PlaceKind::TagName, &element, nullptr, element.name};
  for (const MarkupAttribute& attribute : element.attributes) {
    if (attribute.name.touches(offset)) return {PlaceKind::AttributeName, &element, &attribute, attribute.name};
    if (attribute.value && attribute.value->touches(offset))
      return {PlaceKind::AttributeValue, &element, &attribute, *attribute.value};
  }
  return {PlaceKind::InTag, &element, nullptr, {offset, offset}};
}

}  // namespace

Place placeAt(const MarkedDocument& document, std::size_t offset) {
  const Markup& markup = document.markup();
  if (const MarkupElement* element = markup.startTagAt(offset)) return placeInTag(*element, offset);
  return placeAfter(markup, document.text().text(), offset, markup.lastElementBefore(offset));
}

}  // namespace korvex::lsp
