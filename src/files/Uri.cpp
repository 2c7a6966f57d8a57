#include "files/Uri.h"

namespace korvex {
namespace {

constexpr std::string_view hexDigits = "0123456789ABCDEF";

int valueOfHexDigit(char digit) {
  if (digit >= '0' && digit <= '9') return digit - '0';
  const int letter = digit | 0x20;
  return letter >= 'a' && letter <= 'f' ? letter - 'a' + 10 : -1;
}

bool isUnreserved(char character) {
  const bool letter = (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z');
  const bool digit = character >= '0' && character <= '9';
  return letter || digit || std::string_view("-._~/").find(character) != std::string_view::npos;
}

}  // namespace

std::string percentEncoded(char byte) {
  const auto bits = static_cast<unsigned char>(byte);
  return {'%', hexDigits[bits >> 4U], hexDigits[bits & 15U]};
}

std::string uriPathOf(std::string_view path) {
  std::string encoded;
  for (const char character : path) {
    if (isUnreserved(character)) {
      encoded += character;
    } else {
      encoded += percentEncoded(character);
    }
  }
  return encoded;
}

std::string percentDecoded(std::string_view text) {
  std::string decoded;
  for (std::size_t at = 0; at < text.size(); ++at) {
    const int high = at + 2 < text.size() && text[at] == '%' ? valueOfHexDigit(text[at + 1]) : -1;
    const int low = high < 0 ? -1 : valueOfHexDigit(text[at + 2]);
    decoded += low < 0 ? text[at] : static_cast<char>(high * 16 + low);
    if (low >= 0) at += 2;
  }
  return decoded;
}

}  // namespace korvex
