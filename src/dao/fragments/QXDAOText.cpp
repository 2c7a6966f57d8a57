#include "korvex/QXDAOText.h"

#include <algorithm>
#include <cstddef>
#include <string>

#include "dao/core/Building.h"
#include "dao/fragments/ListReferenceScan.h"
#include "korvex/QXDAOElement.h"
#include "korvex/QXDAOPackReader.h"
#include "platform/Strings.h"

namespace korvex {

namespace {

constexpr std::string_view listSeparator = ", ";

std::string_view takeStar(OptionalStringView& stars) { return spaceNewLineTabBothEndsTrimmed(takePiece(stars, ',')); }

// The output of a scan that expands a text.
class TextOutput {
 public:
  explicit TextOutput(std::string& text) : _text(&text) {}
  void append(std::string_view text) { _text->append(text); }
  void append(const ReferenceList& list) {
    for (OptionalStringView stars = list.stars; stars;) {
      appendItem(list.format, takeStar(stars));
      if (stars) append(listSeparator);
    }
  }

 private:
  // Formats are short: looking at each character is faster than searching for the next star.
  void appendItem(std::string_view format, std::string_view star) {
    for (const char character : format) {
      if (character == '*') {
        append(star);
      } else {
        _text->push_back(character);
      }
    }
  }

  std::string* _text;
};

// The output of a scan that only measures the expanded length. It does not write lists, which may be as long as their
// format times their stars.
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

// The text with its list references expanded; an expanded text is stored in `room`.
std::string_view expandedIn(std::string& room, std::string_view text) {
  if (!mayHoldReference(text)) return text;
  room.clear();
  room.reserve(text.size());
  return ListReferenceScan(text, TextOutput(room)).run() ? std::string_view(room) : text;
}

}  // namespace

std::size_t QXDAOText::expandedLength(std::string_view text) {
  if (!mayHoldReference(text)) return text.size();
  ListReferenceScan<LengthOutput> scan(text);
  return scan.run() ? scan.output().length() : text.size();
}

void QXDAOText::initWithXML(const XMLNode& xml) {
  if (const OptionalStringView text = xml.text()) {
    initWithText(spaceNewLineTabBothEndsTrimmed(*text));
  } else {
    initWithText(spaceNewLineTabBothEndsTrimmed(OptionalStringView(xml.stringValue())));
  }
}

void QXDAOText::initWithText(OptionalStringView text) {
  QXDAOElement::initWithXML({});
  setExpanded(text);
}

void QXDAOText::processText() {
  const OptionalStringView text = expression();
  if (text && mayHoldReference(*text)) setExpanded(text);
}

void QXDAOText::setExpanded(OptionalStringView text) {
  TreeMemory* const memory = Building::memoryOf(*this);
  std::string ownRoom;
  std::string& room = memory ? memory->arena()->expansion : ownRoom;
  setExpression(text ? OptionalStringView(expandedIn(room, *text)) : text);
}

}  // namespace korvex
