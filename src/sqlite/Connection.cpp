#include "sqlite/Connection.h"

#include <algorithm>
#include <thread>
#include <utility>

#include "sqlite/Errors.h"
#include "sqlite/ForbiddenStatements.h"

namespace korvex {
namespace {

// In the order of OwnStatement.
constexpr std::array ownSql{"BEGIN",
                            "BEGIN IMMEDIATE",
                            "COMMIT",
                            "ROLLBACK",
                            "SAVEPOINT korvex_call",
                            "RELEASE korvex_call",
                            "ROLLBACK TO korvex_call",
                            "SAVEPOINT korvex_try",
                            "RELEASE korvex_try",
                            "ROLLBACK TO korvex_try"};

constexpr int stepsBetweenLooks = 1000;  // of SQLite's machine, between two looks at the call's control
constexpr std::chrono::milliseconds longestNap{20};

int openFlags(const DatabaseOptions& options, ConnectionRole role) {
  const bool creates = options.create && role == ConnectionRole::Writer;
  const int access = options.readOnly ? SQLITE_OPEN_READONLY
                     : creates        ? SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE
                                      : SQLITE_OPEN_READWRITE;
  return access | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE;
}

}  // namespace

DatabaseError CallControl::error() const {
  if (cancelled()) return databaseError(DatabaseErrorKind::Cancelled, "the call was cancelled");
  return databaseError(DatabaseErrorKind::Suspended, "the database is suspended");
}

Connection::Connection(sqlite3* handle, const DatabaseOptions& options)
    : _handle(handle), _statements(options.statementsKept), _busyTimeout(options.busyTimeout) {}

Outcome<std::unique_ptr<Connection>> Connection::open(const std::string& path, const DatabaseOptions& options,
                                                      ConnectionRole role) {
  sqlite3* handle = nullptr;
  const char* vfs = options.vfs.empty() ? nullptr : options.vfs.c_str();
  const int code = sqlite3_open_v2(path.c_str(), &handle, openFlags(options, role), vfs);
  std::unique_ptr<Connection> connection(new Connection(handle, options));
  if (code != SQLITE_OK) return sqliteError(handle, code);
  if (Failure failure = connection->configure(options, role)) return std::move(*failure);
  return connection;
}

Failure Connection::configure(const DatabaseOptions& options, ConnectionRole role) {
  sqlite3_busy_handler(handle(), &Connection::onBusy, this);
  sqlite3_progress_handler(handle(), stepsBetweenLooks, &Connection::onProgress, this);
  sqlite3_set_authorizer(handle(), &Connection::authorize, this);
  // Without this, a quoted name that is no column would be taken for a text.
  sqlite3_db_config(handle(), SQLITE_DBCONFIG_DQS_DML, 0, nullptr);  // NOLINT(cppcoreguidelines-pro-type-vararg)
  sqlite3_db_config(handle(), SQLITE_DBCONFIG_DQS_DDL, 0, nullptr);  // NOLINT(cppcoreguidelines-pro-type-vararg)
  if (options.onConnection) options.onConnection(*handle());
  if (!options.readOnly && sqlite3_db_readonly(handle(), "main") == 1) {
    return databaseError(DatabaseErrorKind::WouldWrite, "the file can only be read; open it with readOnly");
  }
  // With less, a new file's first journal could come back after a loss of power, and take back all that followed.
  if (Failure failure = execute("PRAGMA synchronous=EXTRA")) return failure;
  const bool writes = role == ConnectionRole::Writer && !options.readOnly;
  if (Failure failure = writes ? chooseJournal() : std::nullopt) return failure;
  if (Failure failure = options.durable ? std::nullopt : execute("PRAGMA synchronous=NORMAL")) return failure;
  if (Failure failure = execute(writes ? "PRAGMA query_only=OFF" : "PRAGMA query_only=ON")) return failure;
  // The first look at the file: what is none is found here.
  if (Failure failure = execute("SELECT count(*) FROM sqlite_schema")) return failure;
  return execute(options.foreignKeys ? "PRAGMA foreign_keys=ON" : "PRAGMA foreign_keys=OFF");
}

Failure Connection::chooseJournal() {
  StatementHandle statement;
  const char* tail = nullptr;
  int code = prepare("PRAGMA journal_mode=WAL", false, statement, tail);
  if (code == SQLITE_OK) code = sqlite3_step(statement.get());
  if (code != SQLITE_ROW) return error(code);
  const auto* mode = reinterpret_cast<const char*>(sqlite3_column_text(statement.get(), 0));
  _walMode = mode && std::string_view(mode) == "wal";
  return std::nullopt;
}

void Connection::use(const std::shared_ptr<const DefinitionSet>& set) {
  if (_set == set) return;
  _statements.clear();
  _set = set;
}

DatabaseError Connection::error(int code) const {
  const bool ended = (code & 0xff) == SQLITE_INTERRUPT || (code & 0xff) == SQLITE_BUSY;
  if (ended && _control && _control->stops()) return _control->error();
  return sqliteError(handle(), code);
}

Failure Connection::run(OwnStatement which) {
  StatementHandle& statement = _own.at(static_cast<std::size_t>(which));
  if (!statement) {
    const char* tail = nullptr;
    const int code = prepare(ownSql.at(static_cast<std::size_t>(which)), false, statement, tail);
    if (code != SQLITE_OK) return error(code);
  }
  const int code = sqlite3_step(statement.get());
  Failure failure = code == SQLITE_DONE ? std::nullopt : Failure(error(code));
  sqlite3_reset(statement.get());
  return failure;
}

Failure Connection::execute(const char* sql) {
  const int code = sqlite3_exec(handle(), sql, nullptr, nullptr, nullptr);
  if (code == SQLITE_OK) return std::nullopt;
  return error(code);
}

int Connection::prepare(std::string_view sql, bool guarded, StatementHandle& statement, const char*& tail) {
  sqlite3_stmt* prepared = nullptr;
  _guarded = guarded;
  const int code = sqlite3_prepare_v3(handle(), sql.data(), static_cast<int>(sql.size()), SQLITE_PREPARE_PERSISTENT,
                                      &prepared, &tail);
  _guarded = false;
  statement.reset(prepared);
  return code;
}

int Connection::onBusy(void* connection, int count) {
  auto& self = *static_cast<Connection*>(connection);
  if (count == 0) self._waited = {};
  if (self._waited >= self._busyTimeout || (self._control && self._control->stops())) return 0;
  const auto nap = std::min({std::chrono::milliseconds(count + 1), longestNap, self._busyTimeout - self._waited});
  std::this_thread::sleep_for(nap);
  self._waited += nap;
  return 1;
}

int Connection::onProgress(void* connection) {
  const auto* control = static_cast<Connection*>(connection)->_control;
  return control && control->stops() ? 1 : 0;
}

int Connection::authorize(void* connection, int action, const char* /*unused*/, const char* /*unused*/,
                          const char* /*unused*/, const char* /*unused*/) {
  const bool guarded = static_cast<Connection*>(connection)->_guarded;
  return guarded && isForbiddenAction(action) ? SQLITE_DENY : SQLITE_OK;
}

}  // namespace korvex
