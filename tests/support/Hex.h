// Bytes as text and back.
#pragma once

#include <array>
#include <cstdio>
#include <string>
#include <string_view>
#include <utility>

namespace korvex {

inline std::string hex(std::string_view bytes) {
  std::string text;
  for (const char byte : bytes) {
    std::array<char, 3> digits{};
    std::snprintf(digits.data(), digits.size(), "%02X", static_cast<unsigned char>(byte));
    text += digits.data();
  }
  return text;
}

// White space between the digits does not count.
inline std::string bytes(std::string_view text) {
  std::string value;
  std::string digits;
  for (const char digit : text) {
    if (digit == ' ' || digit == '\n') continue;
    digits += digit;
    if (digits.size() == 2) value += static_cast<char>(std::stoi(std::exchange(digits, ""), nullptr, 16));
  }
  return value;
}

}  // namespace korvex
