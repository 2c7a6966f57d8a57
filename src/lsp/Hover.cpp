#include "lsp/Hover.h"

#include <string>

#include "lsp/Descriptions.h"
#include "lsp/Place.h"

namespace korvex::lsp {

namespace {

Json hover(const MarkedDocument& document, const std::string& description, Span span) {
  return {{"contents", {{"kind", "markdown"}, {"value", description}}}, {"range", document.text().rangeOf(span)}};
}

}  // namespace

Json hoverAt(const MarkedDocument& document, const Position& position) {
  const Place place = placeAt(document, document.text().offsetOf(position));
  const bool inEndTag = place.kind == PlaceKind::EndTagName;
  if (!place.element || place.word.begin == place.word.end) return nullptr;
  if (inEndTag && document.markup().textOf(place.word) != document.markup().nameOf(*place.element)) return nullptr;
  const ElementEntry* element = vocabularyEntryOf(document.markup().nameOf(*place.element));
  if (!element) return nullptr;
  if (!place.attribute) return hover(document, descriptionOf(*element), place.word);
  const AttributeEntry* attribute = attributeEntryOf(*element, document.markup().textOf(place.attribute->name));
  return attribute ? hover(document, descriptionOf(*attribute, *element), place.word) : Json();
}

}  // namespace korvex::lsp
