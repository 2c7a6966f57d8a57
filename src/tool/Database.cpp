#include "tool/Database.h"

#include <sqlite3.h>

#include <memory>
#include <system_error>

namespace korvex {
namespace {

using Reason = std::optional<std::string>;

constexpr int longestWait = 1000;  // for a lock, in milliseconds

struct Close {
  void operator()(sqlite3* database) const { sqlite3_close(database); }
};
struct Finalize {
  void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};
using Connection = std::unique_ptr<sqlite3, Close>;
using Statement = std::unique_ptr<sqlite3_stmt, Finalize>;

// SQLite interprets names such as "", ":memory:" and "file:x?mode=rw", but not if a directory precedes them.
std::string plainPath(const std::string& path) { return path.starts_with('/') ? path : "./" + path; }

std::string quotedName(const std::string& name) {
  std::string quoted = "\"";
  for (const char character : name) {
    if (character == '"') quoted += '"';
    quoted += character;
  }
  return quoted + '"';
}

// SQLite's message for a database with a hot journal is about a write, which nobody requested.
std::string failureOf(sqlite3& database) {
  if (sqlite3_errcode(&database) != SQLITE_READONLY) return sqlite3_errmsg(&database);
  return "cannot be read without writing: it has a write-ahead log, or a change to it was interrupted";
}

// The system's reason is more specific than SQLite's "unable to open".
std::string openFailure(sqlite3* database) {
  if (!database) return sqlite3_errstr(SQLITE_NOMEM);
  const int reason = sqlite3_system_errno(database);
  return reason != 0 ? std::generic_category().message(reason) : sqlite3_errmsg(database);
}

Reason open(const std::string& path, Connection& connection) {
  sqlite3* database = nullptr;
  const int code = sqlite3_open_v2(plainPath(path).c_str(), &database, SQLITE_OPEN_READONLY, nullptr);
  connection.reset(database);
  if (code != SQLITE_OK) return openFailure(database);
  sqlite3_busy_timeout(database, longestWait);
  // Otherwise a quoted name that is not a column would be text.
  sqlite3_db_config(database, SQLITE_DBCONFIG_DQS_DML, 0, nullptr);  // NOLINT(cppcoreguidelines-pro-type-vararg)
  return std::nullopt;
}

Reason prepare(sqlite3& database, const std::string& sql, Statement& statement) {
  sqlite3_stmt* prepared = nullptr;
  const char* rest = nullptr;
  const int code = sqlite3_prepare_v2(&database, sql.c_str(), -1, &prepared, &rest);
  statement.reset(prepared);
  if (code != SQLITE_OK) return failureOf(database);
  if (*rest != '\0') return "the condition is more than a condition";
  return std::nullopt;
}

// On its own lines, so that a comment at its end ends there.
std::string parenthesised(const std::string& condition) { return "(\n" + condition + "\n)"; }

// A condition can also stand in a CASE. Text that closes the parenthesis to continue with SQL of its own, such as a
// UNION or a LIMIT, cannot stand both there and after WHERE, even if it ends in an open comment.
Reason checkCondition(sqlite3& database, const ColumnQuery& query) {
  Statement test;
  const std::string sql =
      "SELECT CASE WHEN " + parenthesised(*query.where) + " THEN 1 END FROM " + quotedName(query.table);
  if (Reason failure = prepare(database, sql, test)) return failure;
  if (sqlite3_bind_parameter_count(test.get()) > 0) return "the condition has a parameter: write the value itself";
  return std::nullopt;
}

std::string selection(const ColumnQuery& query, const std::string& rowid) {
  std::string sql = "SELECT " + rowid + ", " + quotedName(query.column) + " FROM " + quotedName(query.table);
  if (query.where) sql += " WHERE " + parenthesised(*query.where);
  return sql + " ORDER BY 1";
}

Reason prepareSelection(sqlite3& database, const ColumnQuery& query, Statement& statement) {
  Reason failure = prepare(database, selection(query, "_rowid_"), statement);
  if (sqlite3_errcode(&database) != SQLITE_ERROR) return failure;
  // Try again, as for a table without rowids: every other error occurs again.
  return prepare(database, selection(query, "NULL"), statement);
}

constexpr const char* storageName(int type) {
  switch (type) {
    case SQLITE_BLOB:
      return "blob";
    case SQLITE_NULL:
      return "null";
    case SQLITE_TEXT:
      return "text";
    case SQLITE_INTEGER:
      return "integer";
    default:
      return "real";
  }
}

std::optional<std::int64_t> rowidOf(sqlite3_stmt& statement) {
  if (sqlite3_column_type(&statement, 0) == SQLITE_NULL) return std::nullopt;
  return sqlite3_column_int64(&statement, 0);
}

ColumnCell cellOf(sqlite3_stmt& statement) {
  const int type = sqlite3_column_type(&statement, 1);
  if (type != SQLITE_BLOB) return {rowidOf(statement), storageName(type), ""};
  const auto* bytes = static_cast<const char*>(sqlite3_column_blob(&statement, 1));  // null when empty
  const auto size = static_cast<std::size_t>(sqlite3_column_bytes(&statement, 1));
  return {rowidOf(statement), storageName(type), {bytes, size}};
}

Reason visitRows(sqlite3& database, sqlite3_stmt& statement, const std::function<void(const ColumnCell&)>& visit) {
  int code = SQLITE_ROW;
  while ((code = sqlite3_step(&statement)) == SQLITE_ROW) visit(cellOf(statement));
  if (code != SQLITE_DONE) return failureOf(database);
  return std::nullopt;
}

}  // namespace

std::optional<std::string> readColumn(const ColumnQuery& query, const std::function<void(const ColumnCell&)>& visit) {
  Connection connection;
  Statement statement;
  if (Reason failure = open(query.path, connection)) return failure;
  if (query.where) {
    if (Reason failure = checkCondition(*connection, query)) return failure;
  }
  if (Reason failure = prepareSelection(*connection, query, statement)) return failure;
  return visitRows(*connection, *statement, visit);
}

}  // namespace korvex
