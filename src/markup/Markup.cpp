#include "markup/Markup.h"

#include <algorithm>
#include <array>
#include <map>
#include <utility>

namespace korvex {

namespace {

constexpr std::string_view commentOpening = "<!--";

// Markup that contains no elements, and what ends it.
struct OpaqueMarkup {
  std::string_view opening;
  std::string_view closing;
};

constexpr std::array<OpaqueMarkup, 4> opaqueMarkup = {{
    {commentOpening, "-->"},
    {"<![CDATA[", "]]>"},
    {"<?", "?>"},
    {"<!", ">"},
}};

}  // namespace

// Goes through the text once.
class MarkupScanner {
 public:
  explicit MarkupScanner(Markup& markup) : _markup(markup), _text(markup._text), _elements(markup._elements) {}

  void run() {
    while ((_at = _text.find('<', _at)) != std::string_view::npos) {
      if (!skipOpaque()) takeTag();
    }
    closeDownTo(0, _text.size());
  }

 private:
  [[nodiscard]] bool skipOpaque() {
    const auto* row = std::find_if(opaqueMarkup.begin(), opaqueMarkup.end(), [this](const OpaqueMarkup& candidate) {
      return _text.substr(_at).starts_with(candidate.opening);
    });
    if (row == opaqueMarkup.end()) return false;
    const std::size_t begin = _at;
    const std::size_t closing = _text.find(row->closing, _at + row->opening.size());
    const bool closed = closing != std::string_view::npos;
    _at = closed ? closing + row->closing.size() : _text.size();
    _markup._opaque.push_back({begin, closed ? _at : _at + 1});
    if (closed && row->opening == commentOpening) _markup._comments.push_back({begin, _at});
    return true;
  }

  void takeTag() {
    const std::size_t begin = _at;
    Tag tag = readTag(_text, begin);
    _at = tag.end;
    if (tag.isEndTag) {
      closeElement(tag, begin);
    } else {
      addElement(std::move(tag), begin);
    }
  }

  void addElement(Tag tag, std::size_t begin) {
    const Span span{begin, tag.end};
    const bool empty = tag.state == TagState::ClosedEmpty;
    const std::size_t parent = _open.empty() ? MarkupElement::none : _open.back();
    _elements.push_back({tag.name, span, span, empty, std::move(tag.attributes), parent});
    if (empty) return;
    _open.push_back(_elements.size() - 1);
    ++_openNamed[tag.name.of(_text)];
  }

  // An end tag closes the innermost element of its name, and with it those inside that were left open.
  void closeElement(const Tag& tag, std::size_t begin) {
    const std::string_view name = tag.name.of(_text);
    const auto open = _openNamed.find(name);
    if (open == _openNamed.end() || open->second == 0) return;
    while (nameOf(_open.back()) != name) closeDownTo(_open.size() - 1, begin);
    _elements[_open.back()].closed = tag.isClosed();
    closeDownTo(_open.size() - 1, tag.end);
  }

  void closeDownTo(std::size_t count, std::size_t end) {
    for (; _open.size() > count; _open.pop_back()) {
      _elements[_open.back()].whole.end = end;
      --_openNamed[nameOf(_open.back())];
    }
  }

  [[nodiscard]] std::string_view nameOf(std::size_t index) const { return _elements[index].name.of(_text); }

  Markup& _markup;
  std::string_view _text;
  std::vector<MarkupElement>& _elements;
  std::vector<std::size_t> _open;
  std::map<std::string_view, std::size_t> _openNamed;  // how many; saves a search for an end tag that closes nothing
  std::size_t _at = 0;
};

Markup::Markup(std::string_view text) : _text(text) { MarkupScanner(*this).run(); }

const MarkupAttribute* Markup::attributeOf(const MarkupElement& element, std::string_view name) const {
  const auto found =
      std::find_if(element.attributes.begin(), element.attributes.end(),
                   [&](const MarkupAttribute& attribute) { return attribute.value && textOf(attribute.name) == name; });
  return found == element.attributes.end() ? nullptr : &*found;
}

std::optional<std::string_view> Markup::valueOf(const MarkupElement& element, std::string_view name) const {
  const MarkupAttribute* attribute = attributeOf(element, name);
  return attribute ? std::optional(textOf(*attribute->value)) : std::nullopt;
}

const MarkupElement* Markup::lastElementBefore(std::size_t offset) const {
  const auto after = std::partition_point(_elements.begin(), _elements.end(), [offset](const MarkupElement& element) {
    return element.startTag.begin < offset;
  });
  return after == _elements.begin() ? nullptr : &*(after - 1);
}

const MarkupElement* Markup::startTagAt(std::size_t offset) const {
  const MarkupElement* element = lastElementBefore(offset);
  if (!element) return nullptr;
  const bool ended = _text[element->startTag.end - 1] == '>';
  return offset < element->startTag.end + (ended ? 0 : 1) ? element : nullptr;
}

bool Markup::isInOpaqueMarkup(std::size_t offset) const {
  const auto after =
      std::partition_point(_opaque.begin(), _opaque.end(), [offset](const Span& span) { return span.begin < offset; });
  return after != _opaque.begin() && offset < (after - 1)->end;
}

const MarkupElement* Markup::parentOf(const MarkupElement& element) const {
  return element.parent == MarkupElement::none ? nullptr : &_elements[element.parent];
}

}  // namespace korvex
