#include "language/Markup.h"

#include <algorithm>
#include <array>
#include <unordered_map>

#include "korvex/QXDAOPackReader.h"

namespace korvex {

namespace {

constexpr std::string_view whiteSpace = " \t\r\n";
constexpr std::string_view commentOpening = "<!--";

// Markup that holds no elements, and what ends it.
struct Passage {
  std::string_view opening;
  std::string_view closing;
};

constexpr std::array<Passage, 4> passages = {{
    {commentOpening, "-->"},
    {"<![CDATA[", "]]>"},
    {"<?", "?>"},
    {"<!", ">"},
}};

}  // namespace

// Goes through the text once.
class MarkupScanner {
 public:
  explicit MarkupScanner(Markup& markup)
      : _text(markup._text), _elements(markup._elements), _comments(markup._comments), _passages(markup._passages) {}

  void run() {
    while ((_at = _text.find('<', _at)) != std::string_view::npos) {
      if (!skipPassage()) takeTag();
    }
    closeDownTo(0, _text.size());
  }

 private:
  [[nodiscard]] bool skipPassage() {
    const auto* passage = std::find_if(passages.begin(), passages.end(), [this](const Passage& candidate) {
      return _text.substr(_at).starts_with(candidate.opening);
    });
    if (passage == passages.end()) return false;
    const std::size_t begin = _at;
    const std::size_t end = _text.find(passage->closing, _at + passage->opening.size());
    _at = end == std::string_view::npos ? _text.size() : end + passage->closing.size();
    const bool closed = end != std::string_view::npos;
    _passages.push_back({begin, closed ? _at : _at + 1});
    if (closed && passage->opening == commentOpening) _comments.push_back({begin, _at});
    return true;
  }

  void takeTag() {
    if (_text.substr(_at).starts_with("</")) {
      takeEndTag();
    } else {
      takeStartTag();
    }
  }

  void takeEndTag() {
    const std::size_t begin = _at;
    _at += 2;
    const Span name = takeUntil(endsMarkupName);
    static_cast<void>(takeUntil("<>"));
    if (is('>')) ++_at;
    closeElementNamed(_text.substr(name.begin, name.end - name.begin), begin);
  }

  void takeStartTag() {
    MarkupElement element;
    element.startTag.begin = _at++;
    element.name = takeUntil(endsMarkupName);
    if (!_open.empty()) element.parent = _open.back();
    while (takeAttribute(element)) {
    }
    const bool empty = is('/');
    if (empty) ++_at;
    if (is('>')) ++_at;
    element.startTag.end = element.whole.end = _at;
    element.whole.begin = element.startTag.begin;
    _elements.push_back(std::move(element));
    if (empty) return;
    _open.push_back(_elements.size() - 1);
    ++_openNamed[nameOf(_open.back())];
  }

  // False at the end of the tag: before ">", "/>", or what cannot belong to it.
  [[nodiscard]] bool takeAttribute(MarkupElement& element) {
    skipWhiteSpace();
    if (_at == _text.size() || is('>') || is('<') || _text.substr(_at).starts_with("/>")) return false;
    MarkupAttribute attribute;
    attribute.name = takeUntil(endsMarkupName);
    const std::size_t nameEnd = _at;
    skipWhiteSpace();
    if (is('=')) {
      ++_at;
      skipWhiteSpace();
      attribute.value = takeValue();
    } else if (attribute.name.begin == nameEnd) {
      ++_at;  // a stray quote or slash
      return true;
    } else {
      _at = nameEnd;
    }
    element.attributes.push_back(attribute);
    return true;
  }

  // A value that nobody closed ends before the next tag.
  [[nodiscard]] std::optional<Span> takeValue() {
    if (!is('"') && !is('\'')) {
      const Span bare = takeUntil(" \t\r\n<>");
      return bare.begin == bare.end ? std::nullopt : std::optional(bare);
    }
    const char quote = _text[_at++];
    const Span value = takeUntil(quote == '"' ? "\"<" : "'<");
    if (is(quote)) ++_at;
    return value;
  }

  // An end tag closes the nearest element of its name, and with it those inside that were left open.
  void closeElementNamed(std::string_view name, std::size_t endTag) {
    const auto open = _openNamed.find(name);
    if (open == _openNamed.end() || open->second == 0) return;
    const auto found =
        std::find_if(_open.rbegin(), _open.rend(), [&](std::size_t index) { return nameOf(index) == name; });
    const auto place = static_cast<std::size_t>(_open.rend() - found) - 1;
    closeDownTo(place + 1, endTag);
    closeDownTo(place, _at);
  }

  void closeDownTo(std::size_t count, std::size_t end) {
    for (; _open.size() > count; _open.pop_back()) {
      _elements[_open.back()].whole.end = end;
      --_openNamed[nameOf(_open.back())];
    }
  }

  [[nodiscard]] std::string_view nameOf(std::size_t index) const {
    const Span span = _elements[index].name;
    return _text.substr(span.begin, span.end - span.begin);
  }

  [[nodiscard]] bool is(char character) const { return _at < _text.size() && _text[_at] == character; }

  void skipWhiteSpace() { _at = std::min(_text.find_first_not_of(whiteSpace, _at), _text.size()); }

  [[nodiscard]] Span takeUntil(std::string_view characters) {
    const std::size_t begin = _at;
    _at = std::min(_text.find_first_of(characters, _at), _text.size());
    return {begin, _at};
  }

  std::string_view _text;
  std::vector<MarkupElement>& _elements;
  std::vector<Span>& _comments;
  std::vector<Span>& _passages;
  std::vector<std::size_t> _open;
  std::unordered_map<std::string_view, std::size_t> _openNamed;  // how many; spares a search for what closes nothing
  std::size_t _at = 0;
};

Markup::Markup(std::string_view text) : _text(text) { MarkupScanner(*this).run(); }

std::optional<std::string_view> Markup::valueOf(const MarkupElement& element, std::string_view name) const {
  for (const MarkupAttribute& attribute : element.attributes) {
    if (attribute.value && textOf(attribute.name) == name) return textOf(*attribute.value);
  }
  return std::nullopt;
}

const MarkupElement* Markup::startTagAt(std::size_t offset) const {
  const auto after = std::partition_point(_elements.begin(), _elements.end(), [offset](const MarkupElement& element) {
    return element.startTag.begin < offset;
  });
  if (after == _elements.begin()) return nullptr;
  const MarkupElement& element = *(after - 1);
  const bool closed = _text[element.startTag.end - 1] == '>';
  return offset < element.startTag.end + (closed ? 0 : 1) ? &element : nullptr;
}

bool Markup::isInPassage(std::size_t offset) const {
  const auto after = std::partition_point(_passages.begin(), _passages.end(),
                                          [offset](const Span& passage) { return passage.begin < offset; });
  return after != _passages.begin() && offset < (after - 1)->end;
}

const MarkupElement* Markup::parentOf(const MarkupElement& element) const {
  return element.parent == MarkupElement::none ? nullptr : &_elements[element.parent];
}

}  // namespace korvex
