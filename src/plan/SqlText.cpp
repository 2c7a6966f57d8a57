#include "plan/SqlText.h"

#include <algorithm>
#include <array>

#include "platform/Strings.h"

namespace korvex {

namespace {

enum SqlCharacter : std::uint8_t {
  Name = 1U << 0U,
  NameStart = 1U << 1U,
  Space = 1U << 2U,
  Special = 1U << 3U,  // may begin something that is not plain code
};

constexpr auto sqlCharacters = [] {
  std::array<std::uint8_t, 256> table{};
  const auto add = [&table](std::string_view characters, unsigned classes) {
    for (const char character : characters)
      table[static_cast<unsigned char>(character)] |= static_cast<std::uint8_t>(classes);
  };
  add("0123456789", Name);
  add("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ_", Name | NameStart);
  for (std::size_t byte = 0x80; byte < table.size(); ++byte) table[byte] = Name | NameStart;
  add(sqlWhiteSpace, Space);
  add("'\"`[-/:@?$", Special);
  return table;
}();

bool isSql(char character, unsigned classes) {
  return (sqlCharacters[static_cast<unsigned char>(character)] & classes) != 0;
}
bool isSqlAt(std::string_view sql, std::size_t at, unsigned classes) {
  return at < sql.size() && isSql(sql[at], classes);
}

struct SqlDelimiter {
  std::string_view opens;
  std::string_view closes;
  std::string_view unclosed;  // the message
};

constexpr std::string_view lineComment = "--";
constexpr std::array<SqlDelimiter, 6> sqlDelimiters = {{
    {"'", "'", "the string is not closed in the text where it begins: close it with a '"},
    {"\"", "\"", "the quoted name is not closed in the text where it begins: close it with a \""},
    {"`", "`", "the quoted name is not closed in the text where it begins: close it with a `"},
    {"[", "]", "the quoted name is not closed in the text where it begins: close it with a ]"},
    {lineComment, "\n", ""},
    {"/*", "*/", "the comment is not closed in the text where it begins: close it with */"},
}};

const SqlDelimiter* delimiterAt(std::string_view sql, std::size_t at) {
  const auto* found = std::find_if(
      sqlDelimiters.begin(), sqlDelimiters.end(),
      [rest = sql.substr(at)](const SqlDelimiter& delimiter) { return rest.starts_with(delimiter.opens); });
  return found == sqlDelimiters.end() ? nullptr : found;
}

bool isComment(const SqlDelimiter& delimiter) { return delimiter.opens.size() == 2; }

// After the end of what begins there; npos if it is not closed.
std::size_t endOf(const SqlDelimiter& delimiter, std::string_view sql, std::size_t at) {
  const std::size_t closing = sql.find(delimiter.closes, at + delimiter.opens.size());
  return closing == std::string_view::npos ? closing : closing + delimiter.closes.size();
}

std::size_t nameEnd(std::string_view sql, std::size_t at) {
  while (isSqlAt(sql, at, Name)) ++at;
  return at;
}

std::size_t pathEnd(std::string_view sql, std::size_t at) {
  std::size_t end = nameEnd(sql, at);
  while (end < sql.size() && sql[end] == '.' && isSqlAt(sql, end + 1, NameStart)) end = nameEnd(sql, end + 1);
  return end;
}

std::string_view withoutSpaceAtEnd(std::string_view text) {
  while (!text.empty() && isSql(text.back(), Space)) text.remove_suffix(1);
  return text;
}
std::string_view withoutSpaces(std::string_view text) {
  while (!text.empty() && isSql(text.front(), Space)) text.remove_prefix(1);
  return withoutSpaceAtEnd(text);
}

// Removes a word from the end, ignoring case.
bool takeLastWord(std::string_view& text, std::string_view lowerCaseWord) {
  text = withoutSpaceAtEnd(text);
  if (text.size() < lowerCaseWord.size()) return false;
  const std::size_t rest = text.size() - lowerCaseWord.size();
  if (asciiLowerCase(text.substr(rest)) != lowerCaseWord) return false;
  if (rest > 0 && isSql(text[rest - 1], Name)) return false;
  text.remove_suffix(lowerCaseWord.size());
  return true;
}

// The length of the text that the override matches, where white space matches any run of white space; npos if it does
// not match.
std::size_t lengthCovered(std::string_view text, std::string_view override) {
  std::size_t at = 0;
  for (std::size_t wanted = 0; wanted < override.size();) {
    if (isSql(override[wanted], Space)) {
      if (!isSqlAt(text, at, Space)) return std::string_view::npos;
      while (isSqlAt(override, wanted, Space)) ++wanted;
      while (isSqlAt(text, at, Space)) ++at;
    } else {
      if (at == text.size() || text[at++] != override[wanted++]) return std::string_view::npos;
    }
  }
  return at;
}

}  // namespace

bool isNameCharacter(char character) { return isSql(character, Name); }

std::size_t findSqlWord(std::string_view text, std::string_view word, std::size_t from) {
  const auto goesOn = [&](std::size_t at) { return isSql(word.back(), Name) && isSqlAt(text, at + word.size(), Name); };
  std::size_t at = text.find(word, from);
  while (at != std::string_view::npos && goesOn(at)) at = text.find(word, at + 1);
  return std::min(at, text.size());
}

SqlPart SqlReader::next() {
  std::size_t at = _begin;
  if (at == _sql.size()) return {};
  while (true) {
    while (at < _sql.size() && !isSql(_sql[at], Special)) ++at;
    if (at == _sql.size()) return textUpTo(at);
    if (const SqlDelimiter* delimiter = delimiterAt(_sql, at)) {
      const std::size_t end = endOf(*delimiter, _sql, at);
      if (end != std::string_view::npos) {
        at = end;
      } else if (delimiter->opens == lineComment) {
        SqlPart text = textUpTo(_sql.size());
        text.endsInLineComment = true;
        return text;
      } else {
        return fault(at, delimiter->opens.size(), delimiter->unclosed);
      }
      continue;
    }
    const SqlPart part = marked(at);
    if (part.kind == SqlPartKind::Text) {
      at = static_cast<std::size_t>(part.text.data() - _sql.data()) + part.text.size();
      continue;
    }
    if (part.kind != SqlPartKind::Fault && at > _begin) return textUpTo(at);
    _begin = part.kind == SqlPartKind::Fault
                 ? _sql.size()
                 : static_cast<std::size_t>(part.text.data() - _sql.data()) + part.text.size();
    return part;
  }
}

// The part that a character outside quotes and comments begins; a text for plain code.
SqlPart SqlReader::marked(std::size_t at) {
  constexpr std::string_view digits = "0123456789";
  const char mark = _sql[at];
  const char behind = at + 1 < _sql.size() ? _sql[at + 1] : ' ';
  const bool named = isSql(behind, NameStart);
  const bool numbered = digits.find(behind) != std::string_view::npos;
  if (mark == ':' && named) return {SqlPartKind::Value, _sql.substr(at + 1, pathEnd(_sql, at + 1) - at - 1), {}};
  if (mark == '@' && named) return {SqlPartKind::Reference, _sql.substr(at + 1, nameEnd(_sql, at + 1) - at - 1), {}};
  const std::string_view faulty = _sql.substr(at, nameEnd(_sql, at + 1) - at);
  if (mark == '?')
    return fault(at, faulty.size(), "a value is bound by its name: write ':' and the name of an argument");
  const bool inName = mark == '$' && at > 0 && isSql(_sql[at - 1], Name);
  if (mark == '$' && !inName && (named || numbered))
    return fault(at, faulty.size(), "a value is bound with ':', as in ':name'");
  if ((mark == ':' || mark == '@') && numbered)
    return fault(at, faulty.size(), "values and references have names, not numbers");
  return {SqlPartKind::Text, _sql.substr(at, mark == ':' && behind == ':' ? 2 : 1), {}};
}

SqlPart SqlReader::fault(std::size_t at, std::size_t length, std::string_view message) {
  _begin = _sql.size();
  return {SqlPartKind::Fault, _sql.substr(at, length), message};
}

SqlPart SqlReader::textUpTo(std::size_t end) {
  const SqlPart part{SqlPartKind::Text, _sql.substr(_begin, end - _begin), {}};
  _begin = end;
  return part;
}

std::size_t beginOfCode(std::string_view sql) {
  for (std::size_t at = 0; at < sql.size();) {
    const SqlDelimiter* delimiter = delimiterAt(sql, at);
    if (delimiter && isComment(*delimiter)) {
      at = std::min(endOf(*delimiter, sql, at), sql.size());
    } else if (isSql(sql[at], Space)) {
      ++at;
    } else {
      return at;
    }
  }
  return sql.size();
}

std::size_t endOfCode(std::string_view sql) {
  std::size_t end = 0;
  for (std::size_t at = 0; at < sql.size();) {
    const SqlDelimiter* delimiter = isSql(sql[at], Special) ? delimiterAt(sql, at) : nullptr;
    const bool space = isSql(sql[at], Space);
    at = delimiter ? std::min(endOf(*delimiter, sql, at), sql.size()) : at + 1;
    if (!space && !(delimiter && isComment(*delimiter))) end = at;
  }
  return end;
}

bool endsInNotIn(std::string_view sql) {
  sql = withoutSpaceAtEnd(sql.substr(0, endOfCode(sql)));
  if (!sql.empty() && sql.back() == '(') sql.remove_suffix(1);
  return takeLastWord(sql, "in") && takeLastWord(sql, "not");
}

bool beginsWithWhere(std::string_view sql) {
  constexpr std::string_view where = "where";
  sql.remove_prefix(beginOfCode(sql));
  return asciiLowerCase(sql.substr(0, where.size())) == where && !isSqlAt(sql, where.size(), Name);
}

SqlRange findPrefixOverride(std::string_view content, std::string_view override) {
  override = withoutSpaces(override);
  if (override.empty()) return {};
  const std::size_t begin = beginOfCode(content);
  const std::size_t length = lengthCovered(content.substr(begin), override);
  if (length == std::string_view::npos) return {};
  std::size_t end = begin + length;
  if (isSql(override.back(), Name) && isSqlAt(content, end, Name)) return {};
  while (isSqlAt(content, end, Space)) ++end;
  return {begin, end};
}

SqlRange findSuffixOverride(std::string_view content, std::string_view override) {
  override = withoutSpaces(override);
  const std::size_t end = endOfCode(content);
  if (override.empty() || end < override.size()) return {};
  // White space may be longer than that of the override, so the match begins at the last occurrence of its first
  // character.
  for (std::size_t begin = end - override.size() + 1; begin-- > 0;) {
    const std::string_view tail = content.substr(begin, end - begin);
    if (lengthCovered(tail, override) != tail.size()) {
      if (override.find_first_of(sqlWhiteSpace) == std::string_view::npos) return {};
      continue;
    }
    const bool cutsWord = isSql(override.front(), Name) && begin > 0 && isSql(content[begin - 1], Name);
    return cutsWord ? SqlRange{} : SqlRange{withoutSpaceAtEnd(content.substr(0, begin)).size(), end};
  }
  return {};
}

void appendQuotedName(std::string& sql, std::string_view name) {
  sql += '"';
  for (const char character : name) sql.append(character == '"' ? 2 : 1, character);
  sql += '"';
}

bool canBeName(std::string_view text) {
  return !text.empty() && isValidUTF8(text) && text.find('\0') == std::string_view::npos;
}

}  // namespace korvex
