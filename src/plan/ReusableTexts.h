// The sql blocks and constants of a set, which "@name" inserts.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "korvex/XMLNode.h"

namespace korvex {

struct SetCompilation;

struct ReusableText {
  std::string_view name;
  std::string_view text;
  XMLNode xml;
  std::uint32_t document = 0;
  XMLPosition position;  // of the text
  bool isConstant = false;

  // Set by checking: whether it can be inserted, and the nesting of its references.
  enum class State : std::uint8_t { Unknown, BeingChecked, Sound, Faulty };
  State state = State::Unknown;
  std::uint32_t depth = 0;
};

// Finds their errors: faults in SQL, unknown references, circular references.
void checkReusableTexts(SetCompilation& compilation);

// The number of earlier occurrences of a word, which is a piece of the text.
[[nodiscard]] std::size_t occurrencesBefore(std::string_view text, std::string_view word);
// A word of a text with its mark.
[[nodiscard]] inline std::string_view withMark(std::string_view word) { return {word.data() - 1, word.size() + 1}; }

}  // namespace korvex
