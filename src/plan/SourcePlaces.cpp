#include "plan/SourcePlaces.h"

#include <algorithm>
#include <cstring>
#include <optional>

#include "plan/SetContents.h"
#include "plan/SqlText.h"

namespace korvex {

namespace {

constexpr std::string_view blanks = " \t\r\n";
constexpr std::string_view cdataBegin = "<![CDATA[";
constexpr std::string_view cdataEnd = "]]>";

bool isBlank(char character) { return blanks.find(character) != std::string_view::npos; }

std::size_t characters(std::string_view text) {
  return static_cast<std::size_t>(std::count_if(
      text.begin(), text.end(), [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U; }));
}

std::size_t firstVisible(std::string_view source, std::size_t at) {
  while (at < source.size()) {
    if (isBlank(source[at])) {
      ++at;
    } else if (source.substr(at).starts_with(cdataBegin)) {
      at += cdataBegin.size();
    } else {
      break;
    }
  }
  return at;
}

// Whether only white space is between the start of a CDATA section and a place.
bool followsCdataBegin(std::string_view source, std::size_t at) {
  const std::size_t last = source.substr(0, at).find_last_not_of(blanks);
  return last != std::string_view::npos && source.substr(0, last + 1).ends_with(cdataBegin);
}

// The offset after a comment at the front and the white space around it, which are dropped between the texts of an
// element; without a comment, that of the first visible character.
struct CommentSearch {
  bool found = false;
  std::size_t end = 0;
};
CommentSearch commentIn(std::string_view source) {
  const std::size_t begin = std::min(source.find_first_not_of(blanks), source.size());
  const std::size_t end = source.substr(begin).starts_with("<!--") ? source.find("-->", begin) : std::string_view::npos;
  if (end == std::string_view::npos) return {false, begin};
  return {true, std::min(source.find_first_not_of(blanks, end + 3), source.size())};
}

// The UTF-8 length of the character of "&#...;"; named entities have one byte.
std::size_t bytesOfReference(std::string_view reference) {
  unsigned long code = 0;
  if (!reference.starts_with("&#")) return 1;
  const bool hexadecimal = reference.substr(2).starts_with('x');
  for (const char digit : reference.substr(hexadecimal ? 3 : 2)) {
    if (digit == ';') break;
    const int value = digit <= '9' ? digit - '0' : (digit | 0x20) - 'a' + 10;
    code = code * (hexadecimal ? 16 : 10) + static_cast<unsigned long>(value);
  }
  return code < 0x80 ? 1 : code < 0x800 ? 2 : code < 0x10000 ? 3 : 4;
}

XMLPosition positionOf(const XMLNode& node) { return node.position().value_or(XMLPosition()); }

// The position of an offset at or after the start of a node.
XMLPosition positionIn(const XMLNode& node, std::string_view source, std::size_t offset) {
  const std::size_t begin = std::min(node.offset(), offset);
  return advanced(positionOf(node), source.substr(begin, offset - begin));
}

// After the opening quote of an attribute's value; absent if it is not found.
std::optional<std::size_t> valueBegin(std::string_view source, std::size_t tag, std::string_view attribute) {
  for (std::size_t at = tag; at < source.size() && source[at] != '>'; ++at) {
    const std::size_t end = at + attribute.size();
    if (source[at] == '"' || source[at] == '\'') {
      at = std::min(source.find(source[at], at + 1), source.size());
    } else if (isBlank(source[at]) && source.substr(at + 1).starts_with(attribute)) {
      const std::size_t equals = source.find_first_not_of(blanks, end + 1);
      if (equals == std::string_view::npos || source[equals] != '=') continue;
      return source.find_first_not_of(blanks, equals + 1) + 1;
    }
  }
  return std::nullopt;
}

}  // namespace

std::size_t sourceOffset(std::string_view source, std::size_t at, std::size_t decoded) {
  bool inCdata = followsCdataBegin(source, at);
  std::size_t searched = 0;  // there is no comment up to here
  while (at < source.size()) {
    const std::string_view rest = source.substr(at);
    if (!inCdata && at >= searched && (isBlank(rest.front()) || rest.front() == '<')) {
      const CommentSearch comment = commentIn(rest);
      searched = at + comment.end + 1;
      if (comment.found) {
        at += comment.end;
        continue;
      }
    }
    if (inCdata && rest.starts_with(cdataEnd)) {
      inCdata = false;
      at += cdataEnd.size();
    } else if (!inCdata && rest.starts_with(cdataBegin)) {
      inCdata = true;
      at += cdataBegin.size();
    } else if (decoded == 0 || (!inCdata && rest.front() == '<')) {
      break;
    } else if (!inCdata && rest.front() == '&') {
      const std::string_view reference = rest.substr(0, rest.find(';') + 1);
      decoded -= std::min(decoded, bytesOfReference(reference));
      at += std::max<std::size_t>(reference.size(), 1);
    } else {
      at += rest.starts_with("\r\n") ? 2 : 1;
      --decoded;
    }
  }
  return at;
}

XMLPosition PlaceCursor::of(const XMLNode& node) { return _source ? at(node.offset()) : positionOf(node); }

XMLPosition PlaceCursor::ofText(const XMLNode& text) {
  return _source ? at(firstVisible(*_source, text.offset())) : positionOf(text);
}

XMLPosition PlaceCursor::ofContent(const XMLNode& element) {
  for (const XMLNode& child : element.children()) {
    if (child.kind() == XMLNodeKind::Text) return ofText(child);
  }
  return of(element);
}

XMLPosition PlaceCursor::at(std::size_t offset) {
  if (offset < _offset) _offset = 0, _position = {};
  std::string_view passed = _source->substr(_offset, offset - _offset);
  while (const void* end = passed.empty() ? nullptr : std::memchr(passed.data(), '\n', passed.size())) {
    passed.remove_prefix(static_cast<std::size_t>(static_cast<const char*>(end) - passed.data()) + 1);
    _position = {_position.line + 1, 1};
  }
  _position.column += characters(passed);
  _offset = offset;
  return _position;
}

XMLPosition placeInAttribute(const XMLNode& element, std::string_view attribute, std::size_t offset) {
  const OptionalStringView source = element.source();
  const auto begin = source ? valueBegin(*source, element.offset(), attribute) : std::nullopt;
  if (!begin) return positionOf(element);
  return positionIn(element, *source, sourceOffset(*source, *begin, offset));
}

XMLPosition placeInText(const XMLNode& node, std::string_view word, std::size_t earlier) {
  const OptionalStringView source = node.source();
  if (!source) return positionOf(node);
  std::optional<std::size_t> last;
  const auto search = [&](const XMLNode& text) {
    const std::string_view characters = text.text().value_or(std::string_view());
    for (std::size_t at = findSqlWord(characters, word, 0); at < characters.size();
         at = findSqlWord(characters, word, at + 1)) {
      last = sourceOffset(*source, text.offset(), at);
      if (earlier-- == 0) return true;
    }
    return false;
  };
  if (node.kind() == XMLNodeKind::Text) {
    static_cast<void>(search(node));
  } else {
    for (const XMLNode& child : node.children()) {
      if (child.kind() == XMLNodeKind::Text && search(child)) break;
    }
  }
  const bool text = node.kind() == XMLNodeKind::Text;
  return positionIn(node, *source, last.value_or(text ? firstVisible(*source, node.offset()) : node.offset()));
}

}  // namespace korvex
