// Helpers for the inputs of fuzz targets.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace korvex {

inline std::string_view inputOf(const std::uint8_t* data, std::size_t size) {
  return {reinterpret_cast<const char*>(data), size};
}

// Whether list references in the input could expand to more than a few megabytes: each "*" may
// stand for as much as the whole input, and each "," may repeat as much. "&" may stand for either.
// Such inputs are correct and slow; a target that skips them tries more others.
inline bool mayGrowLarge(std::string_view input) {
  constexpr std::size_t longestExpansion = std::size_t{4} << 20U;
  const auto multiplies = [](char byte) { return byte == '*' || byte == ',' || byte == '&'; };
  const auto factor = static_cast<std::size_t>(std::count_if(input.begin(), input.end(), multiplies));
  return factor * input.size() > longestExpansion;
}

}  // namespace korvex
