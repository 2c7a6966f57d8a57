// The sql blocks and constants of a set, which "@name" puts in.
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

  // Found out by checking: whether it can be put in, and how deep references stand in it.
  enum class State : std::uint8_t { Unknown, BeingChecked, Sound, Faulty };
  State state = State::Unknown;
  std::uint32_t depth = 0;
};

// Finds what is wrong with all of them: faults in their SQL, references to nothing and in a circle.
void checkReusableTexts(SetCompilation& compilation);

// How often a word, a piece of the text, stands in front of itself.
[[nodiscard]] std::size_t occurrencesBefore(std::string_view text, std::string_view word);
// A word of a text with the mark in front of it.
[[nodiscard]] inline std::string_view withMark(std::string_view word) { return {word.data() - 1, word.size() + 1}; }

}  // namespace korvex
