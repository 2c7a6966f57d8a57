#include "korvex/sqlite/Database.h"

#include <sqlite3.h>

#include <atomic>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

#include "sqlite/Calls.h"
#include "sqlite/Errors.h"
#include "sqlite/Upgrading.h"

namespace korvex {
namespace {

// SQLite looks for a meaning in names such as "", ":memory:" and "file:x?mode=rw", but not behind a directory.
std::string plainPath(const std::string& path) { return path.starts_with('/') ? path : "./" + path; }

// The rows of a select that is asked for no type.
struct Values {
  Value single;
  ValueList list;
};

Failure takeValue(const Row& row, void* target) {
  Outcome<Value> value = row.value();
  if (!value) return std::move(value.error());
  static_cast<Values*>(target)->single = std::move(*value);
  return std::nullopt;
}

Failure takeEntry(const Row& row, void* target) {
  Outcome<Value> value = row.value();
  if (!value) return std::move(value.error());
  static_cast<Values*>(target)->list.push_back(std::move(*value));
  return std::nullopt;
}

void keepValues(void* target, std::size_t rows) {
  auto& values = *static_cast<Values*>(target);
  values.single = Value();
  values.list.resize(rows > values.list.size() ? 0 : rows);
}

// Why the objects of a select cannot be made.
Failure refuseClass(const Target& target) {
  const std::string name(resultClassOf(target.plan->method(), *target.loaded->set));
  if (name.empty() || target.plan->operation() != QXDAOOperationSelect) return std::nullopt;
  const ModelClass* modelClass = target.loaded->models.find(name);
  if (modelClass && modelClass->create) return std::nullopt;
  const std::string message = modelClass ? "objects of '" + name + "' cannot be made: it has no default constructor"
                                         : "no model class has the name '" + name + "'; add it to the ModelRegistry";
  return located(databaseError(DatabaseErrorKind::Result, message), *target.plan, target.plan->place());
}

}  // namespace

Database::Database(std::unique_ptr<Implementation> implementation) : _implementation(std::move(implementation)) {}
Database::~Database() = default;

Outcome<std::unique_ptr<Database>> Database::open(const std::string& path, DatabaseOptions options) {
  auto implementation = std::make_unique<Implementation>(plainPath(path), std::move(options), false);
  if (Failure failure = implementation->connections().open()) return std::move(*failure);
  return std::unique_ptr<Database>(new Database(std::move(implementation)));
}

Outcome<std::unique_ptr<Database>> Database::openInMemory(DatabaseOptions options) {
  options.readOnly = false;
  auto implementation = std::make_unique<Implementation>(":memory:", std::move(options), true);
  if (Failure failure = implementation->connections().open()) return std::move(*failure);
  return std::unique_ptr<Database>(new Database(std::move(implementation)));
}

void Database::load(std::shared_ptr<const DefinitionSet> set, ModelRegistry models) {
  _implementation->load(std::move(set), std::move(models));
}

Failure Database::upgrade(const UpgradeObserver& observer, const CallOptions& options) {
  return _implementation->withWriter(options, [&](Connection& connection, const Loaded& loaded) {
    return upgradeFile(connection, loaded, _implementation->connections().options().foreignKeys, observer);
  });
}

Outcome<std::optional<double>> Database::version() {
  std::optional<double> version;
  Failure failure = _implementation->withConnection({}, [&](Connection& connection) -> Failure {
    const Outcome<std::optional<double>> read = versionOf(connection);
    if (!read) return read.error();
    version = *read;
    return std::nullopt;
  });
  if (failure) return std::move(*failure);
  return version;
}

Failure Database::adopt(double version) {
  return _implementation->withWriter(
      {}, [&](Connection& connection, const Loaded& /*loaded*/) { return adoptVersion(connection, version); });
}

Outcome<CallResult> Database::call(std::string_view method, const Arguments& arguments, const CallOptions& options) {
  const Outcome<Target> target = _implementation->find(method);
  if (!target) return target.error();
  if (Failure failure = refuseClass(*target)) return std::move(*failure);
  Values values;
  const bool list = target->plan->method().resultArrayed();
  const bool selects = target->plan->operation() == QXDAOOperationSelect;
  RowSink sink{{list ? &takeEntry : &takeValue, &keepValues, &values, list, true}};
  CallResult result;
  if (Failure failure = _implementation->run(*target, arguments, options, selects ? &sink : nullptr, &result)) {
    return std::move(*failure);
  }
  result.value = list ? Value(std::move(values.list)) : std::move(values.single);
  return result;
}

Failure Database::select(std::string_view method, const Arguments& arguments, const CallOptions& options,
                         const RowTaker& taker) {
  const Outcome<Target> target = _implementation->find(method);
  if (!target) return target.error();
  return _implementation->select(*target, arguments, options, taker);
}

Outcome<Cursor> Database::cursor(std::string_view method, Arguments arguments, const CallOptions& options) {
  Outcome<Target> target = _implementation->find(method);
  if (!target) return std::move(target.error());
  return _implementation->cursor(std::move(*target), std::move(arguments), options);
}

Failure Database::begin(const CallOptions& options) { return _implementation->begin(options); }
Failure Database::end(bool keep) { return _implementation->end(keep); }
void Database::suspend() { _implementation->connections().suspend(); }
Failure Database::resume() { return _implementation->connections().resume(); }
void Database::started() { _implementation->started(); }

std::optional<QXSCDAOMethodCounter> Database::counter(std::string_view method) const {
  const Outcome<Target> target = _implementation->find(method);
  return target ? counterOf(*target->plan) : std::nullopt;
}

}  // namespace korvex
