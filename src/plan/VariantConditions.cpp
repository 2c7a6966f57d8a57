#include "plan/VariantConditions.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

#include "korvex/QXDAOForeach.h"
#include "korvex/QXDAOKeyValueFormatter.h"
#include "plan/Evaluation.h"
#include "plan/ExpressionParser.h"

namespace korvex {

namespace {

constexpr std::size_t maxCandidates = 64;
constexpr double maxEntries = 16;
constexpr double maxTextLength = 200;

bool isBinary(ExpressionOperation operation) {
  return operation >= ExpressionOperation::Equal && operation <= ExpressionOperation::ShiftRight;
}

bool isUnary(ExpressionOperation operation) {
  return operation >= ExpressionOperation::Not && operation <= ExpressionOperation::Complement;
}

bool isJump(ExpressionOperation operation) {
  return operation >= ExpressionOperation::IfFalseKeep && operation <= ExpressionOperation::Always;
}

std::string numberText(double number) {
  std::array<char, 32> digits{};
  return {digits.data(), std::to_chars(digits.begin(), digits.end(), number).ptr};
}

Value numberValue(double number) {
  const bool whole = number == std::floor(number) && std::abs(number) < 9e15;
  return whole ? Value(static_cast<std::int64_t>(number)) : Value(number);
}

bool isLiteralNumber(ExpressionOperation operation) {
  return operation == ExpressionOperation::Integer || operation == ExpressionOperation::Real;
}

// Whether the steps only compare values with literals, so that the candidates stand for all values. Arithmetic would
// need others.
bool onlyCompares(const std::vector<ExpressionStep>& steps) {
  for (std::size_t at = 0; at < steps.size(); ++at) {
    const ExpressionOperation operation = steps[at].operation;
    const bool isSign = operation == ExpressionOperation::Negate || operation == ExpressionOperation::Plus;
    const bool compares =
        operation <= ExpressionOperation::Path || isJump(operation) ||
        (operation >= ExpressionOperation::Equal && operation <= ExpressionOperation::GreaterOrEqual) ||
        operation == ExpressionOperation::Not || operation == ExpressionOperation::Truth;
    if (!compares && !(isSign && at > 0 && isLiteralNumber(steps[at - 1].operation))) return false;
  }
  return true;
}

// "a.count" measures "a".
struct MeasuredPath {
  std::string_view path;
  std::string_view member;
};
MeasuredPath measured(std::string_view path) {
  const std::size_t dot = path.rfind('.');
  const std::size_t member = dot == std::string_view::npos ? 0 : dot + 1;
  const std::string_view last = path.substr(member);
  if (last != "count" && last != "length") return {path, {}};
  return {path.substr(0, dot == std::string_view::npos ? 0 : dot), last};
}

std::string_view pathAfterName(std::string_view path) {
  const std::size_t dot = path.find('.');
  return dot == std::string_view::npos ? std::string_view() : path.substr(dot + 1);
}

void sortAndUnite(std::vector<double>& numbers) {
  std::sort(numbers.begin(), numbers.end());
  numbers.erase(std::unique(numbers.begin(), numbers.end()), numbers.end());
}

Value listOf(std::size_t count) { return Value(ValueList(count, Value(1))); }

void addLists(std::vector<Value>& candidates, const std::vector<double>& numbers) {
  for (const std::size_t count : {1U, 2U, 0U}) candidates.push_back(listOf(count));
  for (const double number : numbers) {
    for (const double count : {number - 1, number, number + 1}) {
      if (count > 2 && count <= maxEntries) candidates.push_back(listOf(static_cast<std::size_t>(count)));
    }
  }
}

void addScalars(std::vector<Value>& candidates, const VariantSubject& subject) {
  for (const Value& value : {Value(1), Value("text"), Value(0), Value("")}) candidates.push_back(value);
  const std::vector<double>& numbers = subject.numbers;
  for (std::size_t at = 0; at < numbers.size(); ++at) {
    candidates.push_back(numberValue(numbers[at]));
    if (at > 0) candidates.push_back(numberValue((numbers[at - 1] + numbers[at]) / 2));
    if (!subject.measured) continue;
    for (const double length : {numbers[at] - 1, numbers[at], numbers[at] + 1}) {
      if (length > 0 && length <= maxTextLength)
        candidates.push_back(Value(std::string(static_cast<std::size_t>(length), 'x')));
    }
  }
  if (!numbers.empty()) {
    candidates.push_back(numberValue(std::floor(numbers.front()) - 1));
    candidates.push_back(numberValue(std::ceil(numbers.back()) + 1));
  }
  for (const std::string& text : subject.texts) {
    candidates.push_back(Value(text));
    candidates.push_back(Value(text + "~"));
  }
}

}  // namespace

VariantConditions::VariantConditions(const SetContents& contents, const Plan& plan, std::size_t begin)
    : _contents(contents), _method(plan.method()) {
  for (std::size_t at = begin; contents.instructions[at].operation != PlanOperation::End; ++at) {
    const PlanInstruction& instruction = contents.instructions[at];
    if (instruction.operation == PlanOperation::If) readExpression(instruction.number);
    if (instruction.operation == PlanOperation::Foreach) {
      const std::string_view collection = *instruction.element<QXDAOForeach>().collection();
      _subjects[addSubject(instruction.slot, pathAfterName(collection))].list = true;
    }
    if (instruction.operation == PlanOperation::Format) {
      const std::string_view pairs = *instruction.element<QXDAOKeyValueFormatter>().pairs();
      _subjects[addSubject(instruction.slot, pathAfterName(pairs))].dictionary = true;
    }
    ++_count;
  }
  for (VariantSubject& subject : _subjects) makeCandidates(subject);
}

// Every literal of a condition is one that its values may be compared with.
void VariantConditions::readExpression(std::uint32_t first) {
  const std::vector<ExpressionStep>& steps = _contents.expressions.steps;
  std::vector<std::uint32_t> asked;
  std::vector<double> numbers;
  std::vector<std::string> texts;
  for (std::uint32_t at = first; steps[at].operation != ExpressionOperation::End; ++at) {
    const ExpressionStep& step = steps[at];
    const double sign = steps[at + 1].operation == ExpressionOperation::Negate ? -1 : 1;
    if (step.operation == ExpressionOperation::Integer) numbers.push_back(sign * static_cast<double>(step.integer));
    if (step.operation == ExpressionOperation::Real) numbers.push_back(sign * step.real);
    if (step.operation == ExpressionOperation::Text) texts.emplace_back(step.text());
    if (step.operation != ExpressionOperation::Path) continue;
    const MeasuredPath path = measured(step.text());
    asked.push_back(addSubject(step.slot, path.path));
    if (path.member == "count") _subjects[asked.back()].list = true;
    if (path.member == "length") _subjects[asked.back()].measured = true;
  }
  for (const std::uint32_t subject : asked) {
    std::vector<double>& all = _subjects[subject].numbers;
    all.insert(all.end(), numbers.begin(), numbers.end());
    _subjects[subject].texts.insert(_subjects[subject].texts.end(), texts.begin(), texts.end());
  }
}

std::uint32_t VariantConditions::addSubject(ValueSlot slot, std::string_view path) {
  const auto [found, added] = _subjectNumbers.try_emplace({slot, path}, static_cast<std::uint32_t>(_subjects.size()));
  if (added) {
    VariantSubject& subject = _subjects.emplace_back();
    subject.slot = slot;
    subject.path = path;
  }
  return found->second;
}

std::uint32_t VariantConditions::subjectOf(ValueSlot slot, std::string_view pathWithName) const {
  return _subjectNumbers.at({slot, pathAfterName(pathWithName)});
}

void VariantConditions::makeCandidates(VariantSubject& subject) const {
  sortAndUnite(subject.numbers);
  std::sort(subject.texts.begin(), subject.texts.end());
  subject.texts.erase(std::unique(subject.texts.begin(), subject.texts.end()), subject.texts.end());
  std::vector<Value>& candidates = subject.candidates;
  if (subject.dictionary) {
    candidates = {Value(Dictionary{{"k", Value(1)}}), Value(Dictionary())};
  } else if (subject.list) {
    addLists(candidates, subject.numbers);
  } else {
    addScalars(candidates, subject);
  }
  const auto& arguments = *_method.arguments();
  const bool notNull = subject.path.empty() && subject.slot < arguments.size() && arguments[subject.slot].notNull();
  const double largest = subject.numbers.empty() ? 0 : subject.numbers.back();
  subject.isRepresented = candidates.size() < maxCandidates && !(subject.list && largest >= maxEntries) &&
                          !(subject.measured && largest >= maxTextLength);
  if (candidates.size() > maxCandidates - 1) candidates.resize(maxCandidates - 1);
  if (!notNull) candidates.emplace_back();
  subject.possible = ~CandidateMask{0} >> (maxCandidates - candidates.size());
}

const VariantAtom& VariantConditions::atomOf(std::uint32_t begin, std::uint32_t end) {
  const auto [found, added] = _atoms.try_emplace({begin, end});
  VariantAtom& atom = found->second;
  if (added) {
    ask(atom, begin, end);
    atom.question = addQuestion(questionOf(begin, end, atom.flipped));
  }
  return atom;
}

// Evaluates the steps for each candidate of the only value that they ask for.
void VariantConditions::ask(VariantAtom& atom, std::uint32_t begin, std::uint32_t end) const {
  const auto first = _contents.expressions.steps.begin();
  std::vector<ExpressionStep> steps(first + begin, first + end);
  bool several = false;
  for (ExpressionStep& step : steps) {
    if (isJump(step.operation)) step.target -= begin;
    if (step.operation != ExpressionOperation::Path) continue;
    const MeasuredPath path = measured(step.text());
    const std::uint32_t subject = _subjectNumbers.at({step.slot, path.path});
    several = several || (atom.subject != VariantAtom::none && atom.subject != subject);
    atom.subject = subject;
    step.slot = 0;
    step.bytes = path.member.data();
    step.length = static_cast<std::uint32_t>(path.member.size());
  }
  const bool isConstant = !several && atom.subject == VariantAtom::none;
  const bool isFollowed = !several && (isConstant || (_subjects[atom.subject].isRepresented && onlyCompares(steps)));
  if (!isFollowed) return void(atom.subject = VariantAtom::none);
  atom.isConstant = isConstant;
  steps.emplace_back();
  ValueScope scope;
  scope.set = _contents.set;
  std::vector<ValueView> stack;
  ValueFailure failure;
  const std::vector<Value> noCandidates(1);
  const std::vector<Value>& candidates = isConstant ? noCandidates : _subjects[atom.subject].candidates;
  for (std::size_t candidate = 0; candidate < candidates.size(); ++candidate) {
    scope.slots = {candidates[candidate].view()};
    const auto value = evaluate(steps, 0, scope, stack, failure);
    if (value) (isTrue(*value) ? atom.yes : atom.no) |= CandidateMask{1} << candidate;
  }
}

std::string VariantConditions::nameOf(const ExpressionStep& path) const {
  const auto& arguments = *_method.arguments();
  const bool argument = path.slot < arguments.size();
  const std::string_view name =
      (argument ? arguments[path.slot].name() : _method.foreachItemName()).value_or(std::string_view());
  return path.text().empty() ? std::string(name) : std::string(name).append(".").append(path.text());
}

// A comparison with null asks whether the rest is null.
UnitVariants::Question VariantConditions::questionOf(std::uint32_t begin, std::uint32_t end, bool& flipped) const {
  const std::vector<ExpressionStep>& steps = _contents.expressions.steps;
  using Operation = ExpressionOperation;
  for (; end - begin > 1; --end) {
    if (steps[end - 1].operation == Operation::Not) flipped = !flipped;
    if (steps[end - 1].operation != Operation::Not && steps[end - 1].operation != Operation::Truth) break;
  }
  const Operation last = steps[end - 1].operation;
  const bool equal = last == Operation::Equal || last == Operation::Identical;
  const bool unequal = last == Operation::NotEqual || last == Operation::NotIdentical;
  if ((!equal && !unequal) || end - begin < 3 || steps[end - 2].operation != Operation::Null) {
    return {inWords(begin, end), false, false};
  }
  if (unequal) flipped = !flipped;
  return {inWords(begin, end - 2), false, true};
}

// The steps in the notation of the language, as far as they can be read back.
std::string VariantConditions::inWords(std::uint32_t begin, std::uint32_t end) const {
  std::vector<std::string> stack;
  const auto taken = [&stack] {
    if (stack.empty()) return std::string("…");
    std::string top = std::move(stack.back());
    stack.pop_back();
    return top;
  };
  for (std::uint32_t at = begin; at < end; ++at) {
    const ExpressionStep& step = _contents.expressions.steps[at];
    if (isBinary(step.operation)) {
      const std::string right = taken();
      stack.push_back((taken() + ' ').append(symbolOf(step.operation)).append(" ").append(right));
    } else if (isUnary(step.operation)) {
      stack.push_back(std::string(symbolOf(step.operation)) + taken());
    } else if (step.operation == ExpressionOperation::Null) {
      stack.emplace_back("null");
    } else if (step.operation == ExpressionOperation::Integer) {
      stack.push_back(std::to_string(step.integer));
    } else if (step.operation == ExpressionOperation::Real) {
      stack.push_back(numberText(step.real));
    } else if (step.operation == ExpressionOperation::Text) {
      stack.push_back("'" + std::string(step.text()) + "'");
    } else if (step.operation == ExpressionOperation::Path) {
      stack.push_back(nameOf(step));
    } else if (step.operation == ExpressionOperation::Member) {
      stack.push_back((taken() + '.').append(step.text()));
    } else if (step.operation == ExpressionOperation::Index) {
      const std::string index = taken();
      stack.push_back(taken() + "[" + index + "]");
    }
  }
  constexpr std::size_t maxLength = 100;
  if (stack.size() != 1) return "a condition";
  std::string& words = stack.front();
  if (words.size() > maxLength)
    words.replace(std::min(words.find_last_of(' ', maxLength), maxLength), std::string::npos, " …");
  return std::move(words);
}

std::uint32_t VariantConditions::listQuestion(std::string_view path) {
  return addQuestion({std::string(path), true, false});
}

std::uint32_t VariantConditions::addQuestion(UnitVariants::Question question) {
  const std::string key = question.text + (question.list ? '\1' : question.null ? '\2' : '\3');
  const auto [found, added] = _questionNumbers.try_emplace(key, static_cast<std::uint32_t>(_questions.size()));
  if (added) _questions.push_back(std::move(question));
  return found->second;
}

}  // namespace korvex
