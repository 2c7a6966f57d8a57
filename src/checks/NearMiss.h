// What somebody may have meant who wrote something else.
#pragma once

#include <span>
#include <string>
#include <string_view>

namespace korvex {

// The nearest of the words, case aside, when it is near enough for a slip of the fingers; else empty, as it is for a
// very long one.
[[nodiscard]] std::string_view nearestOf(std::string_view written, std::span<const std::string_view> words);

// "did you mean 'parallel'?", or nothing when no word is near.
[[nodiscard]] std::string didYouMean(std::string_view written, std::span<const std::string_view> words);

}  // namespace korvex
