#include "Checks/Places.h"

#include <algorithm>

namespace korvex {

const MarkupElement* Places::elementAt(std::size_t offset) const {
  const MarkupElement* element = _markup.startTagAt(offset + 1);
  return element && element->startTag.begin == offset ? element : nullptr;
}

Span Places::spanAt(std::size_t offset) const {
  if (const MarkupElement* element = elementAt(offset)) return {offset, element->name.end};
  return {offset, std::min(_source.text().find_first_of("\r\n", offset), _source.text().size())};
}

}  // namespace korvex
