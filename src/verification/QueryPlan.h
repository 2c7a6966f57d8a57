// How SQLite would run a statement.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "verification/SchemaDatabase.h"

namespace korvex::verification {

struct QueryPlanStep {
  int depth = 0;       // below the steps that it is part of
  std::string detail;  // SQLite's, such as "SCAN person"
};

// Empty for a statement that has no plan, such as an INSERT of values, or that cannot be prepared.
[[nodiscard]] std::vector<QueryPlanStep> queryPlanOf(SchemaDatabase& schema, const std::string& sql);

// Whether the statement reads all rows of a table, without an index.
[[nodiscard]] bool scansTable(SchemaDatabase& schema, const std::string& sql, std::string_view table);

}  // namespace korvex::verification
