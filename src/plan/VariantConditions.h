// What the conditions of a unit ask, and of which values.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "korvex/Value.h"
#include "plan/SetContents.h"
#include "plan/Variants.h"

namespace korvex {

// A set of a value's candidates.
using CandidateMask = std::uint64_t;

// A value that conditions ask for, with candidates that stand for all values: null, those that it is compared with, and
// those between them.
struct VariantSubject {
  ValueSlot slot = 0;
  std::string_view path;  // after the name
  std::vector<Value> candidates;
  CandidateMask possible = 0;
  bool isRepresented = true;  // false if there are too many or too large literals for candidates

  // Found while the conditions are read.
  bool list = false;
  bool dictionary = false;
  bool measured = false;  // by ".length"
  std::vector<double> numbers;
  std::vector<std::string> texts;
};

// A part of a condition that is true or false: the steps [begin, end), without operators that join conditions.
struct VariantAtom {
  static constexpr std::uint32_t none = ~std::uint32_t{0};

  std::uint32_t subject = none;  // the only value that it compares with literals
  CandidateMask yes = 0;         // the candidates for which it is true
  CandidateMask no = 0;          // and false; it fails for all others
  bool isConstant = false;       // it asks for no value; then one of the masks says what it is
  std::uint32_t question = 0;
  bool flipped = false;  // it is the negation of its question
};

class VariantConditions {
 public:
  VariantConditions(const SetContents& contents, const Plan& plan, std::size_t begin);

  [[nodiscard]] const std::vector<VariantSubject>& subjects() const { return _subjects; }
  [[nodiscard]] std::vector<UnitVariants::Question>& questions() { return _questions; }
  [[nodiscard]] std::size_t instructionCount() const { return _count; }

  // The steps must be a whole operand.
  [[nodiscard]] const VariantAtom& atomOf(std::uint32_t begin, std::uint32_t end);
  // For the collection of a foreach, or the pairs of a format.
  [[nodiscard]] std::uint32_t subjectOf(ValueSlot slot, std::string_view pathWithName) const;
  [[nodiscard]] std::uint32_t listQuestion(std::string_view path);

 private:
  void readExpression(std::uint32_t first);
  std::uint32_t addSubject(ValueSlot slot, std::string_view path);
  void makeCandidates(VariantSubject& subject) const;
  void ask(VariantAtom& atom, std::uint32_t begin, std::uint32_t end) const;
  [[nodiscard]] std::string nameOf(const ExpressionStep& path) const;
  [[nodiscard]] UnitVariants::Question questionOf(std::uint32_t begin, std::uint32_t end, bool& flipped) const;
  [[nodiscard]] std::string inWords(std::uint32_t begin, std::uint32_t end) const;
  std::uint32_t addQuestion(UnitVariants::Question question);

  const SetContents& _contents;
  const QXDAOMethod& _method;
  std::size_t _count = 0;
  std::vector<VariantSubject> _subjects;
  std::map<std::pair<ValueSlot, std::string_view>, std::uint32_t> _subjectNumbers;
  std::map<std::pair<std::uint32_t, std::uint32_t>, VariantAtom> _atoms;
  std::vector<UnitVariants::Question> _questions;
  std::map<std::string, std::uint32_t> _questionNumbers;
};

}  // namespace korvex
