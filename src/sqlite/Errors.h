// How errors are made.
#pragma once

#include <string>
#include <string_view>

#include "korvex/Plan.h"
#include "korvex/sqlite/Outcome.h"

struct sqlite3;

namespace korvex {

// An error outside methods.
[[nodiscard]] DatabaseError databaseError(DatabaseErrorKind kind, std::string message);
// SQLite's error for a code that the connection has just given.
[[nodiscard]] DatabaseError sqliteError(sqlite3* connection, int code);
// The error of an argument that does not fit.
[[nodiscard]] DatabaseError callError(const PlanError& error, const Plan& plan);

// How a method is called in errors and in the record of its progress: its name, or "upgrade to 2.5".
[[nodiscard]] std::string nameOf(const Plan& plan);
// Puts a place and the method into an error.
[[nodiscard]] DatabaseError located(DatabaseError error, const Plan& plan, const SourcePlace& place);

// SQLite's message without what it quotes of bound values: quoted words stay when they stand in the SQL.
[[nodiscard]] std::string withoutValues(std::string_view message, std::string_view sql);

}  // namespace korvex
