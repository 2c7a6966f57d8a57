#include "verification/StandInModule.h"

#include <sqlite3.h>

#include <array>
#include <string>
#include <string_view>

#include "verification/SqlTokens.h"

namespace korvex::verification {
namespace {

std::string quotedColumn(std::string_view name) {
  std::string quoted = "\"";
  for (const char character : name) quoted.append(character == '"' ? 2 : 1, character);
  return quoted + '"';
}

// The arguments after the module, the database and the table.
int connect(sqlite3* database, void* /*context*/, int count, const char* const* arguments, sqlite3_vtab** table,
            char** /*error*/) {
  std::string declaration = "CREATE TABLE x(";
  for (int at = 3; at < count; ++at) {
    const std::string_view argument = arguments[at];
    const auto tokens = tokensOf(argument);
    if (tokens.empty() || argument.find('=') != std::string_view::npos) continue;
    const auto [begin, end] = tokens.front();
    declaration += quotedColumn(nameOf(argument.substr(begin, end - begin))) + ", ";
  }
  declaration += quotedColumn(arguments[2]) + " HIDDEN, rank HIDDEN)";
  const int code = sqlite3_declare_vtab(database, declaration.c_str());
  if (code == SQLITE_OK) *table = new sqlite3_vtab{};
  return code;
}

int disconnect(sqlite3_vtab* table) {
  delete table;
  return SQLITE_OK;
}

// Every constraint is accepted, so that MATCH is no error; the statements are not run.
int chooseIndex(sqlite3_vtab* /*table*/, sqlite3_index_info* info) {
  int argument = 0;
  for (int at = 0; at < info->nConstraint; ++at) {
    if (info->aConstraint[at].usable == 0) continue;
    info->aConstraintUsage[at].argvIndex = ++argument;
    info->aConstraintUsage[at].omit = 1;
  }
  return SQLITE_OK;
}

int open(sqlite3_vtab* /*table*/, sqlite3_vtab_cursor** cursor) {
  *cursor = new sqlite3_vtab_cursor{};
  return SQLITE_OK;
}

int close(sqlite3_vtab_cursor* cursor) {
  delete cursor;
  return SQLITE_OK;
}

int filter(sqlite3_vtab_cursor* /*cursor*/, int /*index*/, const char* /*name*/, int /*count*/,
           sqlite3_value** /*values*/) {
  return SQLITE_OK;
}

int next(sqlite3_vtab_cursor* /*cursor*/) { return SQLITE_OK; }

int atEnd(sqlite3_vtab_cursor* /*cursor*/) { return 1; }

int column(sqlite3_vtab_cursor* /*cursor*/, sqlite3_context* context, int /*column*/) {
  sqlite3_result_null(context);
  return SQLITE_OK;
}

int rowid(sqlite3_vtab_cursor* /*cursor*/, sqlite3_int64* row) {
  *row = 0;
  return SQLITE_OK;
}

int update(sqlite3_vtab* /*table*/, int /*count*/, sqlite3_value** /*values*/, sqlite3_int64* /*row*/) {
  return SQLITE_OK;
}

// MATCH and auxiliary functions such as bm25 belong to the module.
int findFunction(sqlite3_vtab* /*table*/, int /*count*/, const char* /*name*/,
                 void (**function)(sqlite3_context*, int, sqlite3_value**), void** /*context*/) {
  *function = [](sqlite3_context* result, int, sqlite3_value**) { sqlite3_result_null(result); };
  return 1;
}

constexpr sqlite3_module moduleOfStandIns() {
  sqlite3_module module{};
  module.iVersion = 1;
  module.xCreate = connect;
  module.xConnect = connect;
  module.xBestIndex = chooseIndex;
  module.xDisconnect = disconnect;
  module.xDestroy = disconnect;
  module.xOpen = open;
  module.xClose = close;
  module.xFilter = filter;
  module.xNext = next;
  module.xEof = atEnd;
  module.xColumn = column;
  module.xRowid = rowid;
  module.xUpdate = update;
  module.xFindFunction = findFunction;
  return module;
}
constexpr sqlite3_module standIns = moduleOfStandIns();

}  // namespace

void declareStandInModule(sqlite3& database, const char* name) {
  sqlite3_create_module(&database, name, &standIns, nullptr);
}

}  // namespace korvex::verification
