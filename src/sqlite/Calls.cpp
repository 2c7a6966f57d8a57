#include "sqlite/Calls.h"

#include <sqlite3.h>

#include <optional>
#include <utility>

#include "sqlite/CursorImplementation.h"
#include "sqlite/Errors.h"

namespace korvex {
namespace {

DatabaseError definitionsError(std::string message) {
  return databaseError(DatabaseErrorKind::Definitions, std::move(message));
}

DatabaseError reenteredError() {
  return databaseError(DatabaseErrorKind::Reentered, "the database is called from within a call of the same thread");
}

DatabaseError readOnlyError() {
  return databaseError(DatabaseErrorKind::WouldWrite, "the database was opened to be read only");
}

// SQLite ends a transaction by itself when the disk is full, or when a changing statement is interrupted.
DatabaseError endedError() {
  DatabaseError error = databaseError(DatabaseErrorKind::Sqlite, "an earlier failure has rolled the transaction back");
  error.sqliteCode = SQLITE_ABORT_ROLLBACK;
  return error;
}

// The end of a call goes to its connection while it runs.
class Controlled {
 public:
  Controlled(Connection& connection, const CallControl& control) : _connection(connection) {
    connection.setControl(&control);
  }
  Controlled(const Controlled&) = delete;
  Controlled& operator=(const Controlled&) = delete;
  ~Controlled() { _connection.setControl(nullptr); }

 private:
  Connection& _connection;
};

// Why the rows of a method cannot go to a taker.
Failure refuse(const Plan& plan, const RowTaker& taker) {
  const char* message = nullptr;
  if (plan.operation() != QXDAOOperationSelect) {
    message = "is no select, which alone gives rows";
  } else if (plan.method().resultArrayed() && !taker.takesList) {
    message = "gives a list, and the caller takes no std::vector";
  } else if (!plan.method().resultArrayed() && taker.takesList) {
    message = "gives no list, and the caller takes a std::vector";
  }
  if (!message) return std::nullopt;
  return located(databaseError(DatabaseErrorKind::Result, message), plan, plan.place());
}

}  // namespace

void Database::Implementation::load(std::shared_ptr<const DefinitionSet> set, ModelRegistry models) {
  auto loaded = std::make_shared<const Loaded>(Loaded{std::move(set), std::move(models), _cipher});
  const std::lock_guard lock(_mutex);
  _loaded.swap(loaded);
}

std::shared_ptr<const Loaded> Database::Implementation::loaded() const {
  const std::lock_guard lock(_mutex);
  return _loaded;
}

Outcome<Target> Database::Implementation::find(std::string_view method) const {
  Target target{loaded()};
  if (!target.loaded || !target.loaded->set) return definitionsError("no definitions are loaded");
  target.plan = target.loaded->set->plan(method);
  if (!target.plan) return definitionsError("no method has the name '" + std::string(method) + "'");
  return target;
}

Failure Database::Implementation::run(const Target& target, const Arguments& arguments, const CallOptions& options,
                                      RowSink* sink, CallResult* result) {
  ProfiledCall profiled(*target.plan, std::this_thread::get_id() == _mainThread, !_started);
  Failure failure = execute(target, arguments, options, sink, result);
  if (failure && failure->method.empty()) failure = located(std::move(*failure), *target.plan, target.plan->place());
  profiled.end(failure);
  return failure;
}

Outcome<Connections::Lease> Database::Implementation::leaseFor(const Plan& plan, const CallControl& control) {
  if (Entered::holds(this)) return reenteredError();
  if (control.cancelled()) return control.error();
  const bool selects = plan.operation() == QXDAOOperationSelect;
  if (!selects && _connections.options().readOnly) return readOnlyError();
  Outcome<Connections::Lease> lease =
      selects && plan.method().parallel() ? _connections.reader(control) : _connections.writer(control);
  if (lease && lease->ofTransaction() && !(*lease)->inTransaction()) return endedError();
  return lease;
}

Failure Database::Implementation::execute(const Target& target, const Arguments& arguments, const CallOptions& options,
                                          RowSink* sink, CallResult* result) {
  const CallControl control = controlOf(options);
  const Outcome<Connections::Lease> lease = leaseFor(*target.plan, control);
  if (!lease) return lease.error();
  const Entered entered(this);
  Connection& connection = **lease;
  const Controlled controlled(connection, control);
  connection.use(target.loaded->set);
  const bool inserts = target.plan->operation() == QXDAOOperationInsert;
  if (inserts) sqlite3_set_last_insert_rowid(connection.handle(), 0);
  Execution execution(connection, *target.loaded, *target.plan, sink);
  if (Failure failure = execution.run(arguments, options.table)) return failure;
  if (!result) return std::nullopt;
  result->changes = execution.changes();
  if (inserts) result->lastInsertedId = sqlite3_last_insert_rowid(connection.handle());
  return std::nullopt;
}

Failure Database::Implementation::select(const Target& target, const Arguments& arguments, const CallOptions& options,
                                         const RowTaker& taker) {
  if (Failure failure = refuse(*target.plan, taker)) return failure;
  RowSink sink{taker};
  if (Failure failure = run(target, arguments, options, &sink, nullptr)) return failure;
  if (sink.rows > 0 || taker.mayBeAbsent) return std::nullopt;
  return located(databaseError(DatabaseErrorKind::Result, "gives no row, and the caller takes no std::optional"),
                 *target.plan, target.plan->place());
}

Outcome<Cursor> Database::Implementation::cursor(Target target, Arguments arguments, const CallOptions& options) {
  const Plan& plan = *target.plan;
  const bool oneStatement = plan.structure() == PlanStructure::Single && !plan.method().foreach ();
  if (plan.operation() != QXDAOOperationSelect || !oneStatement) {
    return located(databaseError(DatabaseErrorKind::Result, "is not one select, which alone can be read row by row"),
                   plan, plan.place());
  }
  if (Entered::holds(this)) return reenteredError();
  const CallControl control = controlOf(options);
  Outcome<Connections::Lease> lease = _connections.reader(control);
  if (!lease) return std::move(lease.error());
  if (lease->ofTransaction() && !(*lease)->inTransaction()) return endedError();
  auto implementation = std::make_unique<Cursor::Implementation>(this, std::move(*lease), std::move(target),
                                                                 std::move(arguments), control);
  if (Failure failure = implementation->begin(options.table)) return std::move(*failure);
  return Cursor(std::move(implementation));
}

Failure Database::Implementation::begin(const CallOptions& options) {
  if (Entered::holds(this) || _connections.ownsTransaction()) return reenteredError();
  const CallControl control = controlOf(options);
  const Outcome<Connections::Lease> lease = _connections.writer(control);
  if (!lease) return lease.error();
  const Controlled controlled(**lease, control);
  const bool reads = _connections.options().readOnly;
  if (Failure failure = (*lease)->run(reads ? OwnStatement::Begin : OwnStatement::BeginImmediate)) return failure;
  _connections.keep(*lease);
  return std::nullopt;
}

Failure Database::Implementation::end(bool keep) {
  Failure failure;
  {
    const Outcome<Connections::Lease> lease = _connections.writer(controlOf({}));
    if (!lease) {
      failure = lease.error();
    } else if (!(*lease)->inTransaction()) {
      if (keep) failure = endedError();
    } else {
      failure = (*lease)->run(keep ? OwnStatement::Commit : OwnStatement::Rollback);
      if (failure && (*lease)->inTransaction()) static_cast<void>((*lease)->run(OwnStatement::Rollback));
    }
  }
  _connections.letGo();
  return failure;
}

Failure Database::Implementation::withConnection(const CallOptions& options, const Work& work) {
  if (Entered::holds(this)) return reenteredError();
  const CallControl control = controlOf(options);
  const Outcome<Connections::Lease> lease = _connections.writer(control);
  if (!lease) return lease.error();
  const Entered entered(this);
  const Controlled controlled(**lease, control);
  return work(**lease);
}

Failure Database::Implementation::withWriter(const CallOptions& options, const LoadedWork& work) {
  const std::shared_ptr<const Loaded> present = loaded();
  if (!present || !present->set) return definitionsError("no definitions are loaded");
  if (_connections.ownsTransaction()) return reenteredError();
  if (_connections.options().readOnly) return readOnlyError();
  return withConnection(options, [&](Connection& connection) {
    connection.use(present->set);
    return work(connection, *present);
  });
}

}  // namespace korvex
