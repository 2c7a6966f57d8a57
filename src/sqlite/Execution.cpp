#include "sqlite/Execution.h"

#include <algorithm>
#include <array>
#include <string>
#include <utility>

#include "sqlite/Errors.h"
#include "sqlite/PreparedUnit.h"

namespace korvex {
namespace {

constexpr std::int64_t entriesPerTransaction = 100;  // of a resumable foreach

// What an except block cannot help with: the call, or all that the connection does, is at an end.
constexpr std::array uncaughtCodes{SQLITE_BUSY,      SQLITE_LOCKED,   SQLITE_NOMEM,   SQLITE_READONLY,
                                   SQLITE_INTERRUPT, SQLITE_IOERR,    SQLITE_CORRUPT, SQLITE_FULL,
                                   SQLITE_CANTOPEN,  SQLITE_PROTOCOL, SQLITE_NOTADB};

bool isCaught(const DatabaseError& error) {
  const auto* found = std::find(uncaughtCodes.begin(), uncaughtCodes.end(), error.sqliteCode & 0xff);
  return error.kind == DatabaseErrorKind::Sqlite && found == uncaughtCodes.end();
}

// Ends a statement's run, so that it holds no lock and can run again.
class Running {
 public:
  explicit Running(sqlite3_stmt* statement) : _statement(statement) {}
  Running(const Running&) = delete;
  Running& operator=(const Running&) = delete;
  ~Running() { sqlite3_reset(_statement); }

 private:
  sqlite3_stmt* _statement;
};

// Rows that the statements in a scope change themselves, triggers and foreign keys aside.
class ChangeCount {
 public:
  explicit ChangeCount(sqlite3* connection) : _connection(connection), _before(sqlite3_total_changes64(connection)) {}
  [[nodiscard]] std::int64_t count() const {
    return sqlite3_total_changes64(_connection) == _before ? 0 : sqlite3_changes64(_connection);
  }

 private:
  sqlite3* _connection;
  std::int64_t _before;
};

}  // namespace

// ---------------------------------------------------------------------------------------------
// Transactions

Failure Execution::run(const Arguments& arguments, std::string_view table, const UpgradeHooks* hooks) {
  _hooks = hooks;
  if (const auto error = _assembly.begin(_plan, arguments, table)) return callError(*error, _plan);
  if (Failure failure = checkSteps()) return failure;
  if (needsNoTransaction()) return runUnit(_plan.units().front());
  return runInTransactions(arguments);
}

// Arguments that do not fit a later step are told before the first one runs, which may be committed by itself.
Failure Execution::checkSteps() {
  if (_plan.structure() != PlanStructure::Steps || _plan.method().foreach ()) return std::nullopt;
  for (const PlanUnit& unit : _plan.units()) {
    if (const auto error = _assembly.assemble(unit)) return callError(*error, _plan);
    if (_assembly.quits()) return std::nullopt;
  }
  return std::nullopt;
}

// SQLite makes a transaction of each statement that stands alone.
bool Execution::needsNoTransaction() const {
  return _plan.structure() == PlanStructure::Single && !_plan.method().foreach () && !_hooks;
}

Failure Execution::runInTransactions(const Arguments& arguments) {
  if (Failure failure = beginTransaction()) return failure;
  Failure failure = runInTransaction(arguments);
  if (!failure) failure = commit();
  if (failure) rollBack();
  return failure;
}

Failure Execution::runInTransaction(const Arguments& arguments) {
  if (_hooks) {
    const Outcome<bool> needed = _hooks->isNeeded();
    if (!needed) return needed.error();
    if (!*needed) return std::nullopt;
  }
  Failure failure = resumes() ? runResumably(arguments) : runFrom({}, nullptr);
  return !failure && _hooks ? _hooks->beforeLastCommit() : failure;
}

Failure Execution::beginTransaction() {
  if (_nested) return _connection.run(OwnStatement::Savepoint);
  return _connection.run(selects() ? OwnStatement::Begin : OwnStatement::BeginImmediate);
}

Failure Execution::commit() { return _connection.run(_nested ? OwnStatement::Release : OwnStatement::Commit); }

// Some failures have ended the transaction already. What a rollback could fail by has failed before.
void Execution::rollBack() {
  if (!_connection.inTransaction()) return;
  if (_nested) {
    static_cast<void>(_connection.run(OwnStatement::RollbackToSavepoint));
    static_cast<void>(_connection.run(OwnStatement::Release));
  } else {
    static_cast<void>(_connection.run(OwnStatement::Rollback));
  }
}

// ---------------------------------------------------------------------------------------------
// Entries and steps

bool Execution::resumes() const {
  if (selects()) return false;
  const auto units = _plan.units();
  return _plan.method().foreachResumable() ||
         std::any_of(units.begin(), units.end(), [](const PlanUnit& unit) { return unit.resumable(); });
}

Failure Execution::runResumably(const Arguments& arguments) {
  Progress progress(_connection, nameOf(_plan), digestOf(arguments), static_cast<std::int64_t>(_plan.units().size()));
  const Outcome<Position> begin = progress.load();
  if (!begin) return located(begin.error(), _plan, _plan.place());
  if (Failure failure = runFrom(*begin, &progress)) return failure;
  return progress.remove();
}

Failure Execution::runFrom(Position at, Progress* progress) {
  const bool loops = _plan.method().foreach ();
  const auto entries = static_cast<std::int64_t>(loops ? _assembly.entryCount() : 1);
  for (; at.entry < entries && !hasEnough(); ++at.entry, at.step = 0) {
    if (loops) _assembly.chooseEntry(static_cast<std::size_t>(at.entry));
    if (Failure failure = runEntry(at, progress)) return loops ? inEntry(std::move(*failure), at) : failure;
  }
  return std::nullopt;
}

// A single result is there with its first row.
bool Execution::hasEnough() const { return _sink && !_sink->taker.takesList && _sink->rows > 0; }

Failure Execution::runEntry(Position& at, Progress* progress) {
  const auto steps = static_cast<std::int64_t>(_plan.structure() == PlanStructure::Steps ? _plan.units().size() : 1);
  const Position first = at;
  _quit = false;
  for (; at.step < steps && !_quit; ++at.step) {
    const bool goesOn = at.step != first.step || at.entry != 0;
    if (progress && goesOn && beginsTransaction(at)) {
      if (Failure failure = checkpoint(at, *progress)) return failure;
    }
    if (Failure failure = runStep(at)) return failure;
  }
  return std::nullopt;
}

bool Execution::beginsTransaction(const Position& at) const {
  if (at.step == 0) return _plan.method().foreachResumable() && at.entry % entriesPerTransaction == 0;
  const auto step = static_cast<std::size_t>(at.step);
  return _plan.units()[step].resumable() || _plan.units()[step - 1].resumable();
}

Failure Execution::checkpoint(const Position& at, Progress& progress) {
  if (_nested) return std::nullopt;
  if (Failure failure = progress.store(at)) return failure;
  if (Failure failure = commit()) return failure;
  if (Failure failure = beginTransaction()) return failure;
  return progress.confirm(at);
}

Failure Execution::runStep(const Position& at) {
  const auto step = static_cast<std::size_t>(at.step);
  if (_hooks) {
    if (Failure failure = _hooks->beforeStep(step)) return failure;
  }
  return _plan.structure() == PlanStructure::Try ? runTry() : runUnit(_plan.units()[step]);
}

Failure Execution::runTry() {
  const std::int64_t rows = _sink ? _sink->rows : 0;
  const std::int64_t changes = _changes;
  if (Failure failure = _connection.run(OwnStatement::SavepointOfTry)) return failure;
  Failure failure = runUnit(_plan.units()[0]);
  if (failure && (!isCaught(*failure) || !_connection.inTransaction())) return failure;
  const bool failed = failure.has_value();
  if (failed) failure = _connection.run(OwnStatement::RollbackToTry);
  if (!failure) failure = _connection.run(OwnStatement::ReleaseOfTry);
  if (!failed || failure) return failure;
  _changes = changes;
  if (_sink) {
    _sink->taker.keep(_sink->taker.target, static_cast<std::size_t>(rows));
    _sink->rows = rows;
  }
  return runUnit(_plan.units()[1]);
}

DatabaseError Execution::inEntry(DatabaseError error, const Position& at) const {
  error.message += " (entry " + std::to_string(at.entry + 1) + " of '" +
                   std::string(_plan.method().foreachCollection().value_or("")) + "')";
  return error;
}

DatabaseError Execution::inRow(DatabaseError error) const {
  error.message += " (row " + std::to_string(_sink->rows) + ")";
  return error;
}

// ---------------------------------------------------------------------------------------------
// Units

Failure Execution::runUnit(const PlanUnit& unit) {
  if (const auto error = _assembly.assemble(unit)) return callError(*error, _plan);
  _quit = _assembly.quits();
  if (_quit || _assembly.empty()) return std::nullopt;
  return _plan.operation() == QXDAOOperationUpgrade ? runScript(unit) : runStatement(unit);
}

Failure Execution::runScript(const PlanUnit& unit) {
  const AssembledUnit assembled{_connection, _assembly, unit};
  const std::string sql = _assembly.sql();
  for (std::size_t offset = 0;;) {
    const Outcome<StatementHandle> statement = preparedFrom(assembled, sql, offset);
    if (!statement) return statement.error();
    if (!*statement) return std::nullopt;
    int code = SQLITE_ROW;
    while (code == SQLITE_ROW) code = sqlite3_step(statement->get());
    if (code != SQLITE_DONE) return assembled.error(code);
  }
}

Failure Execution::runStatement(const PlanUnit& unit) {
  const AssembledUnit assembled{_connection, _assembly, unit};
  Statement* statement = _connection.statements().find(_assembly.key());
  if (!statement) {
    Outcome<std::unique_ptr<Statement>> made = prepared(assembled);
    if (!made) return std::move(made.error());
    if (!(*made)->handle) return std::nullopt;
    statement = &_connection.statements().add(_assembly.key(), std::move(*made));
  }
  const Running running(statement->handle.get());
  if (Failure failure = bindValues(assembled, _loaded, statement->handle.get())) return failure;
  return stepThrough(unit, *statement);
}

Failure Execution::stepThrough(const PlanUnit& unit, Statement& statement) {
  sqlite3_stmt* handle = statement.handle.get();
  const ChangeCount counted(_connection.handle());
  Row::Source source(_loaded, _plan, handle, statement.mapping);
  const Row row(source);
  int code = sqlite3_step(handle);
  for (; code == SQLITE_ROW; code = sqlite3_step(handle)) {
    if (!_sink) continue;
    ++_sink->rows;
    if (Failure failure = _sink->taker.take(row, _sink->taker.target)) return inRow(std::move(*failure));
    if (hasEnough()) return std::nullopt;
  }
  if (code != SQLITE_DONE) return AssembledUnit{_connection, _assembly, unit}.error(code);
  if (!statement.readOnly) _changes += counted.count();
  return std::nullopt;
}

}  // namespace korvex
