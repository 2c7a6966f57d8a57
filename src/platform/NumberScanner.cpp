#include "platform/NumberScanner.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <system_error>

namespace korvex {

namespace {

constexpr std::string_view whiteSpace = " \t\n\v\f\r";
constexpr std::string_view digits = "0123456789";

std::string_view withoutWhiteSpaceAround(std::string_view text) {
  const std::size_t first = text.find_first_not_of(whiteSpace);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(whiteSpace) - first + 1);
}

// Removes the digits at the front of the text and returns their number.
std::size_t takeDigits(std::string_view& text) {
  const std::size_t count = std::min(text.find_first_not_of(digits), text.size());
  text.remove_prefix(count);
  return count;
}

bool takeAnyOf(std::string_view& text, std::string_view characters) {
  if (text.empty() || characters.find(text.front()) == std::string_view::npos) return false;
  text.remove_prefix(1);
  return true;
}

bool isUnsignedDecimal(std::string_view text) {
  std::size_t mantissa = takeDigits(text);
  if (takeAnyOf(text, ".")) mantissa += takeDigits(text);
  if (mantissa == 0) return false;
  if (takeAnyOf(text, "eE")) {
    takeAnyOf(text, "+-");
    if (takeDigits(text) == 0) return false;
  }
  return text.empty();
}

std::int64_t exponentOf(std::string_view text) {
  using Limits = std::numeric_limits<std::int32_t>;
  takeAnyOf(text, "+");
  std::int32_t exponent = 0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), exponent);
  if (result.ec == std::errc::result_out_of_range) exponent = text.front() == '-' ? Limits::min() : Limits::max();
  return exponent;
}

// For an unsigned number that a double cannot hold: true if it is too large, false if it is too small.
bool isAtLeastOne(std::string_view number) {
  const std::size_t mantissaLength = std::min(number.find_first_of("eE"), number.size());
  const std::string_view mantissa = number.substr(0, mantissaLength);
  const std::string_view exponent = number.substr(std::min(mantissaLength + 1, number.size()));
  const std::size_t point = std::min(mantissa.find('.'), mantissa.size());
  const std::size_t leading = mantissa.find_first_of("123456789");
  return static_cast<std::int64_t>(point) - static_cast<std::int64_t>(leading) + exponentOf(exponent) >= 0;
}

}  // namespace

std::optional<double> scanDecimalNumber(std::string_view text) {
  text = withoutWhiteSpaceAround(text);
  const bool negative = !text.empty() && text.front() == '-';
  takeAnyOf(text, "+-");
  if (!isUnsignedDecimal(text)) return std::nullopt;
  double value = 0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
  if (result.ec == std::errc::result_out_of_range) value = isAtLeastOne(text) ? std::numeric_limits<double>::max() : 0;
  return negative ? -value : value;
}

}  // namespace korvex
