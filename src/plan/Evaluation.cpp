#include "plan/Evaluation.h"

#include <array>
#include <cmath>
#include <compare>
#include <limits>

namespace korvex {

namespace {

ValueView truth(bool holds) { return ValueView::ofInteger(holds ? 1 : 0); }

bool isNumber(const ValueView& value) { return value.type() == ValueType::Integer || value.type() == ValueType::Real; }

double asReal(const ValueView& number) {
  return number.type() == ValueType::Integer ? static_cast<double>(number.integer()) : number.real();
}

// Exact: integers are not rounded for comparison.
std::partial_ordering compareNumbers(std::int64_t integer, double real) {
  constexpr double end = 9223372036854775808.0;
  if (std::isnan(real)) return std::partial_ordering::unordered;
  if (real >= end) return std::partial_ordering::less;
  if (real < -end) return std::partial_ordering::greater;
  const auto whole = static_cast<std::int64_t>(real);
  if (integer != whole) return integer <=> whole;
  return 0.0 <=> real - static_cast<double>(whole);
}

std::partial_ordering compareNumbers(const ValueView& left, const ValueView& right) {
  const bool leftInteger = left.type() == ValueType::Integer;
  const bool rightInteger = right.type() == ValueType::Integer;
  if (leftInteger && rightInteger) return left.integer() <=> right.integer();
  if (leftInteger) return compareNumbers(left.integer(), right.real());
  if (rightInteger) return 0 <=> compareNumbers(right.integer(), left.real());
  return left.real() <=> right.real();
}

bool equal(const ValueView& left, const ValueView& right) {
  if (isNumber(left) && isNumber(right)) return compareNumbers(left, right) == std::partial_ordering::equivalent;
  return left == right;
}

bool identical(const ValueView& left, const ValueView& right) {
  return left.type() == right.type() && equal(left, right);
}

// Absent if the two have no order.
std::optional<std::partial_ordering> compare(const ValueView& left, const ValueView& right) {
  if (left.isNull() || right.isNull()) return std::partial_ordering::unordered;
  if (isNumber(left) && isNumber(right)) return compareNumbers(left, right);
  const bool bytes = left.type() == ValueType::Text || left.type() == ValueType::Blob;
  if (!bytes || left.type() != right.type()) return std::nullopt;
  return left.bytes().compare(right.bytes()) <=> 0;
}

bool holds(ExpressionOperation operation, std::partial_ordering order) {
  switch (operation) {
    case ExpressionOperation::Less:
      return order < 0;
    case ExpressionOperation::LessOrEqual:
      return order <= 0;
    case ExpressionOperation::Greater:
      return order > 0;
    default:
      return order >= 0;
  }
}

// False if the result exceeds 64 bits.
using IntegerOperation = bool (*)(std::int64_t left, std::int64_t right, std::int64_t* result);
using RealOperation = double (*)(double left, double right);

ValueView arithmetic(const ValueView& left, const ValueView& right, IntegerOperation integers, RealOperation reals) {
  std::int64_t result = 0;
  const bool whole = left.type() == ValueType::Integer && right.type() == ValueType::Integer;
  if (whole && integers(left.integer(), right.integer(), &result)) return ValueView::ofInteger(result);
  return ValueView::ofReal(reals(asReal(left), asReal(right)));
}

bool added(std::int64_t left, std::int64_t right, std::int64_t* result) {
  return !__builtin_add_overflow(left, right, result);
}
bool subtracted(std::int64_t left, std::int64_t right, std::int64_t* result) {
  return !__builtin_sub_overflow(left, right, result);
}
bool multiplied(std::int64_t left, std::int64_t right, std::int64_t* result) {
  return !__builtin_mul_overflow(left, right, result);
}
// The divisor is not 0. The minimum integer divided by -1 overflows.
bool divided(std::int64_t left, std::int64_t right, std::int64_t* result) {
  if (right == -1) return subtracted(0, left, result);
  *result = left / right;
  return true;
}
bool remaining(std::int64_t left, std::int64_t right, std::int64_t* result) {
  *result = right == -1 ? 0 : left % right;
  return true;
}

bool isZero(const ValueView& number) { return asReal(number) == 0; }

struct Arithmetic {
  ExpressionOperation operation;  // in the order of the enumeration
  IntegerOperation integers;
  RealOperation reals;
};

constexpr std::array<Arithmetic, 5> arithmeticOperations = {{
    {ExpressionOperation::Add, added, [](double left, double right) { return left + right; }},
    {ExpressionOperation::Subtract, subtracted, [](double left, double right) { return left - right; }},
    {ExpressionOperation::Multiply, multiplied, [](double left, double right) { return left * right; }},
    {ExpressionOperation::Divide, divided, [](double left, double right) { return left / right; }},
    {ExpressionOperation::Remainder, remaining, [](double left, double right) { return std::fmod(left, right); }},
}};

// For two numbers; null for a division by 0.
ValueView calculated(ExpressionOperation operation, const ValueView& left, const ValueView& right) {
  if (operation >= ExpressionOperation::Divide && isZero(right)) return {};
  const auto index = static_cast<std::size_t>(operation) - static_cast<std::size_t>(ExpressionOperation::Add);
  return arithmetic(left, right, arithmeticOperations[index].integers, arithmeticOperations[index].reals);
}

std::int64_t shifted(std::int64_t value, std::int64_t count) {
  if (count <= -64) return 0;
  if (count >= 64) return value < 0 ? -1 : 0;
  if (count < 0) return static_cast<std::int64_t>(static_cast<std::uint64_t>(value) << static_cast<unsigned>(-count));
  return value >> static_cast<unsigned>(count);
}

// The minimum integer cannot be negated; shifting by it shifts all bits out.
std::int64_t opposite(std::int64_t count) { return count == std::numeric_limits<std::int64_t>::min() ? 64 : -count; }

// For two integers.
std::int64_t ofBits(ExpressionOperation operation, std::int64_t left, std::int64_t right) {
  switch (operation) {
    case ExpressionOperation::BitAnd:
      return left & right;
    case ExpressionOperation::BitOr:
      return left | right;
    case ExpressionOperation::BitXor:
      return left ^ right;
    case ExpressionOperation::ShiftLeft:
      return shifted(left, opposite(right));
    default:
      return shifted(left, right);
  }
}

class ExpressionMachine {
 public:
  ExpressionMachine(const std::vector<ExpressionStep>& steps, ValueScope& scope, std::vector<ValueView>& stack,
                    ValueFailure& failure)
      : _steps(steps), _scope(scope), _stack(stack), _failure(failure) {}

  std::optional<ValueView> run(std::uint32_t first) {
    _stack.clear();
    _at = first;
    while (_steps[_at].operation != ExpressionOperation::End) {
      if (!apply(_steps[_at++])) return std::nullopt;
    }
    return _stack.back();
  }

 private:
  bool apply(const ExpressionStep& step) {
    switch (step.operation) {
      case ExpressionOperation::Null:
        return push(ValueView());
      case ExpressionOperation::Integer:
        return push(ValueView::ofInteger(step.integer));
      case ExpressionOperation::Real:
        return push(ValueView::ofReal(step.real));
      case ExpressionOperation::Text:
        return push(ValueView::ofText(step.text()));
      case ExpressionOperation::Path:
        return push(readPath(_scope, _scope.slots[step.slot], step.text(), ValueUse::Expression, _failure));
      case ExpressionOperation::Member:
        return push(readMember(_scope, pop(), step.text(), ValueUse::Expression, _failure));
      case ExpressionOperation::Not:
        return push(truth(!isTrue(pop())));
      case ExpressionOperation::Truth:
        return push(truth(isTrue(pop())));
      case ExpressionOperation::Negate:
      case ExpressionOperation::Plus:
      case ExpressionOperation::Complement:
        return sign(step.operation, pop());
      case ExpressionOperation::IfFalseKeep:
        return jumpKeeping(step, false);
      case ExpressionOperation::IfTrueKeep:
        return jumpKeeping(step, true);
      case ExpressionOperation::IfFalse:
        if (!isTrue(pop())) _at = step.target;
        return true;
      case ExpressionOperation::Always:
        _at = step.target;
        return true;
      default:
        break;
    }
    const ValueView right = pop();
    return binary(step.operation, pop(), right);
  }

  bool binary(ExpressionOperation operation, const ValueView& left, const ValueView& right) {
    switch (operation) {
      case ExpressionOperation::Index:
        return index(left, right);
      case ExpressionOperation::Equal:
        return push(truth(equal(left, right)));
      case ExpressionOperation::NotEqual:
        return push(truth(!equal(left, right)));
      case ExpressionOperation::Identical:
        return push(truth(identical(left, right)));
      case ExpressionOperation::NotIdentical:
        return push(truth(!identical(left, right)));
      case ExpressionOperation::Less:
      case ExpressionOperation::LessOrEqual:
      case ExpressionOperation::Greater:
      case ExpressionOperation::GreaterOrEqual:
        return order(operation, left, right);
      case ExpressionOperation::Add:
      case ExpressionOperation::Subtract:
      case ExpressionOperation::Multiply:
      case ExpressionOperation::Divide:
      case ExpressionOperation::Remainder:
        return calculate(operation, left, right);
      default:
        return bits(operation, left, right);
    }
  }

  bool order(ExpressionOperation operation, const ValueView& left, const ValueView& right) {
    const std::optional<std::partial_ordering> compared = compare(left, right);
    return compared ? push(truth(holds(operation, *compared))) : refuse(operation, left, right);
  }

  bool calculate(ExpressionOperation operation, const ValueView& left, const ValueView& right) {
    if (left.isNull() || right.isNull()) return push(ValueView());
    if (!isNumber(left) || !isNumber(right)) return refuse(operation, left, right);
    return push(calculated(operation, left, right));
  }

  bool bits(ExpressionOperation operation, const ValueView& left, const ValueView& right) {
    if (left.isNull() || right.isNull()) return push(ValueView());
    if (left.type() != ValueType::Integer || right.type() != ValueType::Integer) return refuse(operation, left, right);
    return push(ValueView::ofInteger(ofBits(operation, left.integer(), right.integer())));
  }

  bool sign(ExpressionOperation operation, const ValueView& value) {
    if (value.isNull()) return push(value);
    const bool integer = value.type() == ValueType::Integer;
    const bool fits = operation == ExpressionOperation::Complement ? integer : isNumber(value);
    if (!fits)
      return fail("'" + std::string(symbolOf(operation)) + "' cannot be applied to " +
                  std::string(nameOf(value.type())));
    if (operation == ExpressionOperation::Complement) return push(ValueView::ofInteger(~value.integer()));
    if (operation == ExpressionOperation::Plus) return push(value);
    return push(calculated(ExpressionOperation::Subtract, ValueView::ofInteger(0), value));
  }

  // An entry of a list by its index from 0, or of a dictionary by its name; null if there is none.
  bool index(const ValueView& container, const ValueView& key) {
    if (container.isNull()) return push(ValueView());
    if (container.type() == ValueType::List && key.type() == ValueType::Integer) {
      const auto place = static_cast<std::uint64_t>(key.integer());
      return push(place < container.list().size() ? container.list()[place].view() : ValueView());
    }
    if (container.type() == ValueType::Dictionary && key.type() == ValueType::Text) {
      const Value* entry = container.dictionary().find(key.bytes());
      return push(entry ? entry->view() : ValueView());
    }
    return fail(std::string(nameOf(container.type())) + " has no entry by " + std::string(nameOf(key.type())));
  }

  bool jumpKeeping(const ExpressionStep& step, bool when) {
    if (isTrue(_stack.back()) == when) {
      _stack.back() = truth(when);
      _at = step.target;
    } else {
      _stack.pop_back();
    }
    return true;
  }

  bool push(const ValueView& value) {
    _stack.push_back(value);
    return true;
  }
  bool push(const std::optional<ReadValue>& read) { return read && push(read->value); }
  ValueView pop() {
    const ValueView value = _stack.back();
    _stack.pop_back();
    return value;
  }

  bool refuse(ExpressionOperation operation, const ValueView& left, const ValueView& right) {
    return fail("'" + std::string(symbolOf(operation)) + "' cannot be applied to " + std::string(nameOf(left.type())) +
                " and " + std::string(nameOf(right.type())));
  }
  bool fail(std::string message) {
    _failure = {PlanErrorCode::WrongType, std::move(message)};
    return false;
  }

  const std::vector<ExpressionStep>& _steps;
  ValueScope& _scope;
  std::vector<ValueView>& _stack;
  ValueFailure& _failure;
  std::size_t _at = 0;
};

}  // namespace

bool isTrue(const ValueView& value) {
  switch (value.type()) {
    case ValueType::Null:
      return false;
    case ValueType::Integer:
      return value.integer() != 0;
    case ValueType::Real:
      return value.real() != 0 && !std::isnan(value.real());
    case ValueType::Text:
    case ValueType::Blob:
      return !value.bytes().empty();
    case ValueType::List:
      return !value.list().empty();
    case ValueType::Dictionary:
      return !value.dictionary().empty();
    case ValueType::Object:
      return true;
  }
  return false;
}

std::optional<ValueView> evaluate(const std::vector<ExpressionStep>& steps, std::uint32_t first, ValueScope& scope,
                                  std::vector<ValueView>& stack, ValueFailure& failure) {
  return ExpressionMachine(steps, scope, stack, failure).run(first);
}

}  // namespace korvex
