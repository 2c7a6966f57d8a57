#include "verification/SqlFault.h"

#include <sqlite3.h>

#include <array>
#include <memory>
#include <vector>

#include "checks/NearMiss.h"
#include "platform/Strings.h"

namespace korvex::verification {

namespace {

constexpr int maxPrepares = 4000;

struct FinalizeProbe {
  void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};
using ProbeStatement = std::unique_ptr<sqlite3_stmt, FinalizeProbe>;

ProbeStatement prepared(sqlite3& database, std::string_view sql) {
  sqlite3_stmt* statement = nullptr;
  sqlite3_prepare_v2(&database, sql.data(), static_cast<int>(sql.size()), &statement, nullptr);
  return ProbeStatement(statement);
}

// SQLite's message, or an empty string if the text can be prepared.
std::string messageFor(sqlite3& database, std::string_view sql) {
  const ProbeStatement statement = prepared(database, sql);
  return sqlite3_errcode(&database) == SQLITE_OK ? std::string() : sqlite3_errmsg(&database);
}

enum class Named { Table, Column, Call, Other };

// The messages that end with a name.
struct NamingMessage {
  std::string_view before;
  Named what;
};
constexpr std::array namingMessages{
    NamingMessage{"no such table: ", Named::Table},
    NamingMessage{"no such column: ", Named::Column},
    NamingMessage{" has no column named ", Named::Column},
    NamingMessage{"ambiguous column name: ", Named::Other},
    NamingMessage{"no such function: ", Named::Call},
    NamingMessage{"wrong number of arguments to function ", Named::Call},
    NamingMessage{"misuse of aggregate: ", Named::Call},
    NamingMessage{"misuse of aggregate function ", Named::Call},
    NamingMessage{"misuse of window function ", Named::Call},
    NamingMessage{"no such collation sequence: ", Named::Other},
    NamingMessage{"no such index: ", Named::Other},
    NamingMessage{"no such view: ", Named::Table},
};

struct NamedFault {
  Named what = Named::Other;
  std::string name;  // without the database or table before it
};

std::string lastName(std::string_view name) {
  if (name.ends_with("()")) name.remove_suffix(2);
  return std::string(name.substr(name.rfind('.') + 1));
}

std::optional<NamedFault> namedIn(std::string_view message) {
  for (const auto& [before, what] : namingMessages) {
    const std::size_t at = message.find(before);
    if (at != std::string_view::npos) return NamedFault{what, lastName(message.substr(at + before.size()))};
  }
  return std::nullopt;
}

std::vector<std::string> textsOf(sqlite3& database, std::string_view query) {
  std::vector<std::string> texts;
  const ProbeStatement statement = prepared(database, query);
  while (statement && sqlite3_step(statement.get()) == SQLITE_ROW) {
    const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement.get(), 0));
    if (text) texts.emplace_back(text);
  }
  return texts;
}

constexpr std::string_view tableNames = "SELECT name FROM sqlite_schema WHERE type IN ('table', 'view') ORDER BY name";
constexpr std::string_view columnNames =
    "SELECT DISTINCT c.name FROM sqlite_schema s, pragma_table_info(s.name) c "
    "WHERE s.type IN ('table', 'view') ORDER BY c.name";

std::string helpFor(sqlite3& database, const NamedFault& named) {
  if (named.what != Named::Table && named.what != Named::Column) return {};
  const std::vector<std::string> names = textsOf(database, named.what == Named::Table ? tableNames : columnNames);
  const std::vector<std::string_view> words(names.begin(), names.end());
  return didYouMean(named.name, words);
}

// Looks for the tokens without which, or in the place of which, the failure is another.
class Search {
 public:
  Search(sqlite3& database, std::string_view sql, std::string_view message)
      : _database(database), _sql(sql), _message(message), _tokens(tokensOf(sql)) {}

  // The token at an offset, with the names and dots before and behind it.
  ByteRange at(std::size_t offset) const {
    std::size_t first = 0;
    while (first + 1 < _tokens.size() && _tokens[first].end <= offset) ++first;
    std::size_t last = first;
    if (!isName(first)) return range(first, last);
    while (first >= 2 && isDot(first - 1) && isName(first - 2)) first -= 2;
    while (last + 2 < _tokens.size() && isDot(last + 1) && isName(last + 2)) last += 2;
    return range(first, last);
  }

  // The one occurrence of the name that causes the failure.
  std::optional<ByteRange> occurrence(const NamedFault& named) {
    std::optional<ByteRange> first;
    for (std::size_t i = 0; i < _tokens.size(); ++i) {
      if (!isNamed(i, named)) continue;
      const ByteRange changed = range(i, named.what == Named::Call ? endOfCall(i) : i);
      if (changes(changed, named.what == Named::Call ? "NULL" : "\"no such name\"")) return _tokens[i];
      if (!first) first = _tokens[i];
    }
    return first;
  }

  // The shortest piece without which the statement can be prepared; of several the last. It is never a comma alone:
  // without it, the name behind would become an alias.
  ByteRange smallestPiece() {
    for (std::size_t count = 1; count < _tokens.size(); ++count) {
      for (std::size_t first = _tokens.size() - count + 1; first-- > 0;) {
        if (_prepares >= maxPrepares) return whole();
        const ByteRange piece = range(first, first + count - 1);
        const bool isComma = count == 1 && token(first) == ",";
        if (!isComma && messageWith(piece, " ").empty()) return piece;
      }
    }
    return whole();
  }

  ByteRange whole() const { return range(0, _tokens.size() - 1); }
  ByteRange lastToken() const { return _tokens.back(); }
  bool hasTokens() const { return !_tokens.empty(); }

 private:
  std::string_view token(std::size_t i) const { return _sql.substr(_tokens[i].begin, lengthOf(_tokens[i])); }
  static std::size_t lengthOf(ByteRange range) { return range.end - range.begin; }
  ByteRange range(std::size_t first, std::size_t last) const { return {_tokens[first].begin, _tokens[last].end}; }

  bool isDot(std::size_t i) const { return token(i) == "."; }
  bool isName(std::size_t i) const {
    const char c = token(i).front();
    return asciiLowerCase({&c, 1}) != std::string({c}) || (c >= 'a' && c <= 'z') || c == '_' || c == '"' || c == '`' ||
           c == '[' || static_cast<unsigned char>(c) >= 0x80;
  }
  bool isNamed(std::size_t i, const NamedFault& named) const {
    if (!isName(i) || asciiLowerCase(nameOf(token(i))) != asciiLowerCase(named.name)) return false;
    return named.what != Named::Call || (i + 1 < _tokens.size() && token(i + 1) == "(");
  }

  // The bracket that closes the one behind this token.
  std::size_t endOfCall(std::size_t i) const {
    int depth = 0;
    for (std::size_t at = i + 1; at < _tokens.size(); ++at) {
      if (token(at) == "(") ++depth;
      if (token(at) == ")" && --depth == 0) return at;
    }
    return _tokens.size() - 1;
  }

  std::string messageWith(ByteRange place, std::string_view replacement) {
    ++_prepares;
    std::string changed(_sql.substr(0, place.begin));
    return messageFor(_database, changed.append(replacement).append(_sql.substr(place.end)));
  }
  bool changes(ByteRange place, std::string_view replacement) {
    return _prepares < maxPrepares && messageWith(place, replacement) != _message;
  }

  sqlite3& _database;
  std::string_view _sql;
  std::string_view _message;
  std::vector<ByteRange> _tokens;
  int _prepares = 0;
};

ByteRange placeOf(Search& search, int offset, const std::string& message, const std::optional<NamedFault>& named) {
  if (!search.hasTokens()) return {};
  if (offset >= 0) return search.at(static_cast<std::size_t>(offset));
  if (message == "incomplete input") return search.lastToken();
  if (named) {
    if (const std::optional<ByteRange> word = search.occurrence(*named)) return search.at(word->begin);
  }
  return search.smallestPiece();
}

}  // namespace

std::optional<SqlFault> faultOf(sqlite3& database, std::string_view sql) {
  const std::string message = messageFor(database, sql);
  if (message.empty()) return std::nullopt;
  const int offset = sqlite3_error_offset(&database);
  const std::optional<NamedFault> named = namedIn(message);
  Search search(database, sql, message);
  const ByteRange place = placeOf(search, offset, message, named);
  return SqlFault{message, place, named ? helpFor(database, *named) : std::string()};
}

}  // namespace korvex::verification
