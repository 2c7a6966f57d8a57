#include "lsp/MessageStream.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <istream>
#include <ostream>
#include <string_view>
#include <utility>

namespace korvex::lsp {
namespace {

constexpr std::size_t maxHeaderLine = 4096;  // of longer lines the end is kept
constexpr std::string_view lengthField = "content-length:";

bool sameLetters(std::string_view text, std::string_view lowerCase) {
  return std::equal(text.begin(), text.end(), lowerCase.begin(), lowerCase.end(), [](char left, char right) {
    return (left >= 'A' && left <= 'Z' ? left - 'A' + 'a' : left) == right;
  });
}

std::string_view trimmed(std::string_view text) {
  const std::size_t begin = std::min(text.find_first_not_of(" \t"), text.size());
  return text.substr(begin, text.find_last_not_of(" \t") + 1 - begin);
}

// Where the last length field of a line begins; npos when there is none.
std::size_t lengthFieldIn(std::string_view line) {
  for (std::size_t colon = line.rfind(':'); colon != std::string_view::npos; colon = line.rfind(':', colon - 1)) {
    const std::size_t begin = colon + 1 - std::min(colon + 1, lengthField.size());
    if (sameLetters(line.substr(begin, colon + 1 - begin), lengthField)) return begin;
    if (colon == 0) break;
  }
  return std::string_view::npos;
}

// Any other field of a header, such as Content-Type. Content that is read as a header has quotes in its first field.
bool isField(std::string_view line) {
  const std::string_view name = line.substr(0, std::min(line.find(':'), line.size()));
  return name.size() < line.size() && name.find_first_of("\"{}[] \t") == std::string_view::npos;
}

// The number after the name of a length field; absent when it is not a number.
std::optional<std::size_t> lengthAfter(std::string_view fieldName) {
  const std::string_view digits = trimmed(fieldName);
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
    if (line.size() == 2 * maxHeaderLine) line.erase(0, maxHeaderLine);
    line += static_cast<char>(character);
  }
  return false;
}

std::optional<MessageReader::Header> MessageReader::readHeader() {
  Header header;
  std::string line;
  while (readLine(line)) {
    if (line.empty()) return header;
    const std::size_t field = lengthFieldIn(line);
    if (field == std::string_view::npos) {
      header.afterOtherBytes |= !isField(line);
      continue;
    }
    header.length = lengthAfter(std::string_view(line).substr(field + lengthField.size()));
    header.afterOtherBytes |= field > 0;
  }
  return std::nullopt;
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
  if (_pendingLength) return readContent(*std::exchange(_pendingLength, std::nullopt));
  const std::optional<Header> header = readHeader();
  if (!header) return {FrameStatus::End, {}};
  if (header->length && !header->afterOtherBytes) return readContent(*header->length);
  _pendingLength = header->length;
  return {FrameStatus::Malformed, {}};
}

void writeMessage(std::ostream& out, const std::string& content) {
  out << "Content-Length: " << content.size() << "\r\n\r\n" << content << std::flush;
}

}  // namespace korvex::lsp
