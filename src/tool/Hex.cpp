#include "tool/Hex.h"

#include <algorithm>

#include "tool/VisibleText.h"

namespace korvex {
namespace {

constexpr std::string_view digits = "0123456789ABCDEF";
constexpr std::string_view lowerDigits = "0123456789abcdef";
constexpr std::string_view whiteSpace = " \t\r\n\v\f";

// The value of a digit; npos for any other character.
std::size_t valueOf(char digit) { return std::min(digits.find(digit), lowerDigits.find(digit)); }

// Where the digits are in a text.
struct Digits {
  std::size_t begin;
  std::size_t end;
};

Digits digitsIn(std::string_view text) {
  const std::size_t begin = std::min(text.find_first_not_of(whiteSpace), text.size());
  const std::size_t end = text.find_last_not_of(whiteSpace) + 1;
  const std::string_view start = text.substr(begin, 2);
  if (start == "0x" || start == "0X") return {begin + 2, end};
  const bool literal = (start == "x'" || start == "X'") && end > begin + 2 && text[end - 1] == '\'';
  return literal ? Digits{begin + 2, end - 1} : Digits{begin, end};
}

std::string notADigit(std::string_view text, std::size_t at) {
  const std::string character = visibleText(firstCharacter(text.substr(at)));
  return "'" + character + "' at position " + std::to_string(at + 1) + " is no hexadecimal digit";
}

}  // namespace

std::string hexText(std::string_view bytes, std::string_view separator) {
  std::string text;
  for (const char byte : bytes) {
    const auto value = static_cast<unsigned char>(byte);
    if (!text.empty()) text += separator;
    text += digits[value >> 4U];
    text += digits[value & 15U];
  }
  return text;
}

HexBytes bytesOfHex(std::string_view text) {
  std::string bytes;
  std::size_t count = 0;  // of digits
  std::size_t high = 0;
  const Digits written = digitsIn(text);
  for (std::size_t at = written.begin; at < written.end; ++at) {
    if (whiteSpace.find(text[at]) != std::string_view::npos) continue;
    const std::size_t value = valueOf(text[at]);
    if (value == std::string_view::npos) return {"", notADigit(text, at)};
    if (++count % 2 == 1) {
      high = value;
    } else {
      bytes += static_cast<char>(high << 4U | value);
    }
  }
  if (count % 2 == 1) return {"", "an odd number of hexadecimal digits: " + std::to_string(count)};
  return {std::move(bytes), ""};
}

}  // namespace korvex
