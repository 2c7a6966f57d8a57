#include "checks/ListReferenceWarnings.h"

#include <functional>
#include <optional>

#include "checks/SqlSkipping.h"
#include "dao/core/Reading.h"
#include "dao/fragments/ListReferenceScan.h"
#include "korvex/OptionalString.h"
#include "korvex/QXDAOElement.h"
#include "korvex/QXDAOPackReader.h"
#include "korvex/QXDAOText.h"
#include "korvex/XMLNode.h"
#include "platform/Strings.h"

namespace korvex {

namespace {

constexpr std::string_view openingOfReference = "%{";

// The first opening outside SQL strings, quoted names and comments; npos if there is none.
std::size_t openingOutsideQuotes(std::string_view text) {
  constexpr std::string_view openings = "%'\"`[-/";
  SqlStretches stretches(text);
  std::size_t at = text.find_first_of(openings);
  while (at != std::string_view::npos && !text.substr(at).starts_with(openingOfReference)) {
    at = text.find_first_of(openings, stretches.at(at).end);
  }
  return at;
}

// ---------------------------------------------------------------------------------------------
// Expanded references that drop text

bool isBlank(std::string_view text) { return text.find_first_not_of(xmlWhiteSpace) == std::string_view::npos; }

// Describes the text that a reference drops; empty if it drops none. A reference ignores text before and after its
// format, and, without entries, the format itself.
std::string_view lossOf(const ReferenceList& reference) {
  const std::string_view inside = reference.inside;
  if (!reference.stars) return "this list reference has no entries and expands to nothing";
  const auto formatBegin = static_cast<std::size_t>(reference.format.data() - inside.data());
  const auto starsBegin = static_cast<std::size_t>(reference.stars->data() - inside.data());
  const std::size_t formatEnd = formatBegin + reference.format.size();
  const bool parted = std::less<>()(inside.data(), reference.format.data()) && formatEnd + 2 <= starsBegin &&
                      isBlank(inside.substr(0, formatBegin - 1)) &&
                      isBlank(inside.substr(formatEnd + 1, starsBegin - 1 - (formatEnd + 1)));
  return parted ? std::string_view() : "text in this list reference is lost";
}

struct Loss {
  std::string_view message;
  std::size_t opening = 0;
};

// Reports the first reference that drops text; one that begins and ends in the same SQL comment is harmless.
class LossFinder {
 public:
  explicit LossFinder(std::string_view text) : _text(text), _stretches(text) {}

  void append(std::string_view /*text*/) {}
  void append(const ReferenceList& reference) {
    if (_loss) return;
    const std::string_view message = lossOf(reference);
    if (message.empty()) return;
    const auto begin = static_cast<std::size_t>(reference.inside.data() - _text.data());
    if (isInComment(begin, begin + reference.inside.size())) return;
    _loss = Loss{message, begin - openingOfReference.size()};
  }

  [[nodiscard]] const std::optional<Loss>& loss() const { return _loss; }

 private:
  // Queried with increasing positions.
  bool isInComment(std::size_t begin, std::size_t end) {
    while (_stretch.end <= begin) _stretch = _stretches.at(_stretch.end);
    return _stretch.piece == SqlPiece::Comment && end < _stretch.end;
  }

  std::string_view _text;
  SqlStretches _stretches;
  SqlStretch _stretch;
  std::optional<Loss> _loss;
};

std::optional<Loss> lossIn(std::string_view text) {
  if (!mayHoldReference(text)) return std::nullopt;
  ListReferenceScan<LossFinder> scan(text, LossFinder(text));
  scan.run();
  return scan.output().loss();
}

// ---------------------------------------------------------------------------------------------
// References that are not expanded

// The position in the text of the opening that remains in its expansion at `place`: before the first expanded
// reference, or after the last one; otherwise the first opening.
std::size_t openingBeforeExpansion(std::string_view text, std::string_view expanded, std::size_t place) {
  if (text.substr(0, place) == expanded.substr(0, place) && text.substr(place).starts_with(openingOfReference)) {
    return place;
  }
  const std::string_view behind = expanded.substr(place);
  return text.ends_with(behind) ? text.size() - behind.size() : text.find(openingOfReference);
}

// The opening in the source: the one after `from` with the same ordinal as in the text. If it is written with character
// references, `from` is the best approximation.
Span placeInSource(const Places& places, std::size_t from, std::string_view text, std::size_t opening) {
  constexpr std::size_t maxPerByte = 16;  // comments included
  const std::string_view source = places.source().text().substr(from, maxPerByte * text.size());
  std::size_t at = source.find(openingOfReference);
  for (std::size_t other = text.find(openingOfReference); other < opening && at != std::string_view::npos;
       other = text.find(openingOfReference, other + 1)) {
    at = source.find(openingOfReference, at + 1);
  }
  if (at == std::string_view::npos) return places.spanAt(from);
  return {from + at, from + at + openingOfReference.size()};
}

std::size_t beginOf(TextPlace place, const XMLNode& node, const Places& places) {
  const std::size_t begin = places.offsetOf(node);
  const MarkupElement* element = place == TextPlace::Content ? places.elementAt(begin) : nullptr;
  return element ? element->startTag.end : begin;
}

void findUnfinishedReference(const XMLNode& element, std::string_view text, TextPlace place, const XMLNode& node,
                             WarningList& list) {
  if (text.find(openingOfReference) == std::string_view::npos) return;
  const auto placeOf = [&](std::size_t opening) {
    return placeInSource(list.places(), beginOf(place, node, list.places()), text, opening);
  };
  if (const std::optional<Loss> loss = lossIn(text)) {
    list.add(Warning::UnfinishedListReference, element, placeOf(loss->opening), std::string(loss->message)).help =
        "write %{'FORMAT', ENTRY, ENTRY}; if no reference is meant, split it: '%' || '{'";
    return;
  }
  QXDAOText written;
  written.initWithText(text);
  const std::string_view expanded = *written.expression();
  const std::size_t left = openingOutsideQuotes(expanded);
  if (left == std::string_view::npos) return;
  list.add(Warning::UnfinishedListReference, element, placeOf(openingBeforeExpansion(text, expanded, left)),
           "this list reference is not expanded");
}

}  // namespace

void findUnfinishedReferences(const XMLNode& node, const ElementEntry& element, WarningList& list) {
  if (element.content == Content::Elements || element.content == Content::Ignored) return;
  forEachText(node, [&](std::string_view text, TextPlace place, const XMLNode& origin) {
    findUnfinishedReference(node, text, place, origin, list);
  });
}

}  // namespace korvex
