// Maps document nodes to places in the source text.
#pragma once

#include <algorithm>
#include <string_view>
#include <vector>

#include "korvex/QXDAOPackReader.h"
#include "korvex/SourceText.h"
#include "korvex/XMLNode.h"
#include "markup/Markup.h"

namespace korvex {

// The value of an attribute and its place in the source.
struct WrittenValue {
  Span whole;
  std::string_view value;
  bool verbatim = false;                // it is written without character references
  std::vector<std::size_t> longBreaks;  // where in the value a space stands for the two bytes CR LF

  // The position of a piece of the value, which must be a view into it; the whole value if it is not verbatim.
  [[nodiscard]] Span of(std::string_view piece) const {
    if (!verbatim) return whole;
    const auto begin = static_cast<std::size_t>(piece.data() - value.data());
    return {placeOf(begin), placeOf(begin + piece.size())};
  }

 private:
  [[nodiscard]] std::size_t placeOf(std::size_t offset) const {
    const auto breaks = std::lower_bound(longBreaks.begin(), longBreaks.end(), offset) - longBreaks.begin();
    return whole.begin + offset + static_cast<std::size_t>(breaks);
  }
};

class Places {
 public:
  // The source must live as long as the Places.
  explicit Places(const SourceText& source) : _source(source), _markup(source.text()) {}

  [[nodiscard]] const SourceText& source() const { return _source; }
  [[nodiscard]] const Markup& markup() const { return _markup; }

  // Where a node's markup begins.
  [[nodiscard]] static std::size_t offsetOf(const XMLNode& node) { return node.offset(); }
  // The element whose start tag begins there; null when there is none.
  [[nodiscard]] const MarkupElement* elementAt(std::size_t offset) const;
  // The "<" and name of a tag at that position; otherwise the rest of the line, up to a limit.
  [[nodiscard]] Span spanAt(std::size_t offset) const;

  // The name and the value of an element's attribute; the element's tag where neither is found.
  [[nodiscard]] Span nameOf(const XMLNode& element, std::string_view attribute) const;
  [[nodiscard]] Span valueOf(const XMLNode& element, std::string_view attribute) const;
  [[nodiscard]] WrittenValue writtenValueOf(const XMLNode& element, std::string_view attribute) const;

 private:
  [[nodiscard]] const MarkupAttribute* attributeOf(const XMLNode& element, std::string_view name) const;

  const SourceText& _source;
  Markup _markup;
};

}  // namespace korvex
