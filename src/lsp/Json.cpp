#include "lsp/Json.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <string_view>
#include <system_error>

namespace korvex::lsp {

namespace {

constexpr std::size_t escapeSize = 6;  // \uD83D

// The UTF-16 unit of a "\u" escape.
std::optional<unsigned> unitAt(std::string_view text, std::size_t at) {
  const std::string_view escape = text.substr(std::min(at, text.size()), escapeSize);
  if (escape.size() < escapeSize || !escape.starts_with("\\u")) return std::nullopt;
  unsigned unit = 0;
  const auto [end, error] = std::from_chars(escape.data() + 2, escape.data() + escapeSize, unit, 16);
  return error == std::errc() && end == escape.data() + escapeSize ? std::optional(unit) : std::nullopt;
}

bool isWithin(std::optional<unsigned> unit, unsigned first, unsigned last) {
  return unit && first <= *unit && *unit <= last;
}

// Replaces the escape of each lone surrogate by that of U+FFFD.
std::string withoutLoneSurrogates(std::string text) {
  for (std::size_t at = text.find('\\'); at != std::string::npos; at = text.find('\\', at)) {
    const std::optional<unsigned> unit = unitAt(text, at);
    const bool pair = isWithin(unit, 0xD800, 0xDBFF) && isWithin(unitAt(text, at + escapeSize), 0xDC00, 0xDFFF);
    if (!pair && isWithin(unit, 0xD800, 0xDFFF)) text.replace(at, escapeSize, "\\uFFFD");
    at += pair ? 2 * escapeSize : unit ? escapeSize : 2;
  }
  return text;
}

}  // namespace

Json parsedMessage(const std::string& text) {
  Json message = Json::parse(text, nullptr, false);
  return message.is_discarded() ? Json::parse(withoutLoneSurrogates(text), nullptr, false) : message;
}

}  // namespace korvex::lsp
