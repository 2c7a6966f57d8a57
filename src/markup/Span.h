// A range of bytes in a text.
#pragma once

#include <cstddef>
#include <string_view>

namespace korvex {

// From the first byte to one past the last.
struct Span {
  std::size_t begin = 0;
  std::size_t end = 0;

  [[nodiscard]] bool empty() const { return begin == end; }
  // Whether a cursor at the offset is inside or at either end.
  [[nodiscard]] bool touches(std::size_t offset) const { return begin <= offset && offset <= end; }
  // The text must be at least as long as the span's end.
  [[nodiscard]] std::string_view of(std::string_view text) const { return text.substr(begin, end - begin); }
  bool operator==(const Span&) const = default;
};

}  // namespace korvex
