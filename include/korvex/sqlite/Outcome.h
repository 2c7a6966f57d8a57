// What an operation on a database gives: a value, or why there is none.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <variant>

#include "korvex/Export.h"
#include "korvex/XMLNode.h"

namespace korvex {

enum class DatabaseErrorKind : std::uint8_t {
  Sqlite,             // SQLite refused; sqliteCode says why
  Definitions,        // no set is loaded, it has no such method, or it does not fit the model classes
  Call,               // the arguments do not fit the method
  Result,             // a row does not fit the declared result, or what the caller wants of it
  Cancelled,          // the caller cancelled the call
  Suspended,          // the database is suspended
  Reentered,          // called by what runs within a call or cursor of the same thread
  WouldWrite,         // a select that would change data, or a change to a database that is only read
  SeveralStatements,  // a method's SQL goes on behind its first ";"
  Forbidden,          // BEGIN, COMMIT, SAVEPOINT, ATTACH and the like in a method: transactions are the engine's
  Cipher,             // there is no cipher, or it failed
  Version,            // an upgrade that cannot lead from the file's version to the newest one
  Progress,           // an interrupted method has changed since
};

// A word for a kind, such as "sqlite" or "would-write"; for programs to read.
[[nodiscard]] KORVEX_EXPORT const char* nameOf(DatabaseErrorKind kind);

// Why something failed. No value that was bound or read is in it.
struct KORVEX_EXPORT DatabaseError {
  DatabaseErrorKind kind = DatabaseErrorKind::Sqlite;
  int sqliteCode = 0;    // SQLite's extended result code; 0 where it was not SQLite that refused
  std::string message;   // for people; SQLite's own where it refused
  std::string method;    // the method's name, or "upgrade to 2.5"; empty outside methods
  std::string document;  // where the method, or the piece of it that is at fault, stands; empty outside methods
  XMLPosition position;  // counted from 1
  std::string sql;       // the statement with "?" for the values; empty when it is not about one

  // All but the SQL in one line: "addressbook.xml:12:3: findPersons: no such table: person".
  [[nodiscard]] std::string text() const;
};

// Either a T or an error. To ask for the one that is not there is a fault of the caller.
template <typename T>
class [[nodiscard]] Outcome {
 public:
  Outcome(T value) : _content(std::in_place_index<0>, std::move(value)) {}  // NOLINT(google-explicit-constructor)
  Outcome(DatabaseError error)                                              // NOLINT(google-explicit-constructor)
      : _content(std::in_place_index<1>, std::move(error)) {}

  explicit operator bool() const { return _content.index() == 0; }
  T& operator*() { return *std::get_if<0>(&_content); }
  const T& operator*() const { return *std::get_if<0>(&_content); }
  T* operator->() { return std::get_if<0>(&_content); }
  const T* operator->() const { return std::get_if<0>(&_content); }
  // Valid only when there is no value.
  DatabaseError& error() { return *std::get_if<1>(&_content); }
  [[nodiscard]] const DatabaseError& error() const { return *std::get_if<1>(&_content); }

 private:
  std::variant<T, DatabaseError> _content;
};

// Of an operation without a value: absent when it succeeded.
using Failure = std::optional<DatabaseError>;

}  // namespace korvex
