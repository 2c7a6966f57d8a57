#include "sqlite/PreparedUnit.h"

#include <sqlite3.h>

#include <algorithm>
#include <optional>
#include <string>
#include <utility>

#include "sqlite/Errors.h"
#include "sqlite/ForbiddenStatements.h"
#include "sqlite/Sealing.h"

namespace korvex {
namespace {

constexpr const char* severalStatements =
    "the SQL goes on behind its first statement, which alone would run; make each statement a step of its own";
constexpr const char* writingSelect = "a select cannot change data; make it an insert, update or delete";

bool isBlank(std::string_view sql) { return sql.find_first_not_of(" \t\r\n;") == std::string_view::npos; }

// Whether the text behind a statement holds another one; comments and ";" do not count.
bool holdsStatement(Connection& connection, std::string_view rest) {
  StatementHandle statement;
  while (!isBlank(rest)) {
    const char* tail = nullptr;
    const int code = connection.prepare(rest, true, statement, tail);
    if (code != SQLITE_OK || statement) return true;
    rest.remove_prefix(static_cast<std::size_t>(tail - rest.data()));
    if (rest.starts_with('\0')) return true;
  }
  return false;
}

DatabaseError prepareError(const AssembledUnit& unit, std::size_t begin, int code) {
  if (code == SQLITE_AUTH) {
    return unit.errorAt(begin, databaseError(DatabaseErrorKind::Forbidden, forbiddenStatement));
  }
  const int offset = sqlite3_error_offset(unit.connection.handle());
  DatabaseError error = unit.connection.error(code);
  return offset < 0 ? unit.error(std::move(error))
                    : unit.errorAt(begin + static_cast<std::size_t>(offset), std::move(error));
}

// Of a value that is bound as it is. What is empty has an address all the same: null would be bound as NULL.
int bindView(sqlite3_stmt* statement, int index, const ValueView& value) {
  const char* bytes = value.type() == ValueType::Text || value.type() == ValueType::Blob ? value.bytes().data() : "";
  switch (value.type()) {
    case ValueType::Null:
      return sqlite3_bind_null(statement, index);
    case ValueType::Integer:
      return sqlite3_bind_int64(statement, index, value.integer());
    case ValueType::Real:
      return sqlite3_bind_double(statement, index, value.real());
    case ValueType::Text:
      return sqlite3_bind_text64(statement, index, bytes ? bytes : "", value.bytes().size(), SQLITE_STATIC,
                                 SQLITE_UTF8);
    case ValueType::Blob:
      return sqlite3_bind_blob64(statement, index, bytes ? bytes : "", value.bytes().size(), SQLITE_STATIC);
    default:
      return SQLITE_MISUSE;  // plans bind no lists, dictionaries and objects
  }
}

int bindBytes(sqlite3_stmt* statement, int index, const std::string& bytes) {
  return sqlite3_bind_blob64(statement, index, bytes.data(), bytes.size(), SQLITE_TRANSIENT);
}

}  // namespace

DatabaseError AssembledUnit::error(DatabaseError error) const {
  error = located(std::move(error), unit.plan(), unit.place());
  error.sql = assembly.sql();
  return error;
}

DatabaseError AssembledUnit::error(int code) const {
  DatabaseError error = this->error(connection.error(code));
  error.message = withoutValues(error.message, error.sql);
  return error;
}

DatabaseError AssembledUnit::errorAt(std::size_t offset, DatabaseError error) const {
  error = located(std::move(error), unit.plan(), assembly.placeOf(offset));
  error.sql = assembly.sql();
  return error;
}

Outcome<StatementHandle> preparedFrom(const AssembledUnit& unit, std::string_view sql, std::size_t& offset) {
  StatementHandle statement;
  while (!statement && !isBlank(sql.substr(offset))) {
    const char* tail = nullptr;
    const int code = unit.connection.prepare(sql.substr(offset), true, statement, tail);
    if (code != SQLITE_OK) return prepareError(unit, offset, code);
    const std::size_t end = static_cast<std::size_t>(tail - sql.data());
    if (end == offset) break;  // SQLite reads no further than a zero byte
    offset = end;
  }
  return statement;
}

Outcome<std::unique_ptr<Statement>> prepared(const AssembledUnit& unit) {
  const std::string sql = unit.assembly.sql();
  std::size_t offset = 0;
  Outcome<StatementHandle> handle = preparedFrom(unit, sql, offset);
  if (!handle) return std::move(handle.error());
  if (holdsStatement(unit.connection, std::string_view(sql).substr(offset))) {
    const std::size_t rest = std::min(sql.find_first_not_of(" \t\r\n;", offset), sql.size());
    return unit.errorAt(rest, databaseError(DatabaseErrorKind::SeveralStatements, severalStatements));
  }
  auto statement = std::make_unique<Statement>();
  statement->handle = std::move(*handle);
  statement->readOnly = sqlite3_stmt_readonly(statement->handle.get()) != 0;
  if (!statement->readOnly && unit.unit.plan().operation() == QXDAOOperationSelect) {
    return unit.error(databaseError(DatabaseErrorKind::WouldWrite, writingSelect));
  }
  return statement;
}

Failure bindValues(const AssembledUnit& unit, const Loaded& loaded, sqlite3_stmt* statement) {
  int index = 0;
  for (const BoundValue& value : unit.assembly.values()) {
    ++index;
    int code = SQLITE_OK;
    if (value.encrypted && !value.value.isNull()) {
      const Outcome<std::string> bytes = sealed(loaded.cipher.get(), value.value);
      if (!bytes) return unit.error(bytes.error());
      code = bindBytes(statement, index, *bytes);
    } else {
      code = bindView(statement, index, value.value);
    }
    if (code != SQLITE_OK) return unit.error(code);
  }
  return std::nullopt;
}

}  // namespace korvex
