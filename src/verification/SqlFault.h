// What is wrong with an SQL statement, and where.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "verification/SqlTokens.h"

struct sqlite3;

namespace korvex::verification {

struct SqlFault {
  std::string message;  // SQLite's
  ByteRange place;      // in the SQL text; empty only if the text has no token
  std::string help;     // "did you mean 'person'?", or empty
};

// The failure to prepare the first statement of the text, or nothing if it can be prepared. SQLite gives no offset for
// about half of its errors; the place of these is found by preparing changed texts, at most some thousands.
//
// Nothing is run. Some PRAGMA statements act while they are prepared: an authorizer of the caller has to refuse them.
[[nodiscard]] std::optional<SqlFault> faultOf(sqlite3& database, std::string_view sql);

}  // namespace korvex::verification
