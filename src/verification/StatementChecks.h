// What SQLite accepts, but no app means.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "korvex/Plan.h"
#include "verification/Defect.h"
#include "verification/SchemaDatabase.h"

namespace korvex::verification {

// For a statement that SQLite could prepare.
[[nodiscard]] std::vector<Defect> defectsOf(const Plan& plan, std::string_view sql, const Prepared& prepared);

// Whether an update or a delete has a condition of its own, not only in a subquery. Other statements need none.
enum class WhereClause { NotNeeded, Missing, Present };
[[nodiscard]] WhereClause whereClauseOf(std::string_view sql);

// For an IN with nothing in its brackets.
[[nodiscard]] std::optional<Defect> emptyList(std::string_view sql);

// For a variant without the condition that others have.
[[nodiscard]] Defect lostWhere(std::string_view sql);

// For a statement that reads all rows of a table.
[[nodiscard]] Defect fullScan(std::string_view sql, const std::string& table);

// The first word after a statement and its ";".
[[nodiscard]] std::optional<ByteRange> statementAfter(std::string_view sql, std::size_t end);
[[nodiscard]] Defect severalStatements(const ByteRange& second);

// From the first token to the last.
[[nodiscard]] ByteRange codeOf(std::string_view sql);

}  // namespace korvex::verification
