#include "sqlite/Errors.h"

#include <sqlite3.h>

#include <array>
#include <system_error>
#include <utility>

#include "sqlite/NumberText.h"

namespace korvex {
namespace {

// In the order of DatabaseErrorKind.
constexpr std::array kindNames{
    "sqlite",      "definitions",        "call",      "result", "cancelled", "suspended", "reentered",
    "would-write", "several-statements", "forbidden", "cipher", "version",   "progress"};

// What the system has against opening a file says more than that it cannot be opened.
std::string messageOf(sqlite3* connection, int code) {
  if (!connection) return sqlite3_errstr(code);
  const int reason = (code & 0xff) == SQLITE_CANTOPEN ? sqlite3_system_errno(connection) : 0;
  std::string message = sqlite3_errmsg(connection);
  return reason == 0 ? message : message + ": " + std::generic_category().message(reason);
}

std::string placeText(const DatabaseError& error) {
  if (error.document.empty()) return {};
  return error.document + ':' + std::to_string(error.position.line) + ':' + std::to_string(error.position.column) +
         ": ";
}

constexpr std::string_view quotes = "\"'`";

}  // namespace

const char* nameOf(DatabaseErrorKind kind) { return kindNames.at(static_cast<std::size_t>(kind)); }

std::string DatabaseError::text() const { return placeText(*this) + (method.empty() ? "" : method + ": ") + message; }

DatabaseError databaseError(DatabaseErrorKind kind, std::string message) {
  DatabaseError error;
  error.kind = kind;
  error.message = std::move(message);
  return error;
}

DatabaseError sqliteError(sqlite3* connection, int code) {
  DatabaseError error = databaseError(DatabaseErrorKind::Sqlite, messageOf(connection, code));
  error.sqliteCode = code;
  return error;
}

DatabaseError callError(const PlanError& error, const Plan& plan) {
  return located(databaseError(DatabaseErrorKind::Call, error.message), plan, error.place);
}

std::string nameOf(const Plan& plan) {
  if (plan.operation() != QXDAOOperationUpgrade) return std::string(plan.name());
  return "upgrade to " + versionNumber(plan.method().toVersion());
}

DatabaseError located(DatabaseError error, const Plan& plan, const SourcePlace& place) {
  error.method = nameOf(plan);
  error.document = place.document;
  error.position = place.position;
  return error;
}

std::string withoutValues(std::string_view message, std::string_view sql) {
  std::string text;
  while (!message.empty()) {
    const std::size_t open = message.find_first_of(quotes);
    const std::size_t close = open < message.size() ? message.find_last_of(message[open]) : open;
    if (close == open) return text.append(message);
    const std::string_view quoted = message.substr(open + 1, close - open - 1);
    text.append(message.substr(0, open + 1));
    text.append(sql.find(quoted) == std::string_view::npos ? "…" : quoted);
    text += message[close];
    message.remove_prefix(close + 1);
  }
  return text;
}

}  // namespace korvex
