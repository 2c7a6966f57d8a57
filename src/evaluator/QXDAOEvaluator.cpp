#include "korvex/QXDAOEvaluator.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "evaluator/Tokenizing.h"

namespace korvex {

namespace {

// The classes of each character: a table, because every character of every condition is looked up.
enum CharacterClass : std::uint8_t {
  Digit = 1U << 0U,
  NameStart = 1U << 1U,
  WhiteSpace = 1U << 2U,
  Quote = 1U << 3U,
  Bracket = 1U << 4U,
  Point = 1U << 5U,
  Operator = 1U << 6U,
  NotASCII = 1U << 7U,
};

// Longer operators first, so that the first match is the longest.
constexpr std::array<std::string_view, 28> operators = {"===", "!==", "==", "!=", "<>", "<=", ">=", "&&", "||", "<<",
                                                        ">>",  "+",   "-",  "*",  "/",  "%",  "=",  "<",  ">",  "!",
                                                        "?",   ":",   ",",  "~",  "&",  "|",  "^",  "."};

constexpr auto classesOfCharacters = [] {
  std::array<std::uint8_t, 256> table{};
  const auto add = [&table](std::string_view characters, std::uint8_t classes) {
    for (const char character : characters) table[static_cast<unsigned char>(character)] |= classes;
  };
  add("0123456789", Digit);
  add("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ_$", NameStart);
  add(" \t\n\v\f\r", WhiteSpace);
  add("'\"", Quote);
  add("()[]{}", Bracket);
  add(".", Point);
  for (const std::string_view symbol : operators) add(symbol, Operator);
  for (std::size_t byte = 0x80; byte < table.size(); ++byte) table[byte] = NameStart | NotASCII;
  return table;
}();

template <unsigned classes>
bool is(char character) {
  return (classesOfCharacters[static_cast<unsigned char>(character)] & classes) != 0;
}

template <typename Predicate>
std::size_t countWhile(std::string_view text, std::size_t from, Predicate predicate) {
  std::size_t end = from;
  while (end < text.size() && predicate(text[end])) ++end;
  return end - from;
}

bool characterAt(std::string_view text, std::size_t at, std::string_view wanted) {
  return at < text.size() && wanted.find(text[at]) != std::string_view::npos;
}

template <unsigned classes>
bool classAt(std::string_view text, std::size_t at) {
  return at < text.size() && is<classes>(text[at]);
}

struct CharacterRange {
  char32_t first;
  char32_t last;
};

// Characters that are invisible or look like ASCII: spaces, direction marks, quotes, dashes, mathematical signs,
// full-width forms. Nobody would notice them in a name.
constexpr std::array<CharacterRange, 26> lookalikes = {{
    {0x80, 0xA0},     {0xAB, 0xAB},       {0xAD, 0xAD},     {0xB4, 0xB4},     {0xBB, 0xBB},     {0xD7, 0xD7},
    {0xF7, 0xF7},     {0x2B9, 0x2BF},     {0x34F, 0x34F},   {0x61C, 0x61C},   {0x115F, 0x1160}, {0x1680, 0x1680},
    {0x17B4, 0x17B5}, {0x180B, 0x180F},   {0x2000, 0x206F}, {0x2190, 0x23FF}, {0x2500, 0x2BFF}, {0x2E00, 0x2E7F},
    {0x3000, 0x3004}, {0x3008, 0x3020},   {0x3164, 0x3164}, {0xFE00, 0xFE0F}, {0xFE20, 0xFE6F}, {0xFEFF, 0xFF60},
    {0xFFA0, 0xFFFF}, {0xE0000, 0xE0FFF},
}};

bool isLookalike(char32_t character) {
  const auto* range = std::find_if(lookalikes.begin(), lookalikes.end(),
                                   [character](const CharacterRange& entry) { return character <= entry.last; });
  return range != lookalikes.end() && character >= range->first;
}

struct DecodedCharacter {
  char32_t code = 0;
  std::size_t length = 0;  // 0 if the bytes are not UTF-8
};

// The first character of a text that is not empty.
DecodedCharacter decodedCharacter(std::string_view text) {
  const auto first = static_cast<unsigned char>(text.front());
  const std::size_t length = first < 0x80   ? 1
                             : first < 0xC2 ? 0
                             : first < 0xE0 ? 2
                             : first < 0xF0 ? 3
                             : first < 0xF5 ? 4
                                            : 0;
  if (length == 1) return {first, 1};
  if (length == 0 || text.size() < length) return {};
  char32_t code = first & (0x7FU >> length);
  for (std::size_t at = 1; at < length; ++at) {
    const auto byte = static_cast<unsigned char>(text[at]);
    if ((byte & 0xC0U) != 0x80U) return {};
    code = code << 6U | (byte & 0x3FU);
  }
  constexpr std::array<char32_t, 5> least = {0, 0, 0x80, 0x800, 0x10000};
  const bool surrogate = code >= 0xD800 && code <= 0xDFFF;
  return code < least[length] || code > 0x10FFFF || surrogate ? DecodedCharacter{} : DecodedCharacter{code, length};
}

// Whether the name has no lookalikes.
bool isHonest(std::string_view name) {
  if (std::none_of(name.begin(), name.end(), is<NotASCII>)) return true;
  while (!name.empty()) {
    const DecodedCharacter character = decodedCharacter(name);
    if (character.length == 0 || isLookalike(character.code)) return false;
    name.remove_prefix(character.length);
  }
  return true;
}

// Each function below returns the length of its token at the front of the text; 0 if there is none. The caller has
// checked that such a token may begin with the first character.

std::size_t lengthOfName(std::string_view text) {
  std::size_t length = 0;
  while (classAt<NameStart>(text, length)) {
    length += countWhile(text, length, is<NameStart | Digit>);
    if (!classAt<Point>(text, length)) return isHonest(text.substr(0, length)) ? length : 0;
    ++length;
  }
  return 0;  // no name, or a dot without a name after it
}

std::size_t lengthOfExponent(std::string_view text, std::size_t at) {
  if (!characterAt(text, at, "eE")) return 0;
  const std::size_t sign = characterAt(text, at + 1, "+-") ? 1 : 0;
  const std::size_t count = countWhile(text, at + 1 + sign, is<Digit>);
  return count == 0 ? 0 : 1 + sign + count;
}

// For a text that begins with a digit or a point.
std::size_t lengthOfNumber(std::string_view text) {
  const std::size_t whole = countWhile(text, 0, is<Digit>);
  std::size_t length = whole;
  if (classAt<Point>(text, length)) {
    const std::size_t fraction = countWhile(text, length + 1, is<Digit>);
    if (whole + fraction == 0) return 0;
    length += 1 + fraction;
  }
  length += lengthOfExponent(text, length);
  return classAt<NameStart | Digit | Point>(text, length) ? 0 : length;
}

std::size_t lengthOfString(std::string_view text) {
  for (std::size_t at = 1; at < text.size(); ++at) {
    if (text[at] == '\\') {
      ++at;
    } else if (text[at] == text[0]) {
      return at + 1;
    }
  }
  return 0;
}

std::size_t lengthOfOperator(std::string_view text) {
  const auto* found = std::find_if(operators.begin(), operators.end(), [text](std::string_view symbol) {
    return text.front() == symbol.front() && text.starts_with(symbol);
  });
  return found == operators.end() ? 0 : found->size();
}

std::size_t lengthOfBracket(std::string_view /*text*/) { return 1; }

struct TokenRule {
  QXDAOTokenType type;
  unsigned begins;  // the classes of the characters that such a token may begin with
  std::size_t (*length)(std::string_view text);
};

constexpr std::array<TokenRule, 5> tokenRules = {{
    {QXDAOTokenTypeName, NameStart, lengthOfName},
    {QXDAOTokenTypeNumber, Digit | Point, lengthOfNumber},
    {QXDAOTokenTypeString, Quote, lengthOfString},
    {QXDAOTokenTypeOperator, Operator, lengthOfOperator},
    {QXDAOTokenTypeBracket, Bracket, lengthOfBracket},
}};

// Moves the first token of the text to the list; false if no rule matches.
bool takeToken(std::string_view& text, QXDAOTokenList& tokens) {
  const unsigned classes = classesOfCharacters[static_cast<unsigned char>(text.front())];
  for (const TokenRule& rule : tokenRules) {
    if ((classes & rule.begins) == 0) continue;
    if (const std::size_t length = rule.length(text); length != 0) {
      tokens.push_back({rule.type, text.substr(0, length)});
      text.remove_prefix(length);
      return true;
    }
  }
  return false;
}

void skipWhiteSpace(std::string_view& text) { text.remove_prefix(countWhile(text, 0, is<WhiteSpace>)); }

}  // namespace

std::size_t lengthOfTokens(std::string_view expression) {
  std::string_view rest = expression;
  QXDAOTokenList tokens;
  for (skipWhiteSpace(rest); !rest.empty() && takeToken(rest, tokens);) skipWhiteSpace(rest);
  return expression.size() - rest.size();
}

QXDAOTokenList QXDAOEvaluator::buildTokenListWithExpression(std::string_view expression) {
  QXDAOTokenList tokens;
  for (skipWhiteSpace(expression); !expression.empty(); skipWhiteSpace(expression)) {
    if (!takeToken(expression, tokens)) return {};
  }
  return tokens;
}

}  // namespace korvex
