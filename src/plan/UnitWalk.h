// Executes the instructions of a unit and records its decisions in a key. Maker makes the decisions: a call from its
// arguments, the enumeration of variants by trying each.
//
// Maker has the following members; each bool is false to end the walk with a failure.
//
//   bool test(instruction, bool& outcome)         the outcome of an If, before WantsTrue
//   bool entries(at, std::size_t& count)          the entries of a foreach
//   bool enter(at, entry, count)                  prepares an entry
//   void leave(at)                                after the last entry
//   bool pairs(instruction, std::size_t& count)   the pairs of a format; writes their number and names to the key
//   bool bind(instruction)                        a value
//   std::string_view table()                      the assigned table
//   bool refuseAll(message, place)                a statement that would change all rows
//   void dropValues()                             the unit quits
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "korvex/Plan.h"
#include "korvex/QXDAOForeach.h"
#include "korvex/QXDAOKeyValueFormatter.h"
#include "korvex/QXDAOTrim.h"
#include "plan/AssemblyState.h"
#include "plan/SetContents.h"
#include "plan/SqlText.h"
#include "platform/Strings.h"

namespace korvex {

inline constexpr std::string_view wouldChangeAll =
    " is empty, and without it every row would change: write onVoid=\"quit\", or a condition that is always there";

template <typename Maker>
class UnitWalk {
 public:
  UnitWalk(const SetContents& contents, const Plan& plan, std::string& key, std::vector<std::uint32_t>& trims)
      : _contents(contents), _key(key), _trims(trims), _changesRows(isUpdateOrDelete(plan)) {}

  [[nodiscard]] bool quits() const { return _quits; }
  // Whether the SQL has no code.
  [[nodiscard]] bool empty() const { return _code == 0; }

 protected:
  // False if it was ended by a failure.
  bool walk(std::size_t begin) {
    _at = _place = begin;
    while (!_ended && _contents.instructions[_at].operation != PlanOperation::End) {
      if (!take(_at++)) return false;
    }
    return true;
  }

  const SetContents& _contents;
  std::string& _key;
  std::vector<std::uint32_t>& _trims;
  const bool _changesRows;
  std::size_t _at = 0;
  std::size_t _place = 0;
  std::uint32_t _code = 0;
  bool _quits = false;
  bool _ended = false;

 private:
  static bool isUpdateOrDelete(const Plan& plan) {
    return plan.operation() == QXDAOOperationUpdate || plan.operation() == QXDAOOperationDelete;
  }

  Maker& maker() { return static_cast<Maker&>(*this); }

  bool take(std::size_t at) {
    const PlanInstruction& instruction = _contents.instructions[at];
    _code += instruction.has(HasCode) ? 1 : 0;
    switch (instruction.operation) {
      case PlanOperation::Place:
        _place = at;
        return true;
      case PlanOperation::Value:
        return maker().bind(instruction);
      case PlanOperation::Table:
        appendName(_key, maker().table());
        return true;
      case PlanOperation::If:
        return test(instruction);
      case PlanOperation::Jump:
        _at = instruction.target;
        return true;
      case PlanOperation::Trim:
        _trims.push_back(static_cast<std::uint32_t>(at));
        _trims.push_back(_code);
        return true;
      case PlanOperation::TrimEnd:
        return endTrim();
      case PlanOperation::Foreach:
        return loop(at);
      case PlanOperation::Format:
        return format(instruction);
      default:
        return true;
    }
  }

  bool test(const PlanInstruction& instruction) {
    bool outcome = false;
    if (!maker().test(instruction, outcome)) return false;
    const bool applies = outcome == instruction.has(WantsTrue);
    _key += applies ? '\1' : '\0';
    if (!applies) _at = instruction.target;
    return true;
  }

  bool endTrim() {
    const std::uint32_t codeBefore = _trims.back();
    const std::size_t begin = _trims[_trims.size() - 2];
    _trims.resize(_trims.size() - 2);
    if (_code != codeBefore) return true;
    const auto& trim = _contents.instructions[begin].template element<QXDAOTrim>();
    if (trim.onVoid() == QXDAOTrimOnVoidTypeQuit) return quit();
    if (_changesRows && beginsWithWhere(trim.operationName().value_or(std::string_view()))) {
      return maker().refuseAll(quoted(*trim.operationName()) + std::string(wouldChangeAll), begin - 1);
    }
    return trim.onVoid() != QXDAOTrimOnVoidTypeIgnoreAfter || ignoreAfter();
  }

  bool quit() {
    _quits = _ended = true;
    maker().dropValues();
    return true;
  }

  bool ignoreAfter() {
    _ended = true;
    while (!_trims.empty()) {
      if (!endTrim()) return false;
    }
    return true;
  }

  bool loop(std::size_t at) {
    const PlanInstruction& instruction = _contents.instructions[at];
    const auto& element = instruction.template element<QXDAOForeach>();
    std::size_t count = 0;
    if (!maker().entries(at, count)) return false;
    if (instruction.has(AfterNotIn) && count == 0 && _changesRows) {
      return maker().refuseAll(
          "NOT IN an empty " + quoted(*element.collection()) + " holds for every row: test its count by an if", _place);
    }
    appendNumber(_key, count);
    _code += codeAround(element, count);
    for (std::size_t entry = 0; entry < count; ++entry) {
      if (!maker().enter(at, entry, count)) return false;
      for (_at = at + 1; _at < instruction.number;) {
        if (!take(_at++)) return false;
      }
    }
    maker().leave(at);
    _at = instruction.number;
    return true;
  }

  // The pieces of code that open, separate and close the entries.
  static std::uint32_t codeAround(const QXDAOForeach& element, std::size_t count) {
    const auto holdsCode = [](OptionalStringView text) { return text && beginOfCode(*text) < text->size(); };
    return (holdsCode(element.open()) ? 1U : 0U) + (holdsCode(element.close()) ? 1U : 0U) +
           (count > 1 && holdsCode(element.separator()) ? 1U : 0U);
  }

  bool format(const PlanInstruction& instruction) {
    const auto& element = instruction.template element<QXDAOKeyValueFormatter>();
    std::size_t count = 0;
    if (!maker().pairs(instruction, count)) return false;
    if (count > 0) {
      ++_code;
    } else if (_changesRows && beginsWithWhere(*element.prefix())) {
      return maker().refuseAll(quoted(*element.pairs()) + std::string(wouldChangeAll), _place);
    }
    return true;
  }
};

}  // namespace korvex
