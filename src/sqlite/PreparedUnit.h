// From an assembled unit to a statement that can be stepped through.
#pragma once

#include <memory>

#include "korvex/Plan.h"
#include "korvex/sqlite/Outcome.h"
#include "sqlite/Connection.h"
#include "sqlite/RowSource.h"

namespace korvex {

// A unit whose decisions have been taken, on a connection.
struct AssembledUnit {
  Connection& connection;
  Assembly& assembly;
  const PlanUnit& unit;

  // An error at the unit, with its SQL.
  [[nodiscard]] DatabaseError error(DatabaseError error) const;
  // SQLite's error for a code that it has given while the statement ran.
  [[nodiscard]] DatabaseError error(int code) const;
  // An error at a place of the SQL.
  [[nodiscard]] DatabaseError errorAt(std::size_t offset, DatabaseError error) const;
};

// The one statement that the SQL is.
[[nodiscard]] Outcome<std::unique_ptr<Statement>> prepared(const AssembledUnit& unit);
// The first statement of an upgrade's SQL from an offset on, and the offset behind it; null when none is left.
[[nodiscard]] Outcome<StatementHandle> preparedFrom(const AssembledUnit& unit, std::string_view sql,
                                                    std::size_t& offset);
// Binds the values. They stay where they are until the statement is reset.
[[nodiscard]] Failure bindValues(const AssembledUnit& unit, const Loaded& loaded, sqlite3_stmt* statement);

}  // namespace korvex
