#pragma once

#include <memory>
#include <optional>
#include <string_view>

#include "korvex/sqlite/Cursor.h"
#include "sqlite/Calls.h"
#include "sqlite/PreparedUnit.h"

namespace korvex {

// A select that is stepped through by its caller, with a statement of its own.
class Cursor::Implementation {
 public:
  Implementation(const void* database, Connections::Lease lease, Target target, Arguments arguments,
                 const CallControl& control)
      : _database(database),
        _lease(std::move(lease)),
        _target(std::move(target)),
        _arguments(std::move(arguments)),
        _control(control) {}

  // Makes the statement; when the method quits, there is none, and no row.
  [[nodiscard]] Failure begin(std::string_view table);
  [[nodiscard]] bool next();
  [[nodiscard]] const Failure& failure() const { return _failure; }
  [[nodiscard]] Row row() { return Row(*_source); }

 private:
  void finish();
  [[nodiscard]] AssembledUnit unit() { return {*_lease, _assembly, _target.plan->units().front()}; }

  const void* _database;
  Connections::Lease _lease;
  Target _target;
  Arguments _arguments;
  CallControl _control;
  Assembly _assembly;
  std::unique_ptr<Statement> _statement;
  std::optional<Row::Source> _source;
  Failure _failure;
};

}  // namespace korvex
