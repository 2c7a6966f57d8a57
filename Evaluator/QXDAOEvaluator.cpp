#include "Evaluator/QXDAOEvaluator.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace korvex {

namespace {

constexpr std::string_view brackets = "()[]{}";

// Longer operators first, so that the first match is the longest.
constexpr std::array<std::string_view, 28> operators = {"===", "!==", "==", "!=", "<>", "<=", ">=", "&&", "||", "<<",
                                                        ">>",  "+",   "-",  "*",  "/",  "%",  "=",  "<",  ">",  "!",
                                                        "?",   ":",   ",",  "~",  "&",  "|",  "^",  "."};

bool isDigit(char character) { return character >= '0' && character <= '9'; }

bool isWhiteSpace(char character) { return character == ' ' || (character >= '\t' && character <= '\r'); }

bool isNotASCII(char character) { return static_cast<unsigned char>(character) >= 0x80U; }

bool startsName(char character) {
  const bool ascii = (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z');
  return ascii || character == '_' || character == '$' || isNotASCII(character);
}

bool continuesName(char character) { return startsName(character) || isDigit(character); }

template <typename Predicate>
std::size_t countWhile(std::string_view text, std::size_t from, Predicate predicate) {
  std::size_t end = from;
  while (end < text.size() && predicate(text[end])) ++end;
  return end - from;
}

bool characterAt(std::string_view text, std::size_t at, std::string_view wanted) {
  return at < text.size() && wanted.find(text[at]) != std::string_view::npos;
}

// Characters that word processors put in place of spaces and quotes. As part of a name they would
// go unseen.
constexpr std::array<std::string_view, 5> lookalikes = {"\u00A0", "\u2018", "\u2019", "\u201C", "\u201D"};

bool holdsLookalike(std::string_view name) {
  if (std::none_of(name.begin(), name.end(), isNotASCII)) return false;
  return std::any_of(lookalikes.begin(), lookalikes.end(),
                     [name](std::string_view character) { return name.find(character) != std::string_view::npos; });
}

// Each function below gives the length of its token at the front of the text, 0 when there is none.

std::size_t lengthOfName(std::string_view text) {
  std::size_t length = 0;
  while (length < text.size() && startsName(text[length])) {
    length += countWhile(text, length, continuesName);
    if (!characterAt(text, length, ".")) return holdsLookalike(text.substr(0, length)) ? 0 : length;
    ++length;
  }
  return 0;  // no name at all, or a dot without a name after it
}

std::size_t lengthOfExponent(std::string_view text, std::size_t at) {
  if (!characterAt(text, at, "eE")) return 0;
  const std::size_t sign = characterAt(text, at + 1, "+-") ? 1 : 0;
  const std::size_t count = countWhile(text, at + 1 + sign, isDigit);
  return count == 0 ? 0 : 1 + sign + count;
}

std::size_t lengthOfNumber(std::string_view text) {
  const std::size_t whole = countWhile(text, 0, isDigit);
  std::size_t length = whole;
  if (characterAt(text, length, ".")) {
    const std::size_t fraction = countWhile(text, length + 1, isDigit);
    if (whole + fraction == 0) return 0;
    length += 1 + fraction;
  }
  if (length == 0) return 0;
  length += lengthOfExponent(text, length);
  const bool runsOn = length < text.size() && (continuesName(text[length]) || text[length] == '.');
  return runsOn ? 0 : length;
}

std::size_t lengthOfString(std::string_view text) {
  if (!characterAt(text, 0, "'\"")) return 0;
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

std::size_t lengthOfBracket(std::string_view text) { return characterAt(text, 0, brackets) ? 1 : 0; }

struct TokenRule {
  QXDAOTokenType type;
  std::size_t (*length)(std::string_view text);
};

constexpr std::array<TokenRule, 5> tokenRules = {{
    {QXDAOTokenTypeName, lengthOfName},
    {QXDAOTokenTypeNumber, lengthOfNumber},
    {QXDAOTokenTypeString, lengthOfString},
    {QXDAOTokenTypeOperator, lengthOfOperator},
    {QXDAOTokenTypeBracket, lengthOfBracket},
}};

// Moves the first token of the text to the list; false when no rule knows it.
bool takeToken(std::string_view& text, QXDAOTokenList& tokens) {
  for (const TokenRule& rule : tokenRules) {
    if (const std::size_t length = rule.length(text); length != 0) {
      tokens.push_back({rule.type, text.substr(0, length)});
      text.remove_prefix(length);
      return true;
    }
  }
  return false;
}

void skipWhiteSpace(std::string_view& text) { text.remove_prefix(countWhile(text, 0, isWhiteSpace)); }

// Most people put a space between two tokens.
std::size_t usualTokenCount(std::string_view expression) {
  return 1 + static_cast<std::size_t>(std::count(expression.begin(), expression.end(), ' '));
}

}  // namespace

QXDAOTokenList QXDAOEvaluator::buildTokenListWithExpression(std::string_view expression) {
  QXDAOTokenList tokens;
  tokens.reserve(usualTokenCount(expression));
  for (skipWhiteSpace(expression); !expression.empty(); skipWhiteSpace(expression)) {
    if (!takeToken(expression, tokens)) return {};
  }
  return tokens;
}

}  // namespace korvex
