#include "lsp/TextDocument.h"

#include <algorithm>
#include <utility>

#include "platform/Strings.h"

namespace korvex::lsp {

namespace {

constexpr std::size_t blockSize = 1024;

// The UTF-16 units of the character that begins with this byte.
std::size_t unitsOf(char firstByte) { return static_cast<unsigned char>(firstByte) >= 0xF0U ? 2 : 1; }

// The units of the characters that begin in the text.
std::size_t countUnits(std::string_view text) {
  std::size_t units = 0;
  for (const char byte : text) units += continuesCharacter(byte) ? 0 : unitsOf(byte);
  return units;
}

std::size_t beginOfCharacter(std::string_view text, std::size_t at) {
  while (at < text.size() && continuesCharacter(text[at])) ++at;
  return at;
}

std::size_t numberOf(const Json& value) { return value.is_number_unsigned() ? value.get<std::size_t>() : 0; }

Position positionOfJson(const Json& json) {
  return {numberOf(member(json, "line")), numberOf(member(json, "character"))};
}

// Member by member: there are thousands of positions in a response, and braces would make a list of each member first.
Json jsonOf(const Position& position) {
  Json json = Json::object();
  json["line"] = position.line;
  json["character"] = position.character;
  return json;
}

}  // namespace

Json jsonOf(const Range& range) {
  Json json = Json::object();
  json["start"] = jsonOf(range.begin);
  json["end"] = jsonOf(range.end);
  return json;
}

Position positionIn(const Json& params) { return positionOfJson(member(params, "position")); }

TextDocument::TextDocument(std::string uri, std::string text) : _uri(std::move(uri)) { replace({0, 0}, text); }

void TextDocument::change(const Json& contentChange) {
  const std::string replacement = stringOf(member(contentChange, "text"));
  const Json& range = member(contentChange, "range");
  if (!range.is_object()) return replace({0, _text.size()}, replacement);
  const std::size_t begin = offsetOf(positionOfJson(member(range, "start")));
  const std::size_t end = offsetOf(positionOfJson(member(range, "end")));
  replace({begin, std::max(begin, end)}, replacement);
}

void TextDocument::replace(Span span, std::string_view replacement) {
  _text.replace(span.begin, span.end - span.begin, replacement);
  _unitsBeforeBlock.resize(std::min(_unitsBeforeBlock.size(), span.begin / blockSize + 1));
  findLines(span, span.begin + replacement.size());
}

// A line ends with LF, CR LF or a lone CR, as in the loader. Lines that begin before or after the replaced range stay.
// One that begins with the range does not: a CR before it may now be half of a line end.
void TextDocument::findLines(Span replaced, std::size_t end) {
  const auto changed = std::lower_bound(_lineStarts.begin() + 1, _lineStarts.end(), replaced.begin);
  const auto after = std::upper_bound(changed, _lineStarts.end(), replaced.end);
  for (auto start = after; start != _lineStarts.end(); ++start) *start = *start - replaced.end + end;
  const std::string_view text = std::string_view(_text).substr(0, end);
  std::vector<std::size_t> found;
  std::size_t at = text.find_first_of("\r\n", replaced.begin - std::min(replaced.begin, std::size_t{1}));
  while (at != std::string_view::npos) {
    at += _text.compare(at, 2, "\r\n") == 0 ? 2 : 1;
    if (at <= end) found.push_back(at);
    at = text.find_first_of("\r\n", at);
  }
  _lineStarts.insert(_lineStarts.erase(changed, after), found.begin(), found.end());
}

// Counted by blocks, since a document may be a single long line.
std::size_t TextDocument::unitsBefore(std::size_t offset) const {
  const std::string_view text = _text;
  const std::size_t block = offset / blockSize;
  while (_unitsBeforeBlock.size() <= block) {
    const std::string_view last = text.substr((_unitsBeforeBlock.size() - 1) * blockSize, blockSize);
    _unitsBeforeBlock.push_back(_unitsBeforeBlock.back() + countUnits(last));
  }
  return _unitsBeforeBlock[block] + countUnits(text.substr(block * blockSize, offset % blockSize));
}

std::size_t TextDocument::unitsBetween(std::size_t begin, std::size_t end) const {
  if (end - begin > blockSize) return unitsBefore(end) - unitsBefore(begin);
  return countUnits(std::string_view(_text).substr(begin, end - begin));
}

std::size_t TextDocument::endOfLine(std::size_t line) const {
  std::size_t end = line + 1 < _lineStarts.size() ? _lineStarts[line + 1] : _text.size();
  while (end > _lineStarts[line] && (_text[end - 1] == '\n' || _text[end - 1] == '\r')) --end;
  return end;
}

std::size_t TextDocument::offsetOf(const Position& position) const {
  if (position.line >= _lineStarts.size()) return _text.size();
  const std::size_t begin = _lineStarts[position.line];
  const std::size_t end = endOfLine(position.line);
  std::size_t near = begin;  // at most a block before the position
  for (std::size_t far = end; far - near > blockSize;) {
    const std::size_t middle = near + (far - near) / 2;
    (unitsBetween(begin, middle) <= position.character ? near : far) = middle;
  }
  std::size_t at = near == begin ? begin : beginOfCharacter(_text, near);
  for (std::size_t units = unitsBetween(begin, at); at < end; at = beginOfCharacter(_text, at + 1)) {
    units += unitsOf(_text[at]);
    if (units > position.character) break;
  }
  return std::min(at, end);
}

Position TextDocument::positionOf(std::size_t offset) const {
  offset = std::min(offset, _text.size());
  const auto line = std::upper_bound(_lineStarts.begin(), _lineStarts.end(), offset) - 1;
  return {static_cast<std::size_t>(line - _lineStarts.begin()), unitsBetween(*line, offset)};
}

Json TextDocument::rangeOf(Span span) const { return jsonOf(positionsOf(span)); }

}  // namespace korvex::lsp
