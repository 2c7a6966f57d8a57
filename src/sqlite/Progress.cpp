#include "sqlite/Progress.h"

#include <sqlite3.h>

#include <utility>

#include "sqlite/Errors.h"

namespace korvex {
namespace {

constexpr const char* createTable =
    "CREATE TABLE IF NOT EXISTS korvex_progress (method TEXT NOT NULL, digest BLOB NOT NULL, entry INTEGER NOT NULL,"
    " step INTEGER NOT NULL, units INTEGER NOT NULL, PRIMARY KEY (method, digest)) WITHOUT ROWID";
constexpr const char* loadRecord = "SELECT entry, step, units FROM korvex_progress WHERE method = ? AND digest = ?";
constexpr const char* storeRecord =
    "INSERT OR REPLACE INTO korvex_progress (method, digest, entry, step, units) VALUES (?, ?, ?, ?, ?)";
constexpr const char* removeRecord = "DELETE FROM korvex_progress WHERE method = ? AND digest = ?";

}  // namespace

Outcome<Progress::Numbers> Progress::run(const char* sql, const Numbers& numbers) {
  StatementHandle statement;
  const char* tail = nullptr;
  int code = _connection.prepare(sql, false, statement, tail);
  if (code != SQLITE_OK) return _connection.error(code);
  sqlite3_bind_text64(statement.get(), 1, _method.data(), _method.size(), SQLITE_STATIC, SQLITE_UTF8);
  sqlite3_bind_blob64(statement.get(), 2, _digest.data(), _digest.size(), SQLITE_STATIC);
  int index = 3;
  for (const std::int64_t number : numbers) sqlite3_bind_int64(statement.get(), index++, number);
  code = sqlite3_step(statement.get());
  Numbers row;
  if (code == SQLITE_ROW) {
    for (int column = 0; column < sqlite3_column_count(statement.get()); ++column) {
      row.push_back(sqlite3_column_int64(statement.get(), column));
    }
  }
  if (code != SQLITE_ROW && code != SQLITE_DONE) return _connection.error(code);
  return row;
}

Outcome<Position> Progress::load() {
  if (Failure failure = _connection.execute(createTable)) return std::move(*failure);
  Outcome<Numbers> row = run(loadRecord, {});
  if (!row) return std::move(row.error());
  _stored = !row->empty();
  if (!_stored) return Position{};
  if (row->at(2) != _units) {
    return databaseError(DatabaseErrorKind::Progress, "was interrupted when it had " + std::to_string(row->at(2)) +
                                                          " steps, and has " + std::to_string(_units) +
                                                          " now: it cannot go on where it was");
  }
  return Position{row->at(0), row->at(1)};
}

Failure Progress::store(const Position& position) {
  Outcome<Numbers> row = run(storeRecord, {position.entry, position.step, _units});
  if (!row) return std::move(row.error());
  _stored = true;
  return std::nullopt;
}

Failure Progress::confirm(const Position& position) {
  Outcome<Position> stored = load();
  if (!stored) return std::move(stored.error());
  if (_stored && stored->entry == position.entry && stored->step == position.step) return std::nullopt;
  return databaseError(DatabaseErrorKind::Progress, "another process has gone on with this call");
}

Failure Progress::remove() {
  if (!_stored) return std::nullopt;
  Outcome<Numbers> row = run(removeRecord, {});
  if (!row) return std::move(row.error());
  return std::nullopt;
}

}  // namespace korvex
