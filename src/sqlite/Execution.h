// One call of a method on a connection: units, steps, entries, tries, and the transactions around them.
#pragma once

#include <sqlite3.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string_view>

#include "korvex/Plan.h"
#include "korvex/sqlite/Outcome.h"
#include "korvex/sqlite/Row.h"
#include "sqlite/Connection.h"
#include "sqlite/Progress.h"
#include "sqlite/RowSource.h"

namespace korvex {

// Where an upgrade has its say in its execution.
struct UpgradeHooks {
  std::function<Outcome<bool>()> isNeeded;  // in the first transaction; false ends it as done
  std::function<Failure(std::size_t step)> beforeStep;
  std::function<Failure()> beforeLastCommit;  // in the transaction of the last step
};

// Takes the rows of a call.
struct RowSink {
  RowTaker taker;
  std::int64_t rows = 0;
};

class Execution {
 public:
  // All of them outlive the execution. `sink` is null for methods that are no select.
  Execution(Connection& connection, const Loaded& loaded, const Plan& plan, RowSink* sink)
      : _connection(connection),
        _assembly(connection.assembly()),
        _loaded(loaded),
        _plan(plan),
        _sink(sink),
        _nested(connection.inTransaction()) {}

  // Runs the whole method. `hooks` is for upgrades.
  [[nodiscard]] Failure run(const Arguments& arguments, std::string_view table, const UpgradeHooks* hooks = nullptr);

  // Rows that the method changed itself.
  [[nodiscard]] std::int64_t changes() const { return _changes; }

 private:
  [[nodiscard]] Failure checkSteps();
  [[nodiscard]] bool needsNoTransaction() const;
  [[nodiscard]] bool selects() const { return _plan.operation() == QXDAOOperationSelect; }
  [[nodiscard]] bool resumes() const;
  [[nodiscard]] bool beginsTransaction(const Position& at) const;
  [[nodiscard]] bool hasEnough() const;

  [[nodiscard]] Failure runInTransactions(const Arguments& arguments);
  [[nodiscard]] Failure runInTransaction(const Arguments& arguments);
  [[nodiscard]] Failure runResumably(const Arguments& arguments);
  [[nodiscard]] Failure runFrom(Position at, Progress* progress);
  [[nodiscard]] Failure runEntry(Position& at, Progress* progress);
  [[nodiscard]] Failure checkpoint(const Position& at, Progress& progress);
  [[nodiscard]] Failure runStep(const Position& at);
  [[nodiscard]] Failure runTry();

  [[nodiscard]] Failure runUnit(const PlanUnit& unit);
  [[nodiscard]] Failure runScript(const PlanUnit& unit);
  [[nodiscard]] Failure runStatement(const PlanUnit& unit);
  [[nodiscard]] Failure stepThrough(const PlanUnit& unit, Statement& statement);

  [[nodiscard]] Failure beginTransaction();
  [[nodiscard]] Failure commit();
  void rollBack();
  [[nodiscard]] DatabaseError inRow(DatabaseError error) const;
  [[nodiscard]] DatabaseError inEntry(DatabaseError error, const Position& at) const;

  Connection& _connection;
  Assembly& _assembly;
  const Loaded& _loaded;
  const Plan& _plan;
  RowSink* _sink;
  const UpgradeHooks* _hooks = nullptr;
  std::int64_t _changes = 0;
  bool _nested;
  bool _quit = false;
};

}  // namespace korvex
