#include "markup/TagReader.h"

#include <algorithm>
#include <utility>

#include "markup/Names.h"
#include "platform/Strings.h"

namespace korvex {

namespace {

class TagReader {
 public:
  TagReader(std::string_view text, std::size_t begin) : _text(text), _at(begin + 1) {}

  Tag read() {
    _tag.isEndTag = take("/");
    _tag.name = nameSpanAt(_text, _at);
    _at = _tag.name.end;
    if (_tag.isEndTag) {
      skipTo(_text.find_first_of("<>", _at));
    } else {
      while (readAttribute()) {
      }
    }
    takeEnd();
    _tag.end = _at;
    return std::move(_tag);
  }

 private:
  // False at the end of the tag.
  bool readAttribute() {
    if (skipWhiteSpace()) _tag.state = TagState::WhiteSpace;
    if (isAtEnd()) return false;
    MarkupAttribute attribute{nameSpanAt(_text, _at), std::nullopt};
    if (attribute.name.empty() && !startsWith("=")) {
      skipStray();
      return true;
    }
    _at = attribute.name.end;
    _tag.state = TagState::AttributeName;
    skipWhiteSpace();
    if (take("=")) attribute.value = readValue();
    _tag.attributes.push_back(attribute);
    return true;
  }

  std::optional<Span> readValue() {
    _tag.state = TagState::EqualsSign;
    skipWhiteSpace();
    for (const std::string_view quote : {"\"", "'"}) {
      if (take(quote)) return readQuotedValue(quote);
    }
    const Span value = takeUntil(" \t\r\n<>");
    if (value.empty()) return std::nullopt;
    _tag.state = TagState::Value;
    return value;
  }

  Span readQuotedValue(std::string_view quote) {
    const Span value = takeUntil(quote == "'" ? "'<" : "\"<");
    _tag.state = take(quote) ? TagState::Value : TagState::OpenValue;
    return value;
  }

  // A quote, a slash, or another character that begins no name.
  void skipStray() {
    if (startsWith("/")) _tag.state = TagState::Slash;
    ++_at;
  }

  void takeEnd() {
    if (take("/>")) {
      _tag.state = TagState::ClosedEmpty;
    } else if (take(">")) {
      _tag.state = TagState::Closed;
    }
  }

  [[nodiscard]] bool isAtEnd() const {
    return _at == _text.size() || startsWith(">") || startsWith("<") || startsWith("/>");
  }

  [[nodiscard]] bool startsWith(std::string_view what) const { return _text.substr(_at).starts_with(what); }

  bool take(std::string_view what) {
    if (!startsWith(what)) return false;
    _at += what.size();
    return true;
  }

  Span takeUntil(std::string_view characters) {
    const std::size_t begin = _at;
    skipTo(_text.find_first_of(characters, _at));
    return {begin, _at};
  }

  bool skipWhiteSpace() {
    const std::size_t begin = _at;
    skipTo(_text.find_first_not_of(xmlWhiteSpace, _at));
    return _at > begin;
  }

  void skipTo(std::size_t offset) { _at = std::min(offset, _text.size()); }

  std::string_view _text;
  std::size_t _at;
  Tag _tag;
};

}  // namespace

Tag readTag(std::string_view text, std::size_t begin) { return TagReader(text, begin).read(); }

}  // namespace korvex
