// Scans SQL for values, references, strings, quoted names and comments.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace korvex {

inline constexpr std::string_view sqlWhiteSpace = " \t\n\v\f\r";

// The characters of SQL words: letters, digits, "_" and everything beyond ASCII.
[[nodiscard]] bool isNameCharacter(char character);

// The next occurrence of a whole word; the text's size if there is none.
[[nodiscard]] std::size_t findSqlWord(std::string_view text, std::string_view word, std::size_t from);

enum class SqlPartKind : std::uint8_t { Text, Value, Reference, Fault, End };

struct SqlPart {
  SqlPartKind kind = SqlPartKind::End;
  std::string_view text;           // of a value and a reference without their mark
  std::string_view message;        // for a fault; its text is the faulty part
  bool endsInLineComment = false;  // for a text: the next one must begin a line
};

// Iterates over the parts of a text. Values (:name.path) and references (@name) are recognised in code only, not in
// strings, quoted names and comments. A fault ends the text.
class SqlReader {
 public:
  explicit SqlReader(std::string_view sql) : _sql(sql) {}

  [[nodiscard]] SqlPart next();

 private:
  [[nodiscard]] SqlPart marked(std::size_t at);
  [[nodiscard]] SqlPart fault(std::size_t at, std::size_t length, std::string_view message);
  [[nodiscard]] SqlPart textUpTo(std::size_t end);

  std::string_view _sql;
  std::size_t _begin = 0;
};

// The first character of code after white space and comments; the text's size if there is none.
[[nodiscard]] std::size_t beginOfCode(std::string_view sql);
// After the last character of code; 0 if there is none.
[[nodiscard]] std::size_t endOfCode(std::string_view sql);

// Whether the text ends in NOT IN, in any case, with or without an opening parenthesis.
[[nodiscard]] bool endsInNotIn(std::string_view sql);
// Whether the text is, or begins with, the word WHERE, ignoring case.
[[nodiscard]] bool beginsWithWhere(std::string_view sql);

// The range that "trim" removes at the start and end of the code; empty if the override does not match. White space in
// an override matches any white space, and at its ends the end of a word.
struct SqlRange {
  std::size_t begin = 0;
  std::size_t end = 0;
};
[[nodiscard]] SqlRange findPrefixOverride(std::string_view content, std::string_view override);
[[nodiscard]] SqlRange findSuffixOverride(std::string_view content, std::string_view override);

// A name in double quotes, with double quotes in it doubled.
void appendQuotedName(std::string& sql, std::string_view name);
// Whether a text can be a name: not empty, valid UTF-8, and without a zero byte, which would end the SQL.
[[nodiscard]] bool canBeName(std::string_view text);

}  // namespace korvex
