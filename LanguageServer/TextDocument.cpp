#include "LanguageServer/TextDocument.h"

#include <algorithm>
#include <utility>

namespace korvex::lsp {

namespace {

bool continuesCharacter(char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U; }

// The UTF-16 units of a character, told by its first byte.
std::size_t unitsOf(char firstByte) { return static_cast<unsigned char>(firstByte) >= 0xF0U ? 2 : 1; }

std::size_t nextCharacter(std::string_view text, std::size_t at) {
  ++at;
  while (at < text.size() && continuesCharacter(text[at])) ++at;
  return at;
}

std::size_t numberOf(const Json& value) { return value.is_number_unsigned() ? value.get<std::size_t>() : 0; }

Position positionOfJson(const Json& json) {
  return {numberOf(member(json, "line")), numberOf(member(json, "character"))};
}

Json jsonOf(const Position& position) { return {{"line", position.line}, {"character", position.character}}; }

}  // namespace

Position positionIn(const Json& params) { return positionOfJson(member(params, "position")); }

TextDocument::TextDocument(std::string uri, std::string text) : _uri(std::move(uri)), _text(std::move(text)) {
  findLines();
}

// A line ends with LF, CR LF or a CR alone, as in the loader.
void TextDocument::findLines() {
  _lineStarts.assign(1, 0);
  for (std::size_t at = _text.find_first_of("\r\n"); at < _text.size(); at = _text.find_first_of("\r\n", at)) {
    at += _text.compare(at, 2, "\r\n") == 0 ? 2 : 1;
    _lineStarts.push_back(at);
  }
}

void TextDocument::change(const Json& contentChange) {
  const std::string replacement = stringOf(member(contentChange, "text"));
  const Json& range = member(contentChange, "range");
  if (range.is_object()) {
    const std::size_t begin = offsetOf(positionOfJson(member(range, "start")));
    const std::size_t end = std::max(begin, offsetOf(positionOfJson(member(range, "end"))));
    _text.replace(begin, end - begin, replacement);
  } else {
    _text = replacement;
  }
  findLines();
}

std::size_t TextDocument::offsetOf(const Position& position) const {
  if (position.line >= _lineStarts.size()) return _text.size();
  std::size_t at = _lineStarts[position.line];
  const std::size_t end = std::min(_text.find_first_of("\r\n", at), _text.size());
  for (std::size_t units = 0; at < end && units < position.character;) {
    units += unitsOf(_text[at]);
    if (units <= position.character) at = nextCharacter(_text, at);
  }
  return at;
}

Position TextDocument::positionOf(std::size_t offset) const {
  offset = std::min(offset, _text.size());
  const auto line = std::upper_bound(_lineStarts.begin(), _lineStarts.end(), offset) - 1;
  Position position{static_cast<std::size_t>(line - _lineStarts.begin()), 0};
  for (std::size_t at = *line; at < offset; at = nextCharacter(_text, at)) position.character += unitsOf(_text[at]);
  return position;
}

Json TextDocument::rangeOf(Span span) const {
  return {{"start", jsonOf(positionOf(span.begin))}, {"end", jsonOf(positionOf(span.end))}};
}

}  // namespace korvex::lsp
