#include "checks/Places.h"

#include <algorithm>

#include "platform/Strings.h"

namespace korvex {

namespace {

// In bytes: some documents are one long line.
constexpr std::size_t maxSpan = 400;

// Each white space of a value is read as a space, CR LF as one. Notes where it was.
bool isWrittenAs(std::string_view written, std::string_view value, std::vector<std::size_t>& longBreaks) {
  std::size_t at = 0;
  for (std::size_t offset = 0; offset < value.size(); ++offset) {
    if (at == written.size()) return false;
    const bool space = value[offset] == ' ' && written[at] != ' ' && isXMLWhiteSpace(written[at]);
    if (!space && written[at] != value[offset]) return false;
    const bool longBreak = space && written.substr(at).starts_with("\r\n");
    if (longBreak) longBreaks.push_back(offset);
    at += longBreak ? 2 : 1;
  }
  return at == written.size();
}

}  // namespace

const MarkupElement* Places::elementAt(std::size_t offset) const {
  const MarkupElement* element = _markup.startTagAt(offset + 1);
  return element && element->startTag.begin == offset ? element : nullptr;
}

Span Places::spanAt(std::size_t offset) const {
  if (const MarkupElement* element = elementAt(offset)) return {offset, element->name.end};
  const std::string_view line = _source.text().substr(offset, maxSpan);
  return {offset, offset + std::min(line.find_first_of("\r\n"), line.size())};
}

const MarkupAttribute* Places::attributeOf(const XMLNode& element, std::string_view name) const {
  const MarkupElement* markup = elementAt(offsetOf(element));
  if (!markup) return nullptr;
  const auto found =
      std::find_if(markup->attributes.begin(), markup->attributes.end(),
                   [&](const MarkupAttribute& attribute) { return _markup.textOf(attribute.name) == name; });
  return found == markup->attributes.end() ? nullptr : &*found;
}

Span Places::nameOf(const XMLNode& element, std::string_view attribute) const {
  const MarkupAttribute* markup = attributeOf(element, attribute);
  return markup ? markup->name : spanAt(offsetOf(element));
}

Span Places::valueOf(const XMLNode& element, std::string_view attribute) const {
  const MarkupAttribute* markup = attributeOf(element, attribute);
  return markup && markup->value ? *markup->value : spanAt(offsetOf(element));
}

WrittenValue Places::writtenValueOf(const XMLNode& element, std::string_view attribute) const {
  const Span whole = valueOf(element, attribute);
  const std::string_view value = element.valueOfAttribute(attribute).value_or(std::string_view());
  WrittenValue written{whole, value, false, {}};
  written.verbatim = isWrittenAs(_markup.textOf(whole), value, written.longBreaks);
  return written;
}

}  // namespace korvex
