#include "lsp/MessageStream.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <istream>
#include <ostream>
#include <string_view>

namespace korvex::lsp {
namespace {

constexpr std::size_t maxHeaderLine = 4096;  // longer lines are truncated

bool sameLetters(std::string_view text, std::string_view lowerCase) {
  return std::equal(text.begin(), text.end(), lowerCase.begin(), lowerCase.end(), [](char left, char right) {
    return (left >= 'A' && left <= 'Z' ? left - 'A' + 'a' : left) == right;
  });
}

std::string_view trimmed(std::string_view text) {
  const std::size_t begin = std::min(text.find_first_not_of(" \t"), text.size());
  return text.substr(begin, text.find_last_not_of(" \t") + 1 - begin);
}

// The number in a "Content-Length: 12" line; absent for any other line, and when it is not a number.
std::optional<std::size_t> contentLengthIn(std::string_view line) {
  const std::size_t colon = line.find(':');
  if (colon == std::string_view::npos || !sameLetters(line.substr(0, colon), "content-length")) return std::nullopt;
  const std::string_view digits = trimmed(line.substr(colon + 1));
  std::size_t length = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), length);
  if (error != std::errc() || end != digits.data() + digits.size()) return std::nullopt;
  return length;
}

}  // namespace

bool MessageReader::readLine(std::string& line) {
  line.clear();
  for (int character = _in.get(); character != std::istream::traits_type::eof(); character = _in.get()) {
    if (character == '\n') {
      if (line.ends_with('\r')) line.pop_back();
      return true;
    }
    if (line.size() < maxHeaderLine) line += static_cast<char>(character);
  }
  return false;
}

bool MessageReader::readHeader(std::optional<std::size_t>& length) {
  std::string line;
  while (readLine(line)) {
    if (line.empty()) return true;
    if (const auto found = contentLengthIn(line)) length = found;
  }
  return false;
}

// Reads piece by piece, since the claimed length need not be true.
Frame MessageReader::readContent(std::size_t length) {
  Frame frame{length > _maximumBytes ? FrameStatus::TooLarge : FrameStatus::Message, {}};
  std::array<char, 65536> piece{};
  while (length > 0) {
    _in.read(piece.data(), static_cast<std::streamsize>(std::min(length, piece.size())));
    const auto count = static_cast<std::size_t>(_in.gcount());
    if (count == 0) return {FrameStatus::End, {}};
    if (frame.status == FrameStatus::Message) frame.content.append(piece.data(), count);
    length -= count;
  }
  return frame;
}

Frame MessageReader::next() {
  std::optional<std::size_t> length;
  if (!readHeader(length)) return {FrameStatus::End, {}};
  if (!length) return {FrameStatus::Malformed, {}};
  return readContent(*length);
}

void writeMessage(std::ostream& out, const std::string& content) {
  out << "Content-Length: " << content.size() << "\r\n\r\n" << content << std::flush;
}

}  // namespace korvex::lsp
