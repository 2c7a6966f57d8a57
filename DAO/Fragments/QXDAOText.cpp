#include <algorithm>
#include <array>
#include <cstddef>

#include "DAO/QXDAOElement.h"

namespace korvex {

namespace {

constexpr std::string_view shortestReference = "%{'*',p}";
constexpr std::string_view listSeparator = ", ";
constexpr std::string_view replacementCharacter = "\xEF\xBF\xBD";  // U+FFFD
constexpr std::size_t usualStarCount = 5;
constexpr std::size_t longestCharacterOfOneUnit = 3;

// The bytes that mean something while a reference is open, its "%" then being pending. All of them are ASCII, so a byte
// of a longer character is never taken for one.
constexpr auto isMarkup = [] {
  std::array<bool, 256> table{};
  for (const char byte : std::string_view("',{}")) table[static_cast<unsigned char>(byte)] = true;
  return table;
}();

// The items of one reference: the format once per star, with the star in the place of every "*".
struct ReferenceList {
  std::string_view format;
  const std::vector<std::string_view>& stars;
};

// Where a scan writes an expanded text.
class TextOutput {
 public:
  void begin(std::size_t usualLength) { _text.reserve(usualLength); }
  void append(std::string_view text) { _text.append(text); }
  void append(const ReferenceList& list) {
    for (std::size_t star = 0; star < list.stars.size(); ++star) {
      if (star > 0) append(listSeparator);
      appendItem(list.format, list.stars[star]);
    }
  }
  [[nodiscard]] const std::string& text() const { return _text; }

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

  std::string _text;
};

// The same for a scan that only asks how long the text would become. A list is not written out for
// it: it may be as long as its format times its stars.
class LengthOutput {
 public:
  void begin(std::size_t /*usualLength*/) {}
  void append(std::string_view text) { _length += text.size(); }
  void append(const ReferenceList& list) {
    const auto marks = static_cast<std::size_t>(std::count(list.format.begin(), list.format.end(), '*'));
    for (const std::string_view star : list.stars) _length += list.format.size() - marks + marks * star.size();
    if (!list.stars.empty()) _length += (list.stars.size() - 1) * listSeparator.size();
  }
  [[nodiscard]] std::size_t length() const { return _length; }

 private:
  std::size_t _length = 0;
};

// Expands the list references of a text in one pass from left to right.
//
// The state follows the language's own scan rules to the letter: what an expansion or an opening
// leaves alone (format, formatBegin, the pending "%") shapes what later text means.
// Positions are byte offsets; 0 means "not set" for referenceBegin and formatBegin, which are
// always one past a character otherwise.
template <typename Output>
class ListReferenceScan {
 public:
  explicit ListReferenceScan(std::string_view text) : _text(text) {}

  // True when a reference was expanded; the result is then in output().
  bool run() {
    for (std::size_t at = nextOfInterest(0); at < _text.size(); at = nextOfInterest(at + 1)) take(at);
    if (_replaced) _output.append(_text.substr(_copyBegin));
    return _replaced;
  }

  [[nodiscard]] const Output& output() const { return _output; }

 private:
  // The next position at which a rule can change anything: outside a reference only a "%" does,
  // or whatever follows a pending one; inside a reference only markup does.
  [[nodiscard]] std::size_t nextOfInterest(std::size_t from) const {
    if (_referenceBegin == 0) return _pendingSymbol ? from : std::min(_text.find('%', from), _text.size());
    while (from < _text.size() && !isMarkup[static_cast<unsigned char>(_text[from])]) ++from;
    return from;
  }

  void take(std::size_t at) {
    switch (_text[at]) {
      case '%':
        _pendingSymbol = true;
        return;
      case '\'':
        takeQuote(at);
        return;
      case ',':
        takeComma(at);
        return;
      case '{':
        takeOpeningBrace(at);
        return;
      case '}':
        if (_formatPresent && _referenceBegin != 0) expand(at);
        break;
      default:
        break;
    }
    dropPendingSymbolOutsideReference();
  }

  void dropPendingSymbolOutsideReference() {
    if (_referenceBegin == 0) _pendingSymbol = false;
  }

  void takeQuote(std::size_t at) {
    if (_referenceBegin == 0) {
      _pendingSymbol = false;
    } else if (_formatBegin == 0) {
      _formatBegin = at + 1;
    } else {
      _format = between(_formatBegin, at);
      _formatPresent = true;
      _formatBegin = 0;
    }
  }

  void takeComma(std::size_t at) {
    dropPendingSymbolOutsideReference();
    if (_referenceBegin == 0 || !_formatPresent) return;
    takeStarBefore(at);
    ++_commaCount;
    _lastComma = at;
  }

  void takeOpeningBrace(std::size_t at) {
    if (!_pendingSymbol || _formatBegin != 0) return;
    _referenceBegin = at + 1;
    _stars.clear();
    _stars.reserve(usualStarCount);
    _commaCount = 0;
  }

  void takeStarBefore(std::size_t at) {
    if (_commaCount > 0) _stars.push_back(spaceNewLineTabBothEndsTrimmed(between(_lastComma + 1, at)));
  }

  void expand(std::size_t at) {
    if (!_replaced) _output.begin(_text.size());
    appendTextBeforeReference();
    takeStarBefore(at);
    _output.append(ReferenceList{_format, _stars});
    _formatPresent = false;
    _copyBegin = at + 1;
    _referenceBegin = 0;
    _replaced = true;
  }

  // The text since the last expansion, without the "{" and the one UTF-16 unit before it. That
  // unit is normally the "%"; where it is half of a character, the other half has no UTF-8 form.
  void appendTextBeforeReference() {
    const std::size_t brace = _referenceBegin - 1;
    const std::size_t length = lengthOfCharacterBefore(_text, brace);
    _output.append(between(_copyBegin, brace - length));
    if (length > longestCharacterOfOneUnit) _output.append(replacementCharacter);
  }

  [[nodiscard]] std::string_view between(std::size_t begin, std::size_t end) const {
    return _text.substr(begin, end - begin);
  }

  std::string_view _text;
  std::size_t _copyBegin = 0;
  bool _pendingSymbol = false;
  std::size_t _referenceBegin = 0;
  std::size_t _formatBegin = 0;
  std::string_view _format;
  bool _formatPresent = false;
  std::vector<std::string_view> _stars;
  std::size_t _commaCount = 0;
  std::size_t _lastComma = 0;
  Output _output;
  bool _replaced = false;
};

bool mayHoldReference(std::string_view text) {
  return text.find('%') != std::string_view::npos && hasAtLeastUTF16Units(text, shortestReference.size());
}

}  // namespace

std::size_t QXDAOText::expandedLength(std::string_view text) {
  if (!mayHoldReference(text)) return text.size();
  ListReferenceScan<LengthOutput> scan(text);
  return scan.run() ? scan.output().length() : text.size();
}

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

void QXDAOText::processText() {
  const std::string_view text = expression().value_or(std::string_view());
  if (!mayHoldReference(text)) return;
  ListReferenceScan<TextOutput> scan(text);
  if (scan.run()) setExpression(scan.output().text());
}

}  // namespace korvex
