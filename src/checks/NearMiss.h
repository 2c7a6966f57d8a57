// Suggestions for misspelled words.
#pragma once

#include <span>
#include <string>
#include <string_view>

namespace korvex {

// The most similar of the words, ignoring case, if it is similar enough to be a typing error; otherwise empty. Very
// long words have no similar one.
[[nodiscard]] std::string_view nearestOf(std::string_view written, std::span<const std::string_view> words);

// "did you mean 'parallel'?", or an empty string if no word is similar.
[[nodiscard]] std::string didYouMean(std::string_view written, std::span<const std::string_view> words);

}  // namespace korvex
