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
// Nothing is run but queries of the schema. Some PRAGMA statements act while they are prepared: an authorizer of the
// caller has to refuse them. Unless the caller has switched SQLITE_DBCONFIG_DQS_DML and SQLITE_DBCONFIG_DQS_DDL off, a
// misspelled name in double quotes is a string and no fault. Text after the first statement is not looked at.
//
// The search takes milliseconds for statements of some hundred bytes, and more than a tenth of a second beyond a
// thousand: ask once for each distinct fault.
[[nodiscard]] std::optional<SqlFault> faultOf(sqlite3& database, std::string_view sql);

}  // namespace korvex::verification
