#include "plan/ExpressionParser.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>

namespace korvex {

namespace {

// The nesting of parentheses, indexes, choices and signs, each of which takes a stack frame.
constexpr int deepestNesting = 200;

struct BinaryOperator {
  std::string_view symbol;
  int precedence;  // a higher one binds more tightly; all are left-associative
  ExpressionOperation operation;
};

constexpr std::array<BinaryOperator, 22> binaryOperators = {{
    {"||", 1, ExpressionOperation::IfTrueKeep},     {"&&", 2, ExpressionOperation::IfFalseKeep},
    {"|", 3, ExpressionOperation::BitOr},           {"^", 4, ExpressionOperation::BitXor},
    {"&", 5, ExpressionOperation::BitAnd},          {"==", 6, ExpressionOperation::Equal},
    {"=", 6, ExpressionOperation::Equal},           {"!=", 6, ExpressionOperation::NotEqual},
    {"<>", 6, ExpressionOperation::NotEqual},       {"===", 6, ExpressionOperation::Identical},
    {"!==", 6, ExpressionOperation::NotIdentical},  {"<", 7, ExpressionOperation::Less},
    {"<=", 7, ExpressionOperation::LessOrEqual},    {">", 7, ExpressionOperation::Greater},
    {">=", 7, ExpressionOperation::GreaterOrEqual}, {"<<", 8, ExpressionOperation::ShiftLeft},
    {">>", 8, ExpressionOperation::ShiftRight},     {"+", 9, ExpressionOperation::Add},
    {"-", 9, ExpressionOperation::Subtract},        {"*", 10, ExpressionOperation::Multiply},
    {"/", 10, ExpressionOperation::Divide},         {"%", 10, ExpressionOperation::Remainder},
}};

struct UnaryOperator {
  std::string_view symbol;
  ExpressionOperation operation;
};

constexpr std::array<UnaryOperator, 4> unaryOperators = {{{"!", ExpressionOperation::Not},
                                                          {"-", ExpressionOperation::Negate},
                                                          {"+", ExpressionOperation::Plus},
                                                          {"~", ExpressionOperation::Complement}}};

struct Keyword {
  std::string_view word;
  ExpressionOperation operation;
  std::int64_t integer;
};

constexpr std::array<Keyword, 3> keywords = {{{"null", ExpressionOperation::Null, 0},
                                              {"true", ExpressionOperation::Integer, 1},
                                              {"false", ExpressionOperation::Integer, 0}}};

// Words of other languages, and their equivalents.
struct ForeignWord {
  std::string_view word;
  std::string_view instead;
};

constexpr std::array<ForeignWord, 8> foreignWords = {
    {{"and", "&&"}, {"or", "||"}, {"not", "!"}, {"AND", "&&"}, {"OR", "||"}, {"NOT", "!"}, {"eq", "=="}, {"is", "=="}}};

struct Escape {
  char written;
  char meant;
};

constexpr std::array<Escape, 6> escapes = {
    {{'n', '\n'}, {'r', '\r'}, {'t', '\t'}, {'\\', '\\'}, {'\'', '\''}, {'"', '"'}}};

template <typename Table, typename Key, typename Member>
const auto* entryOf(const Table& table, const Key& key, Member member) {
  const auto found = std::find_if(table.begin(), table.end(), [&](const auto& entry) { return entry.*member == key; });
  return found == table.end() ? nullptr : &*found;
}

// Precedence climbing: a loop for the operators of one level, a call for a tighter level.
class ExpressionParser {
 public:
  ExpressionParser(std::string_view expression, std::span<const QXDAOToken> tokens, const NameResolver& names,
                   ExpressionStore& store)
      : _expression(expression), _tokens(tokens), _names(names), _store(store) {}

  std::optional<ExpressionFault> parse() {
    if (choice() && _at < _tokens.size()) failUnexpected();
    if (!_fault) emit(ExpressionOperation::End);
    return std::move(_fault);
  }

 private:
  // Each returns false on failure.

  bool choice() {
    if (++_depth > deepestNesting) return fail("is nested too deeply: take parentheses out");
    const bool read = binary(1) && (!takeSymbol("?") || branches());
    --_depth;
    return read;
  }

  bool branches() {
    const std::size_t toOther = emit(ExpressionOperation::IfFalse);
    if (!choice()) return false;
    if (!takeSymbol(":")) return failMissing("':' and the value otherwise");
    const std::size_t toEnd = emit(ExpressionOperation::Always);
    land(toOther);
    if (!choice()) return false;
    land(toEnd);
    return true;
  }

  bool binary(int weakest) {
    if (!unary()) return false;
    while (const BinaryOperator* found = operatorHere(weakest)) {
      ++_at;
      if (!apply(*found)) return false;
    }
    return true;
  }

  [[nodiscard]] const BinaryOperator* operatorHere(int weakest) const {
    if (!isOperator()) return nullptr;
    const auto* found = entryOf(binaryOperators, here().text, &BinaryOperator::symbol);
    return found && found->precedence >= weakest ? found : nullptr;
  }

  // Parses the right operand and emits the operation.
  bool apply(const BinaryOperator& found) {
    const bool jumps = found.precedence <= 2;
    const std::size_t jump = jumps ? emit(found.operation) : 0;
    if (!binary(found.precedence + 1)) return false;
    emit(jumps ? ExpressionOperation::Truth : found.operation);
    if (jumps) land(jump);
    return true;
  }

  bool unary() {
    std::size_t signs = 0;
    while (isSign()) ++signs, ++_at;
    const std::size_t last = _at;
    if (!postfix()) return false;
    for (std::size_t at = last; at > last - signs; --at) {
      emit(entryOf(unaryOperators, _tokens[at - 1].text, &UnaryOperator::symbol)->operation);
    }
    return true;
  }

  [[nodiscard]] bool isSign() const {
    return isOperator() && entryOf(unaryOperators, here().text, &UnaryOperator::symbol) != nullptr;
  }

  bool postfix() {
    if (!primary()) return false;
    while (true) {
      if (takeSymbol(".")) {
        if (!member()) return false;
      } else if (takeSymbol("[")) {
        if (!index()) return false;
      } else {
        return true;
      }
    }
  }

  bool member() {
    if (_at == _tokens.size() || here().type != QXDAOTokenTypeName) return failMissing("the name of a member");
    emitText(ExpressionOperation::Member, here().text);
    ++_at;
    return true;
  }

  bool index() {
    if (!choice()) return false;
    if (!takeSymbol("]")) return failMissing("']'");
    emit(ExpressionOperation::Index);
    return true;
  }

  bool primary() {
    if (_at == _tokens.size()) return failMissing("a value");
    switch (here().type) {
      case QXDAOTokenTypeName:
        return name();
      case QXDAOTokenTypeNumber:
        return number();
      case QXDAOTokenTypeString:
        return string();
      default:
        return parentheses();
    }
  }

  bool parentheses() {
    if (!takeSymbol("(")) return failMissing("a value");
    if (!choice()) return false;
    return takeSymbol(")") || failMissing("')'");
  }

  bool name() {
    const std::string_view text = here().text;
    if (const Keyword* keyword = entryOf(keywords, text, &Keyword::word)) {
      _store.steps[emit(keyword->operation)].integer = keyword->integer;
    } else {
      const std::size_t dot = std::min(text.find('.'), text.size());
      const std::optional<ValueSlot> slot = _names.slotOf(text.substr(0, dot));
      if (!slot) return failUndeclared(text.substr(0, dot));
      _store.steps[emitText(ExpressionOperation::Path, text.substr(std::min(dot + 1, text.size())))].slot = *slot;
    }
    ++_at;
    return true;
  }

  bool number() {
    const std::string_view text = here().text;
    const char* end = text.data() + text.size();
    std::int64_t integer = 0;
    double real = 0;
    if (const auto read = std::from_chars(text.data(), end, integer); read.ec == std::errc() && read.ptr == end) {
      _store.steps[emit(ExpressionOperation::Integer)].integer = integer;
    } else if (readReal(text, real)) {
      _store.steps[emit(ExpressionOperation::Real)].real = real;
    } else {
      return fail("is a number out of range");
    }
    ++_at;
    return true;
  }

  static bool readReal(std::string_view text, double& real) {
    const char* end = text.data() + text.size();
    const auto read = std::from_chars(text.data(), end, real);
    return read.ec == std::errc() && read.ptr == end;
  }

  bool string() {
    const std::string_view inner = here().text.substr(1, here().text.size() - 2);
    std::string_view meant = inner;
    if (inner.find('\\') != std::string_view::npos) {
      std::string& text = _store.texts.emplace_back();
      if (!unescape(inner, text)) return false;
      meant = text;
    }
    emitText(ExpressionOperation::Text, meant);
    ++_at;
    return true;
  }

  bool unescape(std::string_view text, std::string& meant) {
    for (std::size_t at = 0; at < text.size(); ++at) {
      if (text[at] != '\\') {
        meant += text[at];
        continue;
      }
      const Escape* escape = entryOf(escapes, text[++at], &Escape::written);
      if (!escape) return failAt(_at, at, "a backslash stands before one of \\ ' \" n r t: write '\\\\' for one");
      meant += escape->meant;
    }
    return true;
  }

  [[nodiscard]] const QXDAOToken& here() const { return _tokens[_at]; }
  [[nodiscard]] bool isOperator() const { return _at < _tokens.size() && here().type == QXDAOTokenTypeOperator; }

  // Only operators and brackets, not strings with the same text.
  bool takeSymbol(std::string_view symbol) {
    if (_at == _tokens.size() || here().text != symbol) return false;
    ++_at;
    return true;
  }

  std::size_t emit(ExpressionOperation operation) {
    _store.steps.emplace_back().operation = operation;
    return _store.steps.size() - 1;
  }
  std::size_t emitText(ExpressionOperation operation, std::string_view text) {
    const std::size_t step = emit(operation);
    _store.steps[step].bytes = text.data();
    _store.steps[step].length = static_cast<std::uint32_t>(text.size());
    return step;
  }
  void land(std::size_t jump) { _store.steps[jump].target = _store.steps.size(); }

  // At a byte of a token, or after the last one. Tokens are copies, so their positions are found by scanning.
  bool failAt(std::size_t token, std::size_t byte, std::string message) {
    std::size_t offset = 0;
    for (std::size_t at = 0; at < token; ++at) offset = placeOf(_tokens[at], offset) + _tokens[at].text.size();
    offset = token < _tokens.size() ? placeOf(_tokens[token], offset) + byte : _expression.size();
    _fault = ExpressionFault{std::min(offset, _expression.size()), std::move(message), false};
    return false;
  }
  [[nodiscard]] std::size_t placeOf(const QXDAOToken& token, std::size_t from) const {
    return std::min(_expression.find(token.text, from), _expression.size());
  }

  bool fail(std::string_view what) {
    const std::string_view text = _at < _tokens.size() ? here().text : std::string_view();
    return failAt(_at, 0, "'" + std::string(text) + "' " + std::string(what));
  }
  bool failMissing(std::string_view what) {
    if (_at < _tokens.size()) return fail("stands where " + std::string(what) + " is missing");
    return failAt(_at, 0, "the expression ends where " + std::string(what) + " is missing");
  }
  bool failUndeclared(std::string_view name) {
    static_cast<void>(failAt(_at, 0, foreign(name, _names.undeclared(name))));
    _fault->undeclared = true;
    return false;
  }
  bool failUnexpected() {
    if (isForeign(_tokens[_at - 1])) --_at;
    if (isForeign(here())) return failAt(_at, 0, foreign(here().text, {}));
    if (here().text == "(") return fail("calls a function: expressions have none");
    const bool isValue = here().type != QXDAOTokenTypeOperator && here().type != QXDAOTokenTypeBracket;
    return fail(isValue ? "stands where an operator is missing" : "has no meaning here");
  }

  static bool isForeign(const QXDAOToken& token) {
    return token.type == QXDAOTokenTypeName && entryOf(foreignWords, token.text, &ForeignWord::word) != nullptr;
  }
  static std::string foreign(std::string_view name, std::string otherwise) {
    const ForeignWord* word = entryOf(foreignWords, name, &ForeignWord::word);
    if (!word) return otherwise;
    return "'" + std::string(name) + "' is no operator: write '" + std::string(word->instead) + "'";
  }

  std::string_view _expression;
  std::span<const QXDAOToken> _tokens;
  const NameResolver& _names;
  ExpressionStore& _store;
  std::size_t _at = 0;
  int _depth = 0;
  std::optional<ExpressionFault> _fault;
};

class AnyName final : public NameResolver {
 public:
  [[nodiscard]] std::optional<ValueSlot> slotOf(std::string_view /*name*/) const override { return ValueSlot{0}; }
  [[nodiscard]] std::string undeclared(std::string_view /*name*/) const override { return {}; }
};

}  // namespace

std::optional<ExpressionFault> compileExpression(std::string_view expression, std::span<const QXDAOToken> tokens,
                                                 const NameResolver& names, ExpressionStore& store) {
  const std::size_t before = store.steps.size();
  std::optional<ExpressionFault> fault = ExpressionParser(expression, tokens, names, store).parse();
  if (fault) store.steps.resize(before);
  return fault;
}

std::optional<ExpressionFault> findExpressionFault(std::string_view expression, std::span<const QXDAOToken> tokens) {
  ExpressionStore store;
  return compileExpression(expression, tokens, AnyName(), store);
}

// Of two symbols for one operation, the first.
std::string_view symbolOf(ExpressionOperation operation) {
  if (const auto* binary = entryOf(binaryOperators, operation, &BinaryOperator::operation)) return binary->symbol;
  const auto* unary = entryOf(unaryOperators, operation, &UnaryOperator::operation);
  return unary ? unary->symbol : std::string_view();
}

}  // namespace korvex
