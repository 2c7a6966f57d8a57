// Finds the list references of a text: for text elements, which expand them, and for checks of lost text.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>

#include "korvex/OptionalString.h"
#include "korvex/QXDAOPackReader.h"
#include "platform/Strings.h"

namespace korvex {

inline constexpr std::string_view shortestReference = "%{'*',p}";
inline constexpr std::string_view replacementCharacter = "\xEF\xBF\xBD";  // U+FFFD
inline constexpr std::size_t longestCharacterOfOneUnit = 3;

// The significant bytes while a reference is open and its "%" is pending. All of them are ASCII, so bytes of longer
// characters never match.
inline constexpr auto isMarkup = [] {
  std::array<bool, 256> table{};
  for (const char byte : std::string_view("',{}")) table[static_cast<unsigned char>(byte)] = true;
  return table;
}();

// The items of one reference: the format once per star, with the star in place of every "*".
struct ReferenceList {
  std::string_view format;
  OptionalStringView stars;  // separated by commas; absent if there are none
  std::string_view inside;   // everything between its braces
};

// Expands the list references of a text in one pass from left to right.
//
// The state follows the language's scan rules exactly: what an expansion or an opening brace leaves unchanged (format,
// formatBegin, the pending "%") affects the meaning of later text.
// Positions are byte offsets; 0 means "not set" for referenceBegin, formatBegin and starsBegin, which
// otherwise always follow a character.
template <typename Output>
class ListReferenceScan {
 public:
  explicit ListReferenceScan(std::string_view text, Output output = Output()) : _text(text), _output(output) {}

  // True if a reference was expanded; the whole result has then been written.
  bool run() {
    for (std::size_t at = nextOfInterest(0); at < _text.size(); at = nextOfInterest(at + 1)) take(at);
    if (_replaced) _output.append(_text.substr(_copyBegin));
    return _replaced;
  }

  [[nodiscard]] const Output& output() const { return _output; }

 private:
  // The next position at which a rule can apply: outside a reference, a "%" or the character after a pending one;
  // inside a reference, only markup.
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
    if (_referenceBegin != 0 && _formatPresent && _starsBegin == 0) _starsBegin = at + 1;
  }

  void takeOpeningBrace(std::size_t at) {
    if (!_pendingSymbol || _formatBegin != 0) return;
    _referenceBegin = at + 1;
    _starsBegin = 0;
  }

  void expand(std::size_t at) {
    appendTextBeforeReference();
    _output.append(ReferenceList{_format, starsBefore(at), between(_referenceBegin, at)});
    _formatPresent = false;
    _copyBegin = at + 1;
    _referenceBegin = 0;
    _replaced = true;
  }

  // The text since the last expansion, without the "{" and the UTF-16 unit before it. That unit is normally the "%". If
  // it is half of a character, the other half has no UTF-8 form.
  void appendTextBeforeReference() {
    const std::size_t brace = _referenceBegin - 1;
    const std::size_t length = lengthOfCharacterBefore(_text, brace);
    _output.append(between(_copyBegin, brace - length));
    if (length > longestCharacterOfOneUnit) _output.append(replacementCharacter);
  }

  // From the first comma after a format on, every comma separates two stars.
  [[nodiscard]] OptionalStringView starsBefore(std::size_t at) const {
    if (_starsBegin == 0) return std::nullopt;
    return between(_starsBegin, at);
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
  std::size_t _starsBegin = 0;
  Output _output;
  bool _replaced = false;
};

inline bool mayHoldReference(std::string_view text) {
  return text.find('%') != std::string_view::npos && hasAtLeastUTF16Units(text, shortestReference.size());
}

}  // namespace korvex
