#include "plan/Variants.h"

#include <algorithm>
#include <array>
#include <bit>
#include <map>
#include <set>
#include <span>
#include <utility>

#include "plan/UnitWalk.h"
#include "plan/VariantConditions.h"

namespace korvex {

// Decides by a script, which is extended by the first answer of each new question.
class VariantWalk : public UnitWalk<VariantWalk> {
 public:
  // Which answers to prefer, where several are possible.
  enum class Wish : std::uint8_t { Script, Columns, OneTrue };

  struct Choice {
    std::uint32_t answer = 0;  // its index
    std::uint32_t count = 0;
  };
  // What the walks through a unit share.
  struct Course {
    VariantConditions& conditions;
    const VariantOptions& options;
    Wish wish = Wish::Script;
    std::vector<Choice> script = {};
    std::size_t row = 0;                      // of the covering choice, or the question that is true
    std::vector<std::uint32_t> columns = {};  // of the questions; the first of two for a list
    std::uint32_t columnCount = 0;
  };

  VariantWalk(const SetContents& contents, const Plan& plan, Course& course, std::vector<std::uint32_t>& trims,
              Variant& variant)
      : UnitWalk(contents, plan, variant.key, trims), _course(course), _variant(variant) {
    for (const VariantSubject& subject : course.conditions.subjects()) _facts.push_back(subject.possible);
  }

  // Whether the variant is one that is run.
  bool run(std::size_t begin) { return walk(begin) && !quits() && !empty(); }

 private:
  friend class UnitWalk<VariantWalk>;
  using Operation = ExpressionOperation;

  // An operand: its steps, or a truth that is known already.
  struct Operand {
    std::uint32_t begin = 0;
    std::uint32_t end = 0;
    bool known = false;
    bool truth = false;
  };

  bool bind(const PlanInstruction& /*instruction*/) { return true; }
  bool enter(std::size_t /*at*/, std::size_t /*entry*/, std::size_t /*count*/) { return true; }
  void leave(std::size_t /*at*/) {}
  void dropValues() {}
  [[nodiscard]] std::string_view table() const { return _course.options.table; }
  static bool refuseAll(const std::string& /*message*/, std::size_t /*place*/) { return false; }

  // Steps through the expression; every jump on a truth is a decision.
  bool test(const PlanInstruction& instruction, bool& outcome) {
    const std::vector<ExpressionStep>& steps = _contents.expressions.steps;
    _operands.clear();
    std::uint32_t at = instruction.number;
    while (steps[at].operation != Operation::End) {
      const ExpressionStep& step = steps[at];
      if (step.operation < Operation::IfFalseKeep) {
        operate(step.operation, at++);
        continue;
      }
      bool jumps = step.operation == Operation::Always;
      if (!jumps && !decideJump(step.operation, jumps)) return false;
      at = jumps ? static_cast<std::uint32_t>(step.target) : at + 1;
    }
    return decide(_operands.back(), outcome);
  }

  void operate(Operation operation, std::uint32_t at) {
    if (operation <= Operation::Path) return _operands.push_back({at, at + 1});
    if (operation >= Operation::Index && operation <= Operation::ShiftRight) _operands.pop_back();
    Operand& top = _operands.back();
    if (operation == Operation::Truth && top.known) return;
    if (operation == Operation::Not && top.known) return void(top.truth = !top.truth);
    top.known = false;
    top.end = at + 1;
  }

  // IfFalse pops its operand; the others keep it if they jump.
  bool decideJump(Operation operation, bool& jumps) {
    bool truth = false;
    if (!decide(_operands.back(), truth)) return false;
    jumps = truth == (operation == Operation::IfTrueKeep);
    if (jumps && operation != Operation::IfFalse) {
      _operands.back().known = true;
      _operands.back().truth = truth;
    } else {
      _operands.pop_back();
    }
    return true;
  }

  bool decide(const Operand& operand, bool& truth) {
    if (operand.known) return truth = operand.truth, true;
    const VariantAtom& atom = _course.conditions.atomOf(operand.begin, operand.end);
    if (atom.isConstant && (atom.yes | atom.no) != 0) return truth = atom.yes != 0, true;
    if (atom.subject == VariantAtom::none || (atom.yes | atom.no) == 0) return decideAlone(atom, truth);
    CandidateMask& left = _facts[atom.subject];
    const std::array<CandidateMask, 2> masks = {left & atom.no, left & atom.yes};
    if (masks[0] == 0 && masks[1] == 0) return false;
    truth = masks[0] == 0 || (masks[1] != 0 && choose(atom));
    left = masks[truth ? 1 : 0];
    return true;
  }

  // For what is not understood: the same question has the same answer.
  bool decideAlone(const VariantAtom& atom, bool& truth) {
    const auto answered = _answers.find(atom.question);
    if (answered != _answers.end()) return truth = answered->second != atom.flipped, true;
    truth = choose(atom);
    _answers.emplace(atom.question, truth != atom.flipped);
    return true;
  }

  bool choose(const VariantAtom& atom) {
    constexpr std::array<std::uint32_t, 2> answers = {1, 0};
    return (pick(atom.question, answers) == 1) != atom.flipped;
  }

  bool entries(std::size_t at, std::size_t& count) {
    const PlanInstruction& instruction = _contents.instructions[at];
    const auto& element = instruction.element<QXDAOForeach>();
    return decideCount(instruction.slot, *element.collection(), 2, count);
  }

  bool pairs(const PlanInstruction& instruction, std::size_t& count) {
    const auto& element = instruction.element<QXDAOKeyValueFormatter>();
    if (!decideCount(instruction.slot, *element.pairs(), 1, count)) return false;
    appendNumber(_key, count);
    for (std::size_t pair = 0; pair < count; ++pair) appendName(_key, _course.options.key);
    return true;
  }

  static std::uint32_t entriesOf(const Value& candidate) {
    if (candidate.view().type() == ValueType::List) return static_cast<std::uint32_t>(candidate.view().list().size());
    const bool dictionary = candidate.view().type() == ValueType::Dictionary;
    return dictionary ? static_cast<std::uint32_t>(candidate.view().dictionary().size()) : 0;
  }

  // Up to `most` entries, unless the conditions want more.
  bool decideCount(ValueSlot slot, std::string_view path, std::uint32_t most, std::size_t& count) {
    const std::uint32_t subject = _course.conditions.subjectOf(slot, path);
    const VariantSubject& list = _course.conditions.subjects()[subject];
    CandidateMask& left = _facts[subject];
    std::vector<std::uint32_t>& counts = _counts;
    counts.clear();
    for (std::size_t candidate = 0; candidate < list.candidates.size(); ++candidate) {
      if ((left >> candidate & 1U) != 0) counts.push_back(entriesOf(list.candidates[candidate]));
    }
    std::sort(counts.begin(), counts.end());
    counts.erase(std::unique(counts.begin(), counts.end()), counts.end());
    const auto usual = std::upper_bound(counts.begin(), counts.end(), most);
    counts.erase(usual == counts.begin() ? usual + 1 : usual, counts.end());
    std::reverse(counts.begin(), counts.end());
    count = pick(_course.conditions.listQuestion(path), counts);
    for (std::size_t candidate = 0; candidate < list.candidates.size(); ++candidate) {
      if (entriesOf(list.candidates[candidate]) != count) left &= ~(CandidateMask{1} << candidate);
    }
    return true;
  }

  // The answers, of which one is possible at least, are in falling order.
  std::uint32_t pick(std::uint32_t question, std::span<const std::uint32_t> answers) {
    if (answers.size() == 1) return answers.front();
    const std::uint32_t answer = _course.wish == Wish::Script ? scripted(answers) : wished(question, answers);
    _variant.decisions.push_back({question, answer});
    return answer;
  }

  std::uint32_t scripted(std::span<const std::uint32_t> answers) {
    if (_step == _course.script.size()) _course.script.push_back({0, static_cast<std::uint32_t>(answers.size())});
    return answers[_course.script[_step++].answer];
  }

  std::uint32_t wished(std::uint32_t question, std::span<const std::uint32_t> answers) {
    std::vector<std::uint32_t>& columns = _course.columns;
    if (columns.size() <= question) columns.resize(question + 1, VariantAtom::none);
    if (columns[question] == VariantAtom::none) {
      columns[question] = _course.columnCount;
      _course.columnCount += 2;
    }
    if (_course.wish == Wish::OneTrue) return question == _course.row ? answers.front() : answers.back();
    const std::uint32_t column = columns[question];
    const std::uint32_t wish = holds(column) ? (answers.size() > 2 && !holds(column + 1) ? 1U : ~0U) : 0U;
    const auto found = std::find_if(answers.begin(), answers.end(), [wish](auto answer) { return answer <= wish; });
    return found == answers.end() ? answers.back() : *found;
  }

  // Any three of the numbers 2c + 1 are linearly independent over the field of two elements. So among all rows, every
  // three columns have each combination equally often (an orthogonal array of strength 3).
  [[nodiscard]] bool holds(std::uint32_t column) const {
    return std::popcount(_course.row & (std::size_t{2} * column + 1)) % 2 == 1;
  }

  Course& _course;
  Variant& _variant;
  std::size_t _step = 0;              // of the script
  std::vector<CandidateMask> _facts;  // the candidates that are left, by subject
  std::map<std::uint32_t, bool> _answers;
  std::vector<Operand> _operands;
  std::vector<std::uint32_t> _counts;
};

// Enumerates the variants of a unit.
class VariantSearch {
 public:
  VariantSearch(const PlanUnit& unit, const VariantOptions& options)
      : _unit(unit),
        _contents(*unit._contents),
        _options(options),
        _conditions(_contents, unit.plan(), unit._begin),
        _course{_conditions, options} {}

  UnitVariants search() {
    if (!all()) cover();
    _found.questions = std::move(_conditions.questions());
    return std::move(_found);
  }

 private:
  // False if there are too many.
  bool all() {
    do {
      if (!walk()) return false;
    } while (nextScript() && (!_options.firstOnly || _found.variants.empty()));
    return true;
  }

  bool nextScript() {
    std::vector<VariantWalk::Choice>& script = _course.script;
    while (!script.empty() && script.back().answer + 1 == script.back().count) script.pop_back();
    if (!script.empty()) ++script.back().answer;
    return !script.empty();
  }

  void cover() {
    _found = {};
    _found.complete = false;
    _keys.clear();
    _walks = 0;
    _work = 0;
    _course.wish = VariantWalk::Wish::Columns;
    _found.stopped = !coverColumns() || !coverAlone();
  }

  // Rows 0 and 1 make all conditions false and true.
  bool coverColumns() {
    for (_course.row = 0; _course.row < rowCount(); ++_course.row) {
      if (!walk()) return false;
    }
    return true;
  }
  // For the questions that were met so far.
  [[nodiscard]] std::size_t rowCount() const {
    return std::bit_ceil(std::size_t{std::max(_course.columnCount, 1U)}) * 2;
  }

  bool coverAlone() {
    _course.wish = VariantWalk::Wish::OneTrue;
    for (_course.row = 0; _course.row < _conditions.questions().size(); ++_course.row) {
      if (!walk()) return false;
    }
    return true;
  }

  bool walk() {
    _work += _conditions.instructionCount() + 1;
    if (++_walks > _options.maxVariants || _work > _options.maxWork) return false;
    Variant variant;
    appendUnit(variant.key, _unit.number());
    _trims.clear();
    if (!VariantWalk(_contents, _unit.plan(), _course, _trims, variant).run(_unit._begin)) return true;
    if (_keys.insert(variant.key).second) {
      _work += variant.decisions.size() + variant.key.size();
      _found.variants.push_back(std::move(variant));
    }
    return true;
  }

  const PlanUnit& _unit;
  const SetContents& _contents;
  const VariantOptions& _options;
  VariantConditions _conditions;
  VariantWalk::Course _course;
  UnitVariants _found;
  std::set<std::string> _keys;  // sorted, since documents can make hashes collide
  std::vector<std::uint32_t> _trims;
  std::size_t _walks = 0;
  std::size_t _work = 0;
};

std::string UnitVariants::inWords(const VariantDecision& decision) const {
  const Question& question = questions[decision.question];
  if (question.null) return question.text + (decision.answer == 1 ? " is null" : " is not null");
  if (!question.list) return question.text + (decision.answer == 1 ? " is true" : " is false");
  if (decision.answer == 0) return question.text + " is empty";
  return question.text + " has " + std::to_string(decision.answer) + (decision.answer == 1 ? " entry" : " entries");
}

UnitVariants variantsOf(const PlanUnit& unit, const VariantOptions& options) {
  return VariantSearch(unit, options).search();
}

VariantText::VariantText(const PlanUnit& unit, std::string_view key) {
  const SetContents& contents = *unit._contents;
  AssembledText text(contents, unit, key);
  _sql = std::move(text.sql());
  text.forEachPiece([&](std::size_t offset, std::size_t place, std::size_t instruction, std::size_t skipped) {
    _pieces.push_back({offset, originOfInstruction(contents, place, instruction, skipped)});
  });
  _unit = originOfInstruction(contents, unit._begin, unit._begin, 0);
}

VariantText::Origin VariantText::originOf(std::size_t offset) const {
  const auto behind = std::upper_bound(_pieces.begin(), _pieces.end(), offset,
                                       [](std::size_t wanted, const Piece& piece) { return wanted < piece.offset; });
  if (behind == _pieces.begin()) return _unit;
  const Piece& piece = *std::prev(behind);
  Origin origin = piece.origin;
  const std::size_t further = std::min(offset - piece.offset, origin.left);
  origin.decoded += further;
  origin.left -= further;
  return origin;
}

bool VariantText::contains(const Origin& origin) const {
  return std::any_of(_pieces.begin(), _pieces.end(), [&origin](const Piece& piece) {
    const Origin& own = piece.origin;
    return own.document == origin.document && own.begin.line == origin.begin.line &&
           own.begin.column == origin.begin.column && own.decoded <= origin.decoded &&
           origin.decoded <= own.decoded + own.left;
  });
}

}  // namespace korvex
