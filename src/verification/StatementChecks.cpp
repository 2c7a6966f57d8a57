#include "verification/StatementChecks.h"

#include <sqlite3.h>

#include <algorithm>
#include <array>
#include <set>

#include "sqlite/ForbiddenStatements.h"

namespace korvex::verification {
namespace {

struct Statement {
  const Plan& plan;
  std::string_view sql;
  const Prepared& prepared;

  [[nodiscard]] sqlite3_stmt* handle() const { return prepared.statement.get(); }
  [[nodiscard]] int columns() const { return sqlite3_column_count(handle()); }
  [[nodiscard]] std::string column(int index) const {
    const char* name = sqlite3_column_name(handle(), index);
    return name ? name : "";
  }
};

bool isWord(std::string_view token, std::string_view upperCase) {
  return std::equal(token.begin(), token.end(), upperCase.begin(), upperCase.end(), [](char left, char right) {
    return (left >= 'a' && left <= 'z' ? left - 'a' + 'A' : left) == right;
  });
}

std::string_view textOf(std::string_view sql, const ByteRange& token) {
  return sql.substr(token.begin, token.end - token.begin);
}

// The tokens outside of all brackets.
std::vector<ByteRange> outerTokens(std::string_view sql) {
  std::vector<ByteRange> outer;
  int depth = 0;
  for (const ByteRange& token : tokensOf(sql)) {
    const std::string_view text = textOf(sql, token);
    if (text == ")") --depth;
    if (depth == 0) outer.push_back(token);
    if (text == "(") ++depth;
  }
  return outer;
}

// The result column of that number, as written; the first word of the statement if "*" hides it.
ByteRange resultColumn(std::string_view sql, int number, int columns) {
  const std::vector<ByteRange> tokens = outerTokens(sql);
  std::vector<ByteRange> begins;
  bool inList = false;
  for (std::size_t at = 0; at < tokens.size(); ++at) {
    const std::string_view text = textOf(sql, tokens[at]);
    if (isWord(text, "FROM") && !begins.empty()) break;
    if (inList) begins.push_back(tokens[at]);
    inList = (begins.empty() && !inList && isWord(text, "SELECT")) || (!begins.empty() && text == ",");
  }
  if (static_cast<int>(begins.size()) == columns) return begins[static_cast<std::size_t>(number)];
  return tokens.empty() ? ByteRange{} : tokens.front();
}

std::optional<Defect> writingSelect(const Statement& statement) {
  if (statement.plan.operation() != QXDAOOperationSelect || sqlite3_stmt_readonly(statement.handle()) != 0) {
    return std::nullopt;
  }
  return Defect{&ruleOf(SchemaRule::Sql), "a select cannot change data",
                "Make the method an insert, an update or a delete.", codeOf(statement.sql)};
}

std::optional<Defect> readingUpdate(const Statement& statement) {
  const bool reads = sqlite3_stmt_readonly(statement.handle()) != 0 && statement.columns() > 0;
  if (statement.plan.operation() == QXDAOOperationSelect || !reads) return std::nullopt;
  return Defect{&ruleOf(SchemaRule::ReadingUpdate), "the statement only reads, and its rows are lost",
                "Make the method a select.", codeOf(statement.sql)};
}

std::optional<Defect> unreadColumns(const Statement& statement) {
  const QXDAOMethod& method = statement.plan.method();
  const int columns = statement.columns();
  if (statement.plan.operation() != QXDAOOperationSelect || columns < 2 ||
      method.resultType() >= QXDAOSelectResultTypeColumnMap) {
    return std::nullopt;
  }
  return Defect{&ruleOf(SchemaRule::UnreadColumns), "only the first of " + std::to_string(columns) + " columns is read",
                "Remove the others, or use a result that has columns: {}, a class, or a map.",
                resultColumn(statement.sql, 1, columns)};
}

std::optional<Defect> repeatedColumn(const Statement& statement) {
  const QXDAOSelectResultType type = statement.plan.method().resultType();
  if (statement.plan.operation() != QXDAOOperationSelect || type < QXDAOSelectResultTypeColumnMap) return std::nullopt;
  std::set<std::string> names;
  for (int column = 0; column < statement.columns(); ++column) {
    const std::string name = statement.column(column);
    if (names.insert(name).second) continue;
    return Defect{&ruleOf(SchemaRule::RepeatedResultColumn), "two columns have the name '" + name + "'",
                  "Remove one of them, or name it with AS.", resultColumn(statement.sql, column, statement.columns())};
  }
  return std::nullopt;
}

std::optional<Defect> vacuum(const Statement& statement) {
  const ByteRange code = codeOf(statement.sql);
  const std::string_view word = textOf(statement.sql, code).substr(0, 6);
  if (!isWord(word, "VACUUM")) return std::nullopt;
  return Defect{&ruleOf(SchemaRule::Sql), forbiddenStatement, "Run VACUUM outside of methods.", code};
}

constexpr std::array checks = {vacuum, writingSelect, readingUpdate, unreadColumns, repeatedColumn};

}  // namespace

ByteRange codeOf(std::string_view sql) {
  const auto tokens = tokensOf(sql);
  return tokens.empty() ? ByteRange{} : ByteRange{tokens.front().begin, tokens.back().end};
}

std::optional<ByteRange> statementAfter(std::string_view sql, std::size_t end) {
  if (end >= sql.size()) return std::nullopt;
  for (const auto& [begin, tokenEnd] : tokensOf(sql.substr(end))) {
    if (sql[end + begin] != ';') return ByteRange{end + begin, end + tokenEnd};
  }
  return std::nullopt;
}

Defect severalStatements(const ByteRange& second) {
  return {&ruleOf(SchemaRule::Sql), "the SQL goes on after its first statement, which alone would run",
          "Make each statement a step of its own.", second};
}

std::vector<Defect> defectsOf(const Plan& plan, std::string_view sql, const Prepared& prepared) {
  std::vector<Defect> defects;
  if (const auto second = statementAfter(sql, prepared.end)) defects.push_back(severalStatements(*second));
  if (!prepared.statement) return defects;
  const Statement statement{plan, sql, prepared};
  for (const auto& check : checks) {
    if (auto defect = check(statement)) defects.push_back(std::move(*defect));
  }
  return defects;
}

WhereClause whereClauseOf(std::string_view sql) {
  const std::vector<ByteRange> tokens = outerTokens(sql);
  const auto has = [&](std::string_view word) {
    return std::any_of(tokens.begin(), tokens.end(),
                       [&](const ByteRange& token) { return isWord(textOf(sql, token), word); });
  };
  if (tokens.empty() || (!has("UPDATE") && !has("DELETE")) || has("INSERT") || has("CREATE")) {
    return WhereClause::NotNeeded;
  }
  return has("WHERE") ? WhereClause::Present : WhereClause::Missing;
}

// At the name of the table.
Defect fullScan(std::string_view sql, const std::string& table) {
  ByteRange place = codeOf(sql);
  for (const ByteRange& token : tokensOf(sql)) {
    if (nameOf(textOf(sql, token)) != table) continue;
    place = token;
    break;
  }
  return {&ruleOf(SchemaRule::FullScan), "the statement reads all rows of '" + table + "'",
          "Add an index, or a condition that uses one; 'korvex-dao sql --plan' shows how SQLite runs it.", place};
}

std::optional<Defect> emptyList(std::string_view sql) {
  const std::vector<ByteRange> tokens = tokensOf(sql);
  for (std::size_t at = 0; at + 2 < tokens.size(); ++at) {
    if (!isWord(textOf(sql, tokens[at]), "IN") || textOf(sql, tokens[at + 1]) != "(" ||
        textOf(sql, tokens[at + 2]) != ")")
      continue;
    return Defect{
        &ruleOf(SchemaRule::EmptyList), "the list is empty", {}, ByteRange{tokens[at].begin, tokens[at + 2].end}};
  }
  return std::nullopt;
}

Defect lostWhere(std::string_view sql) {
  return {&ruleOf(SchemaRule::LostWhere), "without a condition, the statement changes all rows",
          "Write a <where onVoid=\"quit\">, or a condition that is always there.", codeOf(sql)};
}

}  // namespace korvex::verification
