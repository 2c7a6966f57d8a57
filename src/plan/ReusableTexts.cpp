#include "plan/ReusableTexts.h"

#include <algorithm>
#include <string>
#include <vector>

#include "korvex/Keywords.h"
#include "plan/SetCompilation.h"
#include "plan/SourcePlaces.h"
#include "plan/SqlText.h"

namespace korvex {

namespace {

// The maximum nesting of references.
constexpr std::uint32_t deepestReference = 64;

class TextChecker {
 public:
  explicit TextChecker(SetCompilation& compilation) : _compilation(compilation) {}

  // Visits the texts that a text references, recursively, each of them once.
  void check(ReusableText& text) {
    if (text.state != ReusableText::State::Unknown) return;
    text.state = ReusableText::State::BeingChecked;
    _open.push_back(&text);
    bool sound = true;
    SqlReader reader(text.text);
    for (SqlPart part = reader.next(); part.kind != SqlPartKind::End; part = reader.next()) {
      if (part.kind == SqlPartKind::Fault) sound = fail(text, part.text, std::string(part.message));
      if (part.kind == SqlPartKind::Reference) sound = checkReference(text, part.text) && sound;
    }
    _open.pop_back();
    text.state = sound ? ReusableText::State::Sound : ReusableText::State::Faulty;
  }

 private:
  bool checkReference(ReusableText& text, std::string_view name) {
    if (name == C_RESERVED_TABLE) return true;  // the method checks whether there is a table
    ReusableText* other = _compilation.textsByName.find(name);
    if (!other)
      return fail(text, withMark(name), "'@" + std::string(name) + "' is neither an sql block nor a constant",
                  DefinitionErrorKind::UnknownReference);
    if (other->state == ReusableText::State::BeingChecked) return fail(text, withMark(name), circle(*other));
    if (_open.size() >= deepestReference) return fail(text, withMark(name), "references stand too deep in one another");
    check(*other);
    text.depth = std::max(text.depth, other->depth + 1);
    if (text.depth >= deepestReference) return fail(text, withMark(name), "references stand too deep in one another");
    return other->state == ReusableText::State::Sound;
  }

  [[nodiscard]] std::string circle(const ReusableText& first) const {
    std::string message = "'@" + std::string(first.name) + "' is part of itself: ";
    for (auto open = std::find(_open.begin(), _open.end(), &first); open != _open.end(); ++open) {
      message.append((*open)->name).append(" → ");
    }
    return message.append(first.name);
  }

  bool fail(const ReusableText& text, std::string_view word, std::string message,
            DefinitionErrorKind kind = DefinitionErrorKind::Other) {
    _compilation.fail(text.document, placeOf(text, word), std::move(message), kind);
    return false;
  }

  static XMLPosition placeOf(const ReusableText& text, std::string_view word) {
    const std::size_t offset = static_cast<std::size_t>(word.data() - text.text.data());
    if (text.isConstant) return placeInAttribute(text.xml, text.name, offset);
    return placeInText(text.xml, word, occurrencesBefore(text.text, word));
  }

  SetCompilation& _compilation;
  std::vector<ReusableText*> _open;
};

}  // namespace

void checkReusableTexts(SetCompilation& compilation) {
  TextChecker checker(compilation);
  for (ReusableText& text : compilation.texts) checker.check(text);
}

std::size_t occurrencesBefore(std::string_view text, std::string_view word) {
  const std::size_t end = static_cast<std::size_t>(word.data() - text.data());
  std::size_t count = 0;
  for (std::size_t found = findSqlWord(text, word, 0); found < end; found = findSqlWord(text, word, found + 1)) ++count;
  return count;
}

}  // namespace korvex
