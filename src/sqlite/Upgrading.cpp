#include "sqlite/Upgrading.h"

#include <sqlite3.h>

#include <cmath>
#include <string>
#include <utility>

#include "sqlite/Errors.h"
#include "sqlite/Execution.h"
#include "sqlite/NumberText.h"

namespace korvex {
namespace {

constexpr const char* hasVersionTable = "SELECT 1 FROM sqlite_schema WHERE name = 'korvex_schema' AND type = 'table'";
constexpr const char* readVersion = "SELECT version FROM korvex_schema WHERE typeof(version) IN ('real', 'integer')";
// Of the file's own, and not of SQLite's or this engine's.
constexpr const char* hasTables =
    "SELECT 1 FROM sqlite_schema WHERE type = 'table' AND name NOT GLOB 'sqlite_*' AND name NOT GLOB 'korvex_*' LIMIT "
    "1";
constexpr const char* createVersionTable = "CREATE TABLE IF NOT EXISTS korvex_schema (version REAL NOT NULL)";
constexpr const char* removeVersion = "DELETE FROM korvex_schema";
constexpr const char* storeVersion = "INSERT INTO korvex_schema (version) VALUES (?)";
constexpr const char* violatedKey = "SELECT \"table\", \"parent\" FROM pragma_foreign_key_check LIMIT 1";

// The first row of the engine's own SQL: its statement, standing at it; null when there is none.
Outcome<StatementHandle> firstRow(Connection& connection, const char* sql) {
  StatementHandle statement;
  const char* tail = nullptr;
  int code = connection.prepare(sql, false, statement, tail);
  if (code == SQLITE_OK) code = sqlite3_step(statement.get());
  if (code == SQLITE_ROW) return statement;
  if (code == SQLITE_DONE) return StatementHandle();
  return connection.error(code);
}

Failure writeVersion(Connection& connection, double version) {
  if (Failure failure = connection.execute(createVersionTable)) return failure;
  if (Failure failure = connection.execute(removeVersion)) return failure;
  StatementHandle statement;
  const char* tail = nullptr;
  int code = connection.prepare(storeVersion, false, statement, tail);
  if (code == SQLITE_OK) code = sqlite3_bind_double(statement.get(), 1, version);
  if (code == SQLITE_OK) code = sqlite3_step(statement.get());
  if (code != SQLITE_DONE) return connection.error(code);
  return std::nullopt;
}

std::string columnText(const StatementHandle& statement, int column) {
  const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement.get(), column));
  return text ? text : "";
}

Failure checkForeignKeys(Connection& connection) {
  const Outcome<StatementHandle> violation = firstRow(connection, violatedKey);
  if (!violation) return violation.error();
  if (!*violation) return std::nullopt;
  DatabaseError error =
      databaseError(DatabaseErrorKind::Sqlite, "FOREIGN KEY constraint failed: a row of '" + columnText(*violation, 0) +
                                                   "' refers to '" + columnText(*violation, 1) + "'");
  error.sqliteCode = SQLITE_CONSTRAINT_FOREIGNKEY;
  return error;
}

DatabaseError versionError(std::string message) {
  return databaseError(DatabaseErrorKind::Version, std::move(message));
}

// Why no upgrade can begin at the version; absent when they can.
Failure refuseVersion(Connection& connection, const DefinitionSet& set, const std::optional<double>& version) {
  const double newest = set.upgrades().empty() ? 0 : set.upgrades().back()->method().toVersion();
  if (version && *version > newest) {
    return versionError("the file has version " + versionNumber(*version) + ", and the newest upgrade leads to " +
                        versionNumber(newest) + ": it belongs to a newer version of the app");
  }
  if (version || set.upgrades().empty()) return std::nullopt;
  const Outcome<StatementHandle> tables = firstRow(connection, hasTables);
  if (!tables) return tables.error();
  if (!*tables) return std::nullopt;
  const auto progress = firstRow(connection, "SELECT 1 FROM sqlite_schema WHERE name = 'korvex_progress'");
  if (progress && *progress) return std::nullopt;  // the first upgrade was interrupted
  return versionError("the file has tables, but no version; Database::adopt tells which one it has");
}

// One upgrade: its steps, and its version with the last of them.
Failure upgradeTo(Connection& connection, const Loaded& loaded, const Plan& plan, bool foreignKeys,
                  const UpgradeObserver& observer) {
  const double version = plan.method().toVersion();
  const std::size_t steps = plan.structure() == PlanStructure::Steps ? plan.units().size() : 1;
  UpgradeHooks hooks;
  // Another process may have been faster.
  hooks.isNeeded = [&]() -> Outcome<bool> {
    const Outcome<std::optional<double>> present = versionOf(connection);
    if (!present) return present.error();
    return !*present || **present < version;
  };
  hooks.beforeStep = [&](std::size_t step) -> Failure {
    if (!observer || observer({version, step, steps})) return std::nullopt;
    return databaseError(DatabaseErrorKind::Cancelled, "the upgrade was stopped by its observer");
  };
  hooks.beforeLastCommit = [&]() -> Failure {
    if (Failure failure = foreignKeys ? checkForeignKeys(connection) : std::nullopt) return failure;
    return writeVersion(connection, version);
  };
  Failure failure = Execution(connection, loaded, plan, nullptr).run({}, {}, &hooks);
  if (failure && failure->method.empty()) failure = located(std::move(*failure), plan, plan.place());
  return failure;
}

Failure runUpgrades(Connection& connection, const Loaded& loaded, const std::optional<double>& version,
                    bool foreignKeys, const UpgradeObserver& observer) {
  for (const Plan* plan : loaded.set->upgrades()) {
    if (version && plan->method().toVersion() <= *version) continue;
    if (Failure failure = upgradeTo(connection, loaded, *plan, foreignKeys, observer)) return failure;
  }
  return std::nullopt;
}

}  // namespace

Outcome<std::optional<double>> versionOf(Connection& connection) {
  const Outcome<StatementHandle> table = firstRow(connection, hasVersionTable);
  if (!table) return table.error();
  if (!*table) return std::optional<double>();
  const Outcome<StatementHandle> row = firstRow(connection, readVersion);
  if (!row) return row.error();
  return *row ? std::optional(sqlite3_column_double(row->get(), 0)) : std::nullopt;
}

// Tables that are made anew under another name must not take the rows along that refer to them.
Failure upgradeFile(Connection& connection, const Loaded& loaded, bool foreignKeys, const UpgradeObserver& observer) {
  const Outcome<std::optional<double>> version = versionOf(connection);
  if (!version) return version.error();
  if (Failure failure = refuseVersion(connection, *loaded.set, *version)) return failure;
  if (Failure failure = connection.execute("PRAGMA foreign_keys=OFF")) return failure;
  Failure failure = runUpgrades(connection, loaded, *version, foreignKeys, observer);
  const Failure restored = foreignKeys ? connection.execute("PRAGMA foreign_keys=ON") : std::nullopt;
  return failure ? failure : restored;
}

Failure adoptVersion(Connection& connection, double version) {
  if (!std::isfinite(version) || version < 0) return versionError("a version is a number from 0 on");
  if (Failure failure = connection.run(OwnStatement::BeginImmediate)) return failure;
  const Outcome<std::optional<double>> present = versionOf(connection);
  Failure failure = present ? std::nullopt : Failure(present.error());
  if (!failure && *present) failure = versionError("the file has version " + versionNumber(**present) + " already");
  if (!failure) failure = writeVersion(connection, version);
  if (!failure) failure = connection.run(OwnStatement::Commit);
  if (failure && connection.inTransaction()) static_cast<void>(connection.run(OwnStatement::Rollback));
  return failure;
}

}  // namespace korvex
