// A database in memory with the schema of an app, to prepare statements against.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "verification/SqlTokens.h"

struct sqlite3;
struct sqlite3_stmt;

namespace korvex::verification {

// What the app adds to SQLite, so that it is no error to use it.
struct AppExtensions {
  std::vector<std::string> functions;   // "NAME/ARGS"; "*" for any number of arguments
  std::vector<std::string> collations;  // names
  std::vector<std::string> modules;     // of virtual tables, names
  std::vector<std::string> indexed;     // tables that no statement should read as a whole
};

// Whether a text has the form "NAME/ARGS".
[[nodiscard]] bool isFunctionDeclaration(std::string_view text);

struct CloseStatement {
  void operator()(sqlite3_stmt* statement) const;
};
using StatementHandle = std::unique_ptr<sqlite3_stmt, CloseStatement>;

struct Prepared {
  StatementHandle statement;  // null after a failure, and for a text without a statement
  std::string message;        // empty if there is no failure
  int offset = -1;            // of the failure, where SQLite tells it
  std::size_t end = 0;        // of the statement
  bool changesSchema = false;
};

// A text with the statement at its front that could not be prepared, up to the next ";": it is short enough to search
// for the place of the fault, or empty.
[[nodiscard]] std::string_view shortStatement(std::string_view sql, int offset);

// Why a script or an upgrade failed.
struct ScriptFault {
  std::string message;
  std::string help;
  ByteRange place;  // in its text
};

// All operations are for one thread. Nothing but memory is written: statements that attach files, load extensions or
// write files are refused, and those that run too long or need too much memory are stopped.
class SchemaDatabase {
 public:
  // Throws away what cannot be declared: a name that SQLite does not accept.
  explicit SchemaDatabase(const AppExtensions& extensions);
  ~SchemaDatabase();
  SchemaDatabase(const SchemaDatabase&) = delete;
  SchemaDatabase& operator=(const SchemaDatabase&) = delete;

  [[nodiscard]] sqlite3& handle() const { return *_database; }

  [[nodiscard]] const std::vector<std::string>& indexedTables() const { return _indexed; }

  // Runs all statements of a script, which is followed by a zero byte, up to the first that fails.
  [[nodiscard]] std::optional<ScriptFault> runScript(std::string_view sql);
  // Creates what the file has, without rows. The file is opened for reading only. Returns why it cannot be read.
  [[nodiscard]] std::optional<std::string> copySchemaOf(const std::string& path);

  // The first statement of a text, which is followed by a zero byte: SQLite would copy any other text as a whole.
  [[nodiscard]] Prepared prepare(std::string_view sql);
  // Runs a statement to its end; an absent failure is success.
  [[nodiscard]] std::optional<std::string> run(sqlite3_stmt& statement);

  // Between the two, changes of the schema are for the time being.
  [[nodiscard]] bool begin();
  void rollBack();

  // The tables and views, and the columns of all of them, each name once.
  [[nodiscard]] std::vector<std::string> tableNames();
  [[nodiscard]] std::vector<std::string> columnNames();
  // The tables that no statement has named, directly, in a view or in a trigger, since that was forgotten.
  [[nodiscard]] std::vector<std::string> unusedTables();
  void forgetUsedTables() { _usedTables.clear(); }
  // The columns of all tables with their declared types, in capital letters.
  [[nodiscard]] std::vector<std::pair<std::string, std::string>> columnTypes();

 private:
  void declare(const AppExtensions& extensions);
  void restrict();
  [[nodiscard]] std::vector<std::string> namesFrom(std::string_view sql);
  static int authorize(void* self, int action, const char* first, const char* second, const char* database,
                       const char* trigger);
  static int count(void* self);

  sqlite3* _database = nullptr;
  std::vector<std::string> _indexed;
  std::set<std::string, std::less<>> _usedTables;
  long _budget = 0;  // of the running statement, in thousands of instructions
  bool _trusted = false;
  bool _changesSchema = false;
  bool _forbidden = false;
};

}  // namespace korvex::verification
