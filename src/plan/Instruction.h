// The instructions of compiled methods and expressions: small records in two arrays of the set. Texts point into the
// elements.
#pragma once

#include <cstdint>
#include <string_view>

namespace korvex {

// Where a value comes from: the arguments of the method in their order, then the item of its foreach attribute, then
// the item of a foreach element.
using ValueSlot = std::uint16_t;

enum class ExpressionOperation : std::uint8_t {
  Null,
  Integer,
  Real,
  Text,
  Path,    // pushes a value by name: its slot, and the path after it
  Member,  // replaces the top value by one of its members
  Index,   // replaces two values by an entry of the first one
  // Replace two values by one.
  Equal,
  NotEqual,
  Identical,
  NotIdentical,
  Less,
  LessOrEqual,
  Greater,
  GreaterOrEqual,
  Add,
  Subtract,
  Multiply,
  Divide,
  Remainder,
  BitAnd,
  BitOr,
  BitXor,
  ShiftLeft,
  ShiftRight,
  // Replace one value by another.
  Not,
  Negate,
  Plus,
  Complement,
  Truth,  // to 0 or 1
  // Jumps, to `number` in the array.
  IfFalseKeep,  // if the top value is false, which becomes 0; otherwise pops it
  IfTrueKeep,   // if it is true, which becomes 1; otherwise pops it
  IfFalse,      // pops it
  Always,
  End,
};

struct ExpressionStep {
  ExpressionOperation operation = ExpressionOperation::End;
  ValueSlot slot = 0;
  std::uint32_t length = 0;  // of the text
  union {
    std::int64_t integer = 0;
    double real;
    const char* bytes;
    std::uint64_t target;
  };

  [[nodiscard]] std::string_view text() const { return {bytes, length}; }
};
static_assert(sizeof(ExpressionStep) == 16);

enum class PlanOperation : std::uint8_t {
  Place,    // of the next text or element: document, line, column
  Text,     // SQL
  Value,    // a value by name, "?" in the SQL
  Table,    // the assigned table
  If,       // an expression decides whether to continue here or at the target
  Jump,     // to the end of a choose
  Trim,     // begins a trim, where or set
  TrimEnd,  // ends the innermost one
  Foreach,  // its text follows, up to the target
  Format,
  End,
};

// The bits of PlanInstruction::flags.
enum PlanFlag : std::uint8_t {
  BeginsPiece = 1U << 0U,        // separated by a space from the text before
  HasCode = 1U << 1U,            // more than white space and comments
  EndsInLineComment = 1U << 2U,  // the next text must begin a line
  WantsTrue = 1U << 3U,          // of the expression
  AfterNotIn = 1U << 4U,         // the entries are those of NOT IN
};

struct PlanInstruction {
  PlanOperation operation = PlanOperation::End;
  std::uint8_t flags = 0;
  ValueSlot slot = 0;
  std::uint32_t number = 0;  // a text's length, an expression, a document, the target of foreach
  union {
    const void* pointer = nullptr;  // a text's bytes, an element
    struct {
      std::uint32_t line;
      std::uint32_t column;
    } place;
    std::uint64_t target;
  };

  [[nodiscard]] bool has(PlanFlag flag) const { return (flags & flag) != 0; }
  [[nodiscard]] std::string_view text() const { return {static_cast<const char*>(pointer), number}; }
  template <typename Element>
  [[nodiscard]] const Element& element() const {
    return *static_cast<const Element*>(pointer);
  }
};
static_assert(sizeof(PlanInstruction) == 16);

}  // namespace korvex
