// What no method may do, since every call is a transaction of its own.
#pragma once

#include <sqlite3.h>

namespace korvex {

inline constexpr const char* forbiddenStatement =
    "a method cannot begin or end transactions, or attach databases: every call is a transaction of its own";

// For an action of SQLite's authorizer.
constexpr bool isForbiddenAction(int action) {
  return action == SQLITE_TRANSACTION || action == SQLITE_SAVEPOINT || action == SQLITE_ATTACH ||
         action == SQLITE_DETACH;
}

}  // namespace korvex
