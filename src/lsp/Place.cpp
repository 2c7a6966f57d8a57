#include "lsp/Place.h"

#include <algorithm>
#include <string_view>

namespace korvex::lsp {

namespace {

// The text holds more of an element that nobody closed when somebody types at its end.
bool isClosedAtTheEnd(const Markup& markup, const MarkupElement& element, std::string_view text) {
  if (element.startTag == element.whole) return text.ends_with("/>");
  const std::size_t tag = std::min(text.rfind("</"), text.size());
  const std::string_view rest = text.substr(std::min(tag + 2, text.size()));
  return rest.starts_with(markup.nameOf(element)) && rest.ends_with('>');
}

const MarkupElement* holderAt(const Markup& markup, std::string_view text, std::size_t offset,
                              const MarkupElement* element) {
  const auto isLeft = [&](const MarkupElement& left) {
    if (offset < left.whole.end) return false;
    return offset < text.size() || left.whole.end < text.size() || isClosedAtTheEnd(markup, left, text);
  };
  while (element && isLeft(*element)) element = markup.parentOf(*element);
  return element;
}

// Behind the last start tag in front of the offset, where only passages and end tags are.
Place placeBehind(const Markup& markup, std::string_view text, std::size_t offset, const MarkupElement* element) {
  if (markup.isInPassage(offset)) return {};
  const std::size_t behindTag = element ? element->startTag.end : 0;
  const std::size_t at = offset == 0 ? std::string_view::npos : text.rfind("</", offset - 1);
  if (at != std::string_view::npos && at >= behindTag && !markup.isInPassage(at + 1)) {
    if (offset == at + 1) return {};
    const Span name{at + 2, std::min(text.find_first_of(endsMarkupName, at + 2), text.size())};
    if (name.touches(offset)) return {PlaceKind::EndTagName, holderAt(markup, text, at, element), nullptr, name};
  }
  return {PlaceKind::Content, holderAt(markup, text, offset, element), nullptr, {offset, offset}};
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
  const std::vector<MarkupElement>& elements = markup.elements();
  const auto after = std::partition_point(elements.begin(), elements.end(), [offset](const MarkupElement& element) {
    return element.startTag.begin < offset;
  });
  const MarkupElement* last = after == elements.begin() ? nullptr : &*(after - 1);
  return placeBehind(markup, document.text().text(), offset, last);
}

}  // namespace korvex::lsp
