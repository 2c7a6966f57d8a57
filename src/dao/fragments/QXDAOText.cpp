#include "korvex/QXDAOText.h"

#include <algorithm>
#include <cstddef>

#include "dao/fragments/ListReferenceScan.h"
#include "korvex/QXDAOElement.h"
#include "korvex/QXDAOPackReader.h"
#include "platform/Strings.h"

namespace korvex {

namespace {

constexpr std::string_view listSeparator = ", ";

std::string_view takeStar(OptionalStringView& stars) { return spaceNewLineTabBothEndsTrimmed(takePiece(stars, ',')); }

// Where a scan writes an expanded text: room for all of it.
class TextOutput {
 public:
  explicit TextOutput(char* room) : _at(room) {}
  void append(std::string_view text) { _at += text.copy(_at, text.size()); }
  void append(const ReferenceList& list) {
    for (OptionalStringView stars = list.stars; stars;) {
      appendItem(list.format, takeStar(stars));
      if (stars) append(listSeparator);
    }
  }

 private:
  void appendItem(std::string_view format, std::string_view star) {
    std::size_t begin = 0;
    for (std::size_t mark = format.find('*'); mark != std::string_view::npos; mark = format.find('*', begin)) {
      append(format.substr(begin, mark - begin));
      append(star);
      begin = mark + 1;
    }
    append(format.substr(begin));
  }

  char* _at;
};

// The same for a scan that only asks how long the text would become. A list is not written out for
// it: it may be as long as its format times its stars.
class LengthOutput {
 public:
  void append(std::string_view text) { _length += text.size(); }
  void append(const ReferenceList& list) {
    const auto marks = static_cast<std::size_t>(std::count(list.format.begin(), list.format.end(), '*'));
    for (OptionalStringView stars = list.stars; stars;) {
      _length += list.format.size() - marks + marks * takeStar(stars).size();
      if (stars) _length += listSeparator.size();
    }
  }
  [[nodiscard]] std::size_t length() const { return _length; }

 private:
  std::size_t _length = 0;
};

// What becomes of a text: first only its length, so that the memory for it can be of that length.
class Expansion {
 public:
  explicit Expansion(std::string_view text) : _text(text), _length(text.size()) {
    if (!mayHoldReference(text)) return;
    ListReferenceScan<LengthOutput> scan(text);
    _changes = scan.run();
    if (_changes) _length = scan.output().length();
  }

  [[nodiscard]] bool changes() const { return _changes; }
  [[nodiscard]] std::size_t length() const { return _length; }
  void writeTo(char* room) const {
    if (_changes) {
      ListReferenceScan<TextOutput>(_text, TextOutput(room)).run();
    } else {
      _text.copy(room, _length);
    }
  }

 private:
  std::string_view _text;
  std::size_t _length;
  bool _changes = false;
};

}  // namespace

std::size_t QXDAOText::expandedLength(std::string_view text) { return Expansion(text).length(); }

void QXDAOText::initWithXML(const XMLNode& xml) {
  QXDAOElement::initWithXML(xml);
  if (const OptionalStringView text = xml.text()) {
    setExpression(spaceNewLineTabBothEndsTrimmed(*text));
  } else {
    setExpression(spaceNewLineTabBothEndsTrimmed(OptionalStringView(xml.stringValue())));
  }
  processText();
}

void QXDAOText::initWithText(OptionalStringView text) {
  QXDAOElement::initWithXML({});
  setExpression(text);
  processText();
}

std::unique_ptr<QXDAOText> QXDAOText::elementWithText(OptionalStringView text) {
  if (!text) return std::make_unique<QXDAOText>();
  const Expansion expansion(*text);
  std::unique_ptr<QXDAOText> element(new (expansion.length()) QXDAOText);
  expansion.writeTo(element->behind());
  element->_lengthBehind = expansion.length();
  return element;
}

void QXDAOText::processText() {
  const Expansion expansion(expression().value_or(std::string_view()));
  if (!expansion.changes()) return;
  CompactString expanded =
      CompactString::filled(expansion.length(), [&expansion](char* room) { expansion.writeTo(room); });
  _lengthBehind = notBehind;
  _expression = std::move(expanded);
}

}  // namespace korvex
