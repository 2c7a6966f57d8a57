#include "verification/QueryPlan.h"

#include <sqlite3.h>

#include <algorithm>
#include <map>

#include "verification/SqlTokens.h"

namespace korvex::verification {
namespace {

std::string lowerCase(std::string text) {
  for (char& character : text) {
    if (character >= 'A' && character <= 'Z') character = static_cast<char>(character - 'A' + 'a');
  }
  return text;
}

// The names that a table has in the statement: its own, and its aliases.
bool isNamed(const std::string& sql, const std::string& table, const std::string& name) {
  if (name == table) return true;
  std::vector<std::string> words;
  for (const auto& [begin, end] : tokensOf(sql)) words.push_back(lowerCase(nameOf(sql.substr(begin, end - begin))));
  for (std::size_t at = 0; at + 1 < words.size(); ++at) {
    if (words[at] != table) continue;
    const std::size_t alias = words[at + 1] == "as" ? at + 2 : at + 1;
    if (alias < words.size() && words[alias] == name) return true;
  }
  return false;
}

}  // namespace

std::vector<QueryPlanStep> queryPlanOf(SchemaDatabase& schema, const std::string& sql) {
  const Prepared prepared = schema.prepare("EXPLAIN QUERY PLAN " + sql);
  std::vector<QueryPlanStep> steps;
  std::map<int, int> depths{{0, -1}};  // by the id of a step
  sqlite3_stmt* statement = prepared.statement.get();
  while (statement && sqlite3_step(statement) == SQLITE_ROW) {
    const int depth = depths[sqlite3_column_int(statement, 1)] + 1;
    depths[sqlite3_column_int(statement, 0)] = depth;
    const auto* detail = reinterpret_cast<const char*>(sqlite3_column_text(statement, 3));
    steps.push_back({depth, detail ? detail : ""});
  }
  return steps;
}

// SQLite names a table by its alias.
bool scansTable(SchemaDatabase& schema, const std::string& sql, std::string_view table) {
  constexpr std::string_view scan = "SCAN ";
  const std::vector<QueryPlanStep> steps = queryPlanOf(schema, sql);
  return std::any_of(steps.begin(), steps.end(), [&](const QueryPlanStep& step) {
    if (!step.detail.starts_with(scan) || step.detail.find(" USING ") != std::string::npos) return false;
    return isNamed(sql, lowerCase(std::string(table)), lowerCase(step.detail.substr(scan.size())));
  });
}

}  // namespace korvex::verification
