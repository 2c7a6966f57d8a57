#include "plan/SetContents.h"

#include <algorithm>
#include <tuple>

namespace korvex {

namespace {

auto keyOf(const QXDAOCryptProperty* crypt) {
  return std::make_pair(crypt->className().value_or(std::string_view()),
                        crypt->propertyName().value_or(std::string_view()));
}

// The start of the text that follows a place.
const char* textBegin(const PlanInstruction& piece) {
  switch (piece.operation) {
    case PlanOperation::Text:
      return piece.text().data();
    case PlanOperation::Value:
    case PlanOperation::Table:
      return piece.text().data() - 1;  // after the mark
    default:
      return nullptr;
  }
}

}  // namespace

bool cryptComesBefore(const QXDAOCryptProperty* left, const QXDAOCryptProperty* right) {
  return keyOf(left) < keyOf(right);
}

bool declaresCrypt(const SetContents& contents, std::string_view className, std::string_view property) {
  const auto wanted = std::make_pair(className, property);
  const auto found = std::lower_bound(contents.crypts.begin(), contents.crypts.end(), wanted,
                                      [](const auto* crypt, const auto& key) { return keyOf(crypt) < key; });
  return found != contents.crypts.end() && keyOf(*found) == wanted;
}

XMLPosition advanced(XMLPosition begin, std::string_view text) {
  for (const char character : text) {
    if (character == '\n') {
      ++begin.line;
      begin.column = 1;
    } else if ((static_cast<unsigned char>(character) & 0xC0U) != 0x80U) {
      ++begin.column;
    }
  }
  return begin;
}

VariantText::Origin originOfInstruction(const SetContents& contents, std::size_t place, std::size_t piece,
                                        std::size_t skipped) {
  const PlanInstruction& mark = contents.instructions[place];
  VariantText::Origin origin{contents.documents[mark.number], {mark.place.line, mark.place.column}};
  const PlanInstruction& meant = contents.instructions[piece];
  const char* begin = textBegin(contents.instructions[place + 1]);
  const char* text = textBegin(meant);
  if (!begin || !text) return origin;
  origin.decoded = static_cast<std::size_t>(text - begin) + skipped;
  const std::size_t marks = meant.operation == PlanOperation::Text ? 0 : 1;
  origin.left = meant.text().size() + marks - skipped;
  // A value is "?" in the SQL, and stands for the whole of its name.
  if (marks > 0) origin.left = 0;
  return origin;
}

SourcePlace placeOfInstruction(const SetContents& contents, std::size_t place, std::size_t piece, std::size_t offset) {
  const PlanInstruction& mark = contents.instructions[place];
  XMLPosition position{mark.place.line, mark.place.column};
  const char* begin = textBegin(contents.instructions[place + 1]);
  const char* meant = textBegin(contents.instructions[piece]);
  if (begin && meant) position = advanced(position, {begin, static_cast<std::size_t>(meant - begin) + offset});
  return {contents.documents[mark.number], position};
}

}  // namespace korvex
