// The markup of a text that somebody is typing: its elements with the places of everything in them.
//
// Not a parser: it refuses nothing, so that there are completions and symbols while tags and quotes are still open.
// What is wrong with the text the loader says.
#pragma once
#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

#include "korvex/QXDAOPackReader.h"

namespace korvex {

// What ends a name in markup.
inline constexpr std::string_view endsMarkupName = " \t\r\n=/<>\"'";

// Bytes of the text, the first and one past the last.
struct Span {
  std::size_t begin = 0;
  std::size_t end = 0;

  [[nodiscard]] bool touches(std::size_t offset) const { return begin <= offset && offset <= end; }
  bool operator==(const Span&) const = default;
};

struct MarkupAttribute {
  Span name;
  std::optional<Span> value;  // between the quotes; absent before one is typed
};

struct MarkupElement {
  static constexpr std::size_t none = static_cast<std::size_t>(-1);

  Span name;
  Span startTag;  // from "<" to ">", or to where the next markup begins when it is not closed
  Span whole;     // to the end of the end tag, or of the holder when there is none
  std::vector<MarkupAttribute> attributes;
  std::size_t parent = none;  // its place in the list
};

class Markup {
 public:
  // The text must live as long as the Markup and what is taken from it.
  explicit Markup(std::string_view text);

  [[nodiscard]] std::string_view textOf(Span span) const { return _text.substr(span.begin, span.end - span.begin); }
  [[nodiscard]] std::string_view nameOf(const MarkupElement& element) const { return textOf(element.name); }
  // The value as it is written; absent when there is none.
  [[nodiscard]] std::optional<std::string_view> valueOf(const MarkupElement& element, std::string_view name) const;

  // In document order, a holder before what it holds.
  [[nodiscard]] const std::vector<MarkupElement>& elements() const { return _elements; }
  // In document order, each from its "<!--" to behind its "-->".
  [[nodiscard]] const std::vector<Span>& comments() const { return _comments; }
  // The element whose start tag has the offset inside it, behind the "<"; null when there is none.
  [[nodiscard]] const MarkupElement* startTagAt(std::size_t offset) const;
  // Whether the offset is inside a comment, a CDATA section, or other markup that holds no elements.
  [[nodiscard]] bool isInPassage(std::size_t offset) const;
  [[nodiscard]] const MarkupElement* parentOf(const MarkupElement& element) const;

 private:
  friend class MarkupScanner;

  std::string_view _text;
  std::vector<MarkupElement> _elements;
  std::vector<Span> _comments;
  std::vector<Span> _passages;  // in document order; one that nobody closed ends past the text
};

}  // namespace korvex
