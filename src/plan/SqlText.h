// What a plan reads in SQL: values, references, and where strings, quoted names and comments end.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace korvex {

inline constexpr std::string_view sqlWhiteSpace = " \t\n\v\f\r";

// Letters, digits, "_" and everything beyond ASCII: what words of SQL are made of.
[[nodiscard]] bool isNameCharacter(char character);

// The next place of a word that no longer name goes on from; the text's size when there is none.
[[nodiscard]] std::size_t findSqlWord(std::string_view text, std::string_view word, std::size_t from);

enum class SqlPartKind : std::uint8_t { Text, Value, Reference, Fault, End };

struct SqlPart {
  SqlPartKind kind = SqlPartKind::End;
  std::string_view text;           // of a value and a reference without their mark
  std::string_view message;        // of a fault, whose text is what is at fault
  bool endsInLineComment = false;  // of a text: what comes next must begin a line
};

// The parts of a text, one after the other. Values (:name.path) and references (@name) are seen in code only, not in
// strings, quoted names and comments. After a fault comes the end.
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

// The first character of code behind white space and comments; the text's size when there is none.
[[nodiscard]] std::size_t beginOfCode(std::string_view sql);
// Behind the last character of code; 0 when there is none.
[[nodiscard]] std::size_t endOfCode(std::string_view sql);

// Whether the text ends in NOT IN, in any case, with or without an opening parenthesis.
[[nodiscard]] bool endsInNotIn(std::string_view sql);
// Whether the text is WHERE in any case, alone or in front of more.
[[nodiscard]] bool beginsWithWhere(std::string_view sql);

// What "trim" takes off, in front of the code and behind it: the range to erase, empty when the override does not
// match. White space in an override stands for any, at its ends for the end of a word.
struct SqlRange {
  std::size_t begin = 0;
  std::size_t end = 0;
};
[[nodiscard]] SqlRange findPrefixOverride(std::string_view content, std::string_view override);
[[nodiscard]] SqlRange findSuffixOverride(std::string_view content, std::string_view override);

// A name in double quotes, those in it doubled.
void appendQuotedName(std::string& sql, std::string_view name);
// Whether a text can be a name: not empty, UTF-8, and without a zero byte, where SQL would end.
[[nodiscard]] bool canBeName(std::string_view text);

}  // namespace korvex
