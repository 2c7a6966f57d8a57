// The markup of a text that may still be being typed: its elements, with the place of everything in them.
//
// This is not a parser. It rejects nothing, so that completion and symbols work while tags and quotes are still open;
// the loader reports what is wrong with the text.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

#include "markup/Span.h"
#include "markup/TagReader.h"

namespace korvex {

struct MarkupElement {
  static constexpr std::size_t none = static_cast<std::size_t>(-1);

  Span name;
  Span startTag;        // from "<" to ">", or to the next markup when it is not closed
  Span whole;           // to the end of the end tag, or of the parent when there is none
  bool closed = false;  // by "/>" or by an end tag of its own with its ">"
  std::vector<MarkupAttribute> attributes;
  std::size_t parent = none;  // its index in the list
};

class Markup {
 public:
  // Takes time in proportion to the text, times the logarithm of the number of open elements. The text must outlive the
  // Markup and everything taken from it.
  explicit Markup(std::string_view text);

  [[nodiscard]] std::string_view textOf(Span span) const { return span.of(_text); }
  [[nodiscard]] std::string_view nameOf(const MarkupElement& element) const { return textOf(element.name); }
  // The first attribute of that name that has a value; null when there is none.
  [[nodiscard]] const MarkupAttribute* attributeOf(const MarkupElement& element, std::string_view name) const;
  // Its value as written; absent when there is none.
  [[nodiscard]] std::optional<std::string_view> valueOf(const MarkupElement& element, std::string_view name) const;

  // In document order, a parent before its children.
  [[nodiscard]] const std::vector<MarkupElement>& elements() const { return _elements; }
  // In document order, each from its "<!--" to behind its "-->".
  [[nodiscard]] const std::vector<Span>& comments() const { return _comments; }
  // The last element whose start tag begins before the offset; null when there is none.
  [[nodiscard]] const MarkupElement* lastElementBefore(std::size_t offset) const;
  // The element whose start tag contains the offset, behind the "<"; null when there is none.
  [[nodiscard]] const MarkupElement* startTagAt(std::size_t offset) const;
  // Whether the offset is inside a comment, a CDATA section, or other markup that contains no elements.
  [[nodiscard]] bool isInOpaqueMarkup(std::size_t offset) const;
  [[nodiscard]] const MarkupElement* parentOf(const MarkupElement& element) const;

 private:
  friend class MarkupScanner;

  std::string_view _text;
  std::vector<MarkupElement> _elements;
  std::vector<Span> _comments;
  std::vector<Span> _opaque;  // in document order; one that is not closed ends past the text
};

}  // namespace korvex
