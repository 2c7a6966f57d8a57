// Reads one tag, well-formed or not.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

#include "markup/Span.h"

namespace korvex {

struct MarkupAttribute {
  Span name;
  std::optional<Span> value;  // without its quotes; absent when there is none yet
};

// What the last thing is that was read of a tag.
enum class TagState { Name, WhiteSpace, AttributeName, EqualsSign, OpenValue, Value, Slash, Closed, ClosedEmpty };

struct Tag {
  bool isEndTag = false;
  Span name;
  std::vector<MarkupAttribute> attributes;  // of a start tag
  std::size_t end = 0;                      // behind its ">", or where it stops without one
  TagState state = TagState::Name;

  [[nodiscard]] bool isClosed() const { return state == TagState::Closed || state == TagState::ClosedEmpty; }
};

// Reads the tag whose "<" is at `begin`. It stops after ">", before the next "<", or at the end of the text, and
// skips what belongs to no tag. A value without its closing quote ends there too. The time is linear in the tag's
// length.
[[nodiscard]] Tag readTag(std::string_view text, std::size_t begin);

}  // namespace korvex
