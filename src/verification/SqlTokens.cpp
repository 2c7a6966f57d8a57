#include "verification/SqlTokens.h"

#include <algorithm>

namespace korvex::verification {

namespace {

bool isSqlSpace(char c) { return std::string_view(" \t\n\v\f\r").find(c) != std::string_view::npos; }

bool isWordByte(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' || c == '$' ||
         static_cast<unsigned char>(c) >= 0x80;
}

// Behind the next `end`, or the end of the text.
std::size_t behind(std::string_view sql, std::string_view end, std::size_t from) {
  const std::size_t found = sql.find(end, from);
  return found == std::string_view::npos ? sql.size() : found + end.size();
}

// The character that closes what this one opens, or 0.
char closingOf(char open) {
  if (open == '[') return ']';
  return std::string_view("'\"`").find(open) != std::string_view::npos ? open : '\0';
}

// A doubled quote stands for itself.
std::size_t endOfQuoted(std::string_view sql, std::size_t begin, char quote) {
  std::size_t at = behind(sql, {&quote, 1}, begin + 1);
  while (quote != ']' && at < sql.size() && sql[at] == quote) at = behind(sql, {&quote, 1}, at + 1);
  return at;
}

std::size_t endOfToken(std::string_view sql, std::size_t begin) {
  if (const char quote = closingOf(sql[begin])) return endOfQuoted(sql, begin, quote);
  const auto end = std::find_if_not(sql.begin() + static_cast<std::ptrdiff_t>(begin) + 1, sql.end(), isWordByte);
  const bool hasName = isWordByte(sql[begin]) || std::string_view(":@?#").find(sql[begin]) != std::string_view::npos;
  return hasName ? static_cast<std::size_t>(end - sql.begin()) : begin + 1;
}

// The end of the space or comment that begins here, or the same place.
std::size_t skipped(std::string_view sql, std::size_t at) {
  const std::string_view rest = sql.substr(at);
  if (rest.starts_with("--")) return behind(sql, "\n", at);
  if (rest.starts_with("/*")) return behind(sql, "*/", at + 2);
  return isSqlSpace(sql[at]) ? at + 1 : at;
}

}  // namespace

std::vector<ByteRange> tokensOf(std::string_view sql) {
  std::vector<ByteRange> tokens;
  for (std::size_t at = 0; at < sql.size();) {
    if (const std::size_t next = skipped(sql, at); next != at) {
      at = next;
      continue;
    }
    tokens.push_back({at, endOfToken(sql, at)});
    at = tokens.back().end;
  }
  return tokens;
}

std::string nameOf(std::string_view token) {
  const char quote = token.empty() ? '\0' : closingOf(token.front());
  if (!quote) return std::string(token);
  std::string name;
  for (std::size_t i = 1; i < token.size(); ++i) {
    if (token[i] == quote && ++i >= token.size()) break;
    name += token[i];
  }
  return name;
}

}  // namespace korvex::verification
