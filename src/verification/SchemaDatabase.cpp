#include "verification/SchemaDatabase.h"

#include <sqlite3.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <utility>

#include "sqlite/ForbiddenStatements.h"
#include "verification/SqlFault.h"
#include "verification/StandInModule.h"

namespace korvex::verification {
namespace {

// A statement that runs longer than about a second is stopped.
constexpr int instructionsPerCount = 1000;
constexpr long maxCounts = 100000;
// In bytes of one text or row, and in pages of 4,096 bytes.
constexpr int maxLength = 1 << 24;
constexpr const char* limitPages = "PRAGMA max_page_count = 32768; PRAGMA temp_store = MEMORY";
constexpr sqlite3_int64 maxMemory = sqlite3_int64{1} << 30U;

constexpr const char* stopped = "stopped, since it runs for too long";

// What may be set, because it changes what a schema means. Other settings are passed over.
constexpr std::array<std::string_view, 5> pragmasOfSchemas = {"foreign_keys", "legacy_alter_table", "encoding",
                                                              "recursive_triggers", "defer_foreign_keys"};

// What only reads the schema.
constexpr std::array<std::string_view, 9> readingPragmas = {"table_info",       "table_xinfo",   "table_list",
                                                            "index_list",       "index_info",    "index_xinfo",
                                                            "foreign_key_list", "function_list", "collation_list"};

template <typename Thing, std::size_t Size>
bool isIn(const std::array<Thing, Size>& things, const Thing& thing) {
  return std::find(things.begin(), things.end(), thing) != things.end();
}

bool createsOrDrops(int action) {
  return (action >= SQLITE_CREATE_INDEX && action <= SQLITE_CREATE_VIEW) ||
         (action >= SQLITE_DROP_INDEX && action <= SQLITE_DROP_VIEW) || action == SQLITE_ALTER_TABLE ||
         action == SQLITE_CREATE_VTABLE || action == SQLITE_DROP_VTABLE;
}

bool usesTable(int action) {
  return action == SQLITE_READ || action == SQLITE_INSERT || action == SQLITE_UPDATE || action == SQLITE_DELETE;
}

// "NAME/ARGS", with -1 for "*".
std::optional<std::pair<std::string, int>> functionOf(std::string_view declaration) {
  const std::size_t slash = declaration.rfind('/');
  if (slash == std::string_view::npos || slash == 0) return std::nullopt;
  const std::string name(declaration.substr(0, slash));
  const std::string_view count = declaration.substr(slash + 1);
  if (count == "*") return std::pair(name, -1);
  int arguments = 0;
  const auto [end, error] = std::from_chars(count.data(), count.data() + count.size(), arguments);
  const bool valid = error == std::errc() && end == count.data() + count.size() && arguments >= 0 && arguments < 128;
  return valid ? std::optional(std::pair(name, arguments)) : std::nullopt;
}

void returnNull(sqlite3_context* context, int /*count*/, sqlite3_value** /*values*/) { sqlite3_result_null(context); }

int compareNothing(void* /*context*/, int /*leftSize*/, const void* /*left*/, int /*rightSize*/,
                   const void* /*right*/) {
  return 0;
}

struct CloseDatabase {
  void operator()(sqlite3* database) const { sqlite3_close(database); }
};

// A file's path as a URI; "?" and other characters with a meaning are escaped.
std::string uriOf(const std::string& path) {
  constexpr std::string_view plain = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-._~/";
  constexpr std::string_view digits = "0123456789ABCDEF";
  std::string uri = "file:";
  for (const char character : path) {
    const auto byte = static_cast<unsigned char>(character);
    if (plain.find(character) != std::string_view::npos) {
      uri += character;
    } else {
      uri.append({'%', digits[byte >> 4U], digits[byte & 15U]});
    }
  }
  // Nothing beside the file is created, unless the file has changes that only its log holds.
  std::error_code error;
  const auto log = std::filesystem::file_size(path + "-wal", error);
  return uri + (error || log == 0 ? "?mode=ro&immutable=1" : "?mode=ro");
}

std::string columnText(sqlite3_stmt* statement, int column) {
  const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement, column));
  return text ? std::string(text, static_cast<std::size_t>(sqlite3_column_bytes(statement, column))) : std::string();
}

// Virtual tables first. Those that they keep their rows in come with them.
constexpr const char* readSchema =
    "SELECT sql FROM sqlite_schema WHERE sql IS NOT NULL AND name NOT GLOB 'sqlite_*' AND tbl_name NOT IN "
    "(SELECT name FROM pragma_table_list WHERE type = 'shadow') ORDER BY "
    "CASE WHEN sql LIKE 'CREATE VIRTUAL%' THEN 0 WHEN type = 'table' THEN 1 WHEN type = 'view' THEN 2 ELSE 3 END, "
    "rowid";

}  // namespace

bool isFunctionDeclaration(std::string_view text) { return functionOf(text).has_value(); }

std::string_view shortStatement(std::string_view sql, int offset) {
  constexpr std::size_t maxSearched = 4000;
  if (sql.size() <= maxSearched) return sql;
  const std::size_t end = sql.find(';', static_cast<std::size_t>(std::max(offset, 0)));
  return end < maxSearched ? sql.substr(0, end + 1) : std::string_view();
}

void CloseStatement::operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }

SchemaDatabase::SchemaDatabase(const AppExtensions& extensions) {
  if (sqlite3_open_v2(":memory:", &_database, SQLITE_OPEN_READWRITE | SQLITE_OPEN_MEMORY | SQLITE_OPEN_NOMUTEX,
                      nullptr) != SQLITE_OK) {
    std::abort();  // only without memory
  }
  declare(extensions);
  restrict();
}

SchemaDatabase::~SchemaDatabase() { sqlite3_close(_database); }

void SchemaDatabase::declare(const AppExtensions& extensions) {
  constexpr int flags = SQLITE_UTF8 | SQLITE_DETERMINISTIC | SQLITE_INNOCUOUS;
  for (const std::string& declaration : extensions.functions) {
    const auto function = functionOf(declaration);
    if (!function) continue;
    sqlite3_create_function_v2(_database, function->first.c_str(), function->second, flags, nullptr, returnNull,
                               nullptr, nullptr, nullptr);
  }
  for (const std::string& name : extensions.collations) {
    sqlite3_create_collation_v2(_database, name.c_str(), SQLITE_UTF8, nullptr, compareNothing, nullptr);
  }
  _indexed = extensions.indexed;
  for (const std::string& name : extensions.modules) declareStandInModule(*_database, name.c_str());
}

void SchemaDatabase::restrict() {
  sqlite3_exec(_database, limitPages, nullptr, nullptr, nullptr);
  sqlite3_hard_heap_limit64(maxMemory);
  sqlite3_limit(_database, SQLITE_LIMIT_LENGTH, maxLength);
  sqlite3_limit(_database, SQLITE_LIMIT_ATTACHED, 0);
  // A misspelled name in double quotes is an error and no string.
  sqlite3_db_config(_database, SQLITE_DBCONFIG_DQS_DML, 0, nullptr);
  sqlite3_db_config(_database, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
  sqlite3_progress_handler(_database, instructionsPerCount, count, this);
  sqlite3_set_authorizer(_database, authorize, this);
}

int SchemaDatabase::count(void* self) {
  auto& database = *static_cast<SchemaDatabase*>(self);
  return --database._budget < 0 ? 1 : 0;
}

int SchemaDatabase::authorize(void* self, int action, const char* first, const char* second, const char* /*database*/,
                              const char* /*trigger*/) {
  auto& database = *static_cast<SchemaDatabase*>(self);
  if (createsOrDrops(action)) database._changesSchema = true;
  if (usesTable(action) && !database._usedTables.contains(std::string_view(first))) database._usedTables.emplace(first);
  if (action == SQLITE_FUNCTION) {
    return second && std::string_view(second) == "load_extension" ? SQLITE_DENY : SQLITE_OK;
  }
  if (action == SQLITE_PRAGMA) {
    const std::string_view pragma(first);
    const bool allowed = isIn(readingPragmas, pragma) || isIn(pragmasOfSchemas, pragma);
    return allowed || !second ? SQLITE_OK : SQLITE_IGNORE;
  }
  // Scripts may have transactions.
  const bool attaches = action == SQLITE_ATTACH || action == SQLITE_DETACH;
  database._forbidden = database._trusted ? attaches : isForbiddenAction(action);
  return database._forbidden ? SQLITE_DENY : SQLITE_OK;
}

Prepared SchemaDatabase::prepare(std::string_view sql) {
  Prepared result;
  sqlite3_stmt* statement = nullptr;
  const char* tail = nullptr;
  _changesSchema = _forbidden = false;
  _budget = maxCounts;
  const int length = sql.size() < maxLength ? static_cast<int>(sql.size()) + 1 : maxLength;
  const int code = sqlite3_prepare_v2(_database, sql.data(), length, &statement, &tail);
  result.statement.reset(statement);
  result.changesSchema = _changesSchema;
  result.end = tail ? std::min(static_cast<std::size_t>(tail - sql.data()), sql.size()) : sql.size();
  if (code == SQLITE_OK) return result;
  result.message = code == SQLITE_AUTH && _forbidden ? forbiddenStatement : sqlite3_errmsg(_database);
  result.offset = sqlite3_error_offset(_database);
  return result;
}

std::optional<std::string> SchemaDatabase::run(sqlite3_stmt& statement) {
  _budget = maxCounts;
  int code = SQLITE_ROW;
  while (code == SQLITE_ROW) code = sqlite3_step(&statement);
  if (code == SQLITE_DONE) return std::nullopt;
  return std::string(code == SQLITE_INTERRUPT ? stopped : sqlite3_errmsg(_database));
}

std::optional<ScriptFault> SchemaDatabase::runScript(std::string_view sql) {
  _trusted = true;
  std::optional<ScriptFault> fault;
  std::size_t begin = 0;
  while (!fault && begin < sql.size()) {
    const std::string_view rest = sql.substr(begin);
    const Prepared prepared = prepare(rest);
    if (!prepared.message.empty()) {
      const std::string_view statement = shortStatement(rest, prepared.offset);
      const auto found = statement.empty() ? std::nullopt : faultOf(*_database, statement);
      const std::size_t at = begin + static_cast<std::size_t>(std::max(prepared.offset, 0));
      fault = found && found->message == prepared.message
                  ? ScriptFault{found->message, found->help, {begin + found->place.begin, begin + found->place.end}}
                  : ScriptFault{prepared.message, {}, {at, std::min(at + 1, sql.size())}};
    } else if (prepared.statement) {
      const auto message = run(*prepared.statement);
      const auto tokens = tokensOf(rest.substr(0, prepared.end));
      const std::size_t at = begin + (tokens.empty() ? 0 : tokens.front().begin);
      if (message) fault = ScriptFault{*message, {}, {at, begin + prepared.end}};
    }
    if (prepared.end == 0) break;
    begin += prepared.end;
  }
  _trusted = false;
  return fault;
}

std::optional<std::string> SchemaDatabase::copySchemaOf(const std::string& path) {
  sqlite3* opened = nullptr;
  const int code = sqlite3_open_v2(uriOf(path).c_str(), &opened, SQLITE_OPEN_READONLY | SQLITE_OPEN_URI, nullptr);
  const std::unique_ptr<sqlite3, CloseDatabase> file(opened);
  if (code != SQLITE_OK) return sqlite3_errmsg(opened);
  sqlite3_stmt* statement = nullptr;
  if (sqlite3_prepare_v2(opened, readSchema, -1, &statement, nullptr) != SQLITE_OK) return sqlite3_errmsg(opened);
  const StatementHandle schema(statement);
  int step = SQLITE_OK;
  while ((step = sqlite3_step(statement)) == SQLITE_ROW) {
    const std::string sql = columnText(statement, 0);
    const auto fault = runScript(sql);
    if (fault) return "its schema cannot be copied: " + fault->message + ", in " + sql.substr(0, 200);
  }
  if (step != SQLITE_DONE) return sqlite3_errmsg(opened);
  return std::nullopt;
}

bool SchemaDatabase::begin() {
  _trusted = true;
  const bool begun = sqlite3_exec(_database, "BEGIN", nullptr, nullptr, nullptr) == SQLITE_OK;
  _trusted = false;
  return begun;
}

void SchemaDatabase::rollBack() {
  _trusted = true;
  sqlite3_exec(_database, "ROLLBACK", nullptr, nullptr, nullptr);
  _trusted = false;
}

std::vector<std::string> SchemaDatabase::namesFrom(std::string_view sql) {
  const Prepared prepared = prepare(sql);
  std::vector<std::string> names;
  while (prepared.statement && sqlite3_step(prepared.statement.get()) == SQLITE_ROW) {
    names.push_back(columnText(prepared.statement.get(), 0));
  }
  return names;
}

std::vector<std::string> SchemaDatabase::tableNames() {
  return namesFrom("SELECT name FROM sqlite_schema WHERE type IN ('table', 'view') AND name NOT GLOB 'sqlite_*'");
}

std::vector<std::string> SchemaDatabase::columnNames() {
  return namesFrom(
      "SELECT DISTINCT c.name FROM sqlite_schema s, pragma_table_info(s.name) c WHERE s.type IN ('table', 'view')");
}

std::vector<std::string> SchemaDatabase::unusedTables() {
  const auto used = _usedTables;  // which the query changes
  std::vector<std::string> tables = namesFrom(
      "SELECT name FROM pragma_table_list WHERE schema = 'main' AND type IN ('table', 'virtual') AND name NOT GLOB "
      "'sqlite_*'");
  std::erase_if(tables, [&](const std::string& table) { return used.contains(table); });
  return tables;
}

std::vector<std::pair<std::string, std::string>> SchemaDatabase::columnTypes() {
  constexpr const char* query =
      "SELECT c.name, upper(c.type) FROM sqlite_schema s, pragma_table_info(s.name) c WHERE s.type = 'table'";
  const Prepared prepared = prepare(query);
  std::vector<std::pair<std::string, std::string>> types;
  while (prepared.statement && sqlite3_step(prepared.statement.get()) == SQLITE_ROW) {
    types.emplace_back(columnText(prepared.statement.get(), 0), columnText(prepared.statement.get(), 1));
  }
  return types;
}

}  // namespace korvex::verification
