// The tokens of an SQL text, as far as it takes to point at one of them.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace korvex::verification {

// The bytes [begin, end) of a text.
struct ByteRange {
  std::size_t begin = 0;
  std::size_t end = 0;

  bool operator==(const ByteRange&) const = default;
};

// All but space and comments. An unclosed quote reaches to the end of the text.
[[nodiscard]] std::vector<ByteRange> tokensOf(std::string_view sql);

// The name that a token stands for: without quotes if it has any.
[[nodiscard]] std::string nameOf(std::string_view token);

}  // namespace korvex::verification
