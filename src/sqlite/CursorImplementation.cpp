#include "sqlite/CursorImplementation.h"

#include <utility>

#include "sqlite/Errors.h"

namespace korvex {

Cursor::Cursor(std::unique_ptr<Implementation> implementation) : _implementation(std::move(implementation)) {}
Cursor::Cursor(Cursor&&) noexcept = default;
Cursor& Cursor::operator=(Cursor&&) noexcept = default;
Cursor::~Cursor() = default;

bool Cursor::next() { return _implementation->next(); }
const Failure& Cursor::failure() const { return _implementation->failure(); }
Row Cursor::row() const { return _implementation->row(); }

Failure Cursor::Implementation::begin(std::string_view table) {
  const Plan& plan = *_target.plan;
  if (const auto error = _assembly.begin(plan, _arguments, table)) return callError(*error, plan);
  if (const auto error = _assembly.assemble(plan.units().front())) return callError(*error, plan);
  if (_assembly.quits() || _assembly.empty()) return std::nullopt;
  Outcome<std::unique_ptr<Statement>> statement = prepared(unit());
  if (!statement) return std::move(statement.error());
  if (!(*statement)->handle) return std::nullopt;
  _statement = std::move(*statement);
  _source.emplace(*_target.loaded, plan, _statement->handle.get(), _statement->mapping);
  return bindValues(unit(), *_target.loaded, _statement->handle.get());
}

bool Cursor::Implementation::next() {
  if (!_statement) return false;
  const Entered entered(_database);
  _lease->setControl(&_control);
  const int code = _control.stops() ? SQLITE_INTERRUPT : sqlite3_step(_statement->handle.get());
  if (code != SQLITE_ROW && code != SQLITE_DONE) _failure = unit().error(code);
  _lease->setControl(nullptr);
  if (code == SQLITE_ROW) return true;
  finish();
  return false;
}

// Lets go of the file's lock and of the connection.
void Cursor::Implementation::finish() {
  _source.reset();
  _statement.reset();
  _lease = {};
}

}  // namespace korvex
