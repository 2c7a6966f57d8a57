#include "checks/Suppressions.h"

#include <algorithm>

#include "korvex/OptionalString.h"
#include "platform/Strings.h"

namespace korvex {

namespace {

// Removes a word and the white space around it from the front of the text; false if the text begins differently.
bool takeWord(std::string_view& text, std::string_view word) {
  text.remove_prefix(std::min(text.find_first_not_of(xmlWhiteSpace), text.size()));
  if (!text.starts_with(word)) return false;
  text.remove_prefix(word.size());
  return true;
}

// The names in "korvex: allow NAME, NAME"; absent in any other comment.
OptionalStringView suppressedNames(std::string_view comment) {
  constexpr std::size_t opening = 4;
  constexpr std::size_t closing = 3;
  comment = comment.substr(opening, comment.size() - opening - closing);
  if (!takeWord(comment, "korvex:") || !takeWord(comment, "allow")) return std::nullopt;
  const std::size_t begin = comment.find_first_not_of(xmlWhiteSpace);
  if (begin == 0 || begin == std::string_view::npos) return std::nullopt;
  return comment.substr(begin, comment.find_last_not_of(xmlWhiteSpace) + 1 - begin);
}

const Rule* warningNamed(std::string_view name) {
  const Rule* rule = ruleNamed(name);
  return rule && rule->severity == Severity::Warning ? rule : nullptr;
}

// Where the next markup begins when nothing but white space is before it.
std::size_t markupBehind(const Places& places, std::size_t offset) {
  return places.source().text().find_first_not_of(xmlWhiteSpace, offset);
}

}  // namespace

Suppressions::Suppressions(const Places& places) {
  const std::vector<Span>& comments = places.markup().comments();
  std::size_t nextComment = Suppression::none;
  std::size_t nextElement = Suppression::none;
  for (auto comment = comments.rbegin(); comment != comments.rend(); ++comment) {
    const std::size_t behind = markupBehind(places, comment->end);
    if (behind != nextComment) nextElement = places.elementAt(behind) ? behind : Suppression::none;
    nextComment = comment->begin;
    const std::size_t first = _suppressions.size();
    for (OptionalStringView names = suppressedNames(places.markup().textOf(*comment)); names;) {
      const std::string_view name = *spaceNewLineTabBothEndsTrimmed(OptionalStringView(takePiece(names, ',')));
      _suppressions.push_back({*comment, name, warningNamed(name), nextElement});
    }
    std::reverse(_suppressions.begin() + static_cast<std::ptrdiff_t>(first), _suppressions.end());
  }
  std::reverse(_suppressions.begin(), _suppressions.end());
  for (std::size_t i = 0; i < _suppressions.size(); ++i)
    _lastFor[{_suppressions[i].element, _suppressions[i].rule}] = i;
}

const Suppression* Suppressions::find(const FoundWarning& warning) const {
  const auto found = _lastFor.find({warning.element, warning.finding.rule});
  return found == _lastFor.end() ? nullptr : &_suppressions[found->second];
}

const Suppression* Suppressions::use(const FoundWarning& warning) {
  const Suppression* found = find(warning);
  if (found) _suppressions[static_cast<std::size_t>(found - _suppressions.data())].used = true;
  return found;
}

}  // namespace korvex
