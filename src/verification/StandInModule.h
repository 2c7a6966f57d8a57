// A virtual table in place of one whose module the system's SQLite lacks.
#pragma once

struct sqlite3;

namespace korvex::verification {

// Its columns are the first words of the module's arguments, without options such as "content=''". Two hidden columns
// have the name of the table, as a full-text search uses it, and "rank".
void declareStandInModule(sqlite3& database, const char* name);

}  // namespace korvex::verification
