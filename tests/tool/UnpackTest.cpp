// korvex-dao unpack: values and database columns as people and programs see them.
#include <gtest/gtest.h>
#include <sqlite3.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <thread>
#include <tuple>

#include "korvex/OptionalString.h"
#include "korvex/QXDAOPackReader.h"
#include "tests/support/Models.h"
#include "tests/support/Packs.h"
#include "tests/support/RunTool.h"
#include "tests/support/TemporaryDirectory.h"
#include "tool/ElementJson.h"
#include "tool/Hex.h"

namespace korvex {
namespace {

namespace fs = std::filesystem;

const std::string age = "0361676500 5400 1E000000";

// The text with every run of spaces as one.
std::string squeezed(std::string text) {
  const auto bothSpaces = [](char left, char right) { return left == ' ' && right == ' '; };
  text.erase(std::unique(text.begin(), text.end(), bothSpaces), text.end());
  return text;
}

TEST(Unpack, EveryTypeForPeopleAndPrograms) {
  const struct {
    std::string record;  // encode and content in hex
    std::string line;    // type, value and number of bytes
    std::string value;   // in JSON
  } cases[] = {
      {"0100 00", "boolean false 1", "false"},
      {"0100 01", "boolean true 1", "true"},
      {"0100 80", "boolean true (80) 1", "true"},
      {"1100 80", "signed 8-bit -128 1", "-128"},
      {"2100 FF", "unsigned 8-bit 255 1", "255"},
      {"3200 FE FF", "signed 16-bit -2 2", "-2"},
      {"4200 FE FF", "unsigned 16-bit 65534 2", "65534"},
      {"5400 00 00 00 80", "signed 32-bit -2147483648 4", "-2147483648"},
      {"6400 FF FF FF FF", "unsigned 32-bit 4294967295 4", "4294967295"},
      {"7800 0000000000000080", "signed 64-bit -9223372036854775808 8", "-9223372036854775808"},
      {"8800 FFFFFFFFFFFFFFFF", "unsigned 64-bit 18446744073709551615 8", "18446744073709551615"},
      {"9400 CDCCCC3D", "single precision 0.1 4", "0.10000000149011612"},
      {"9400 00000080", "single precision -0 4", "-0.0"},
      {"9400 0000807F", "single precision Infinity 4", "\"Infinity\""},
      {"A800 182D4454FB210940", "double precision 3.141592653589793 8", "3.141592653589793"},
      {"A800 0100000000000000", "double precision 5e-324 8", "5e-324"},
      {"A800 000000000000F0FF", "double precision -Infinity 8", "\"-Infinity\""},
      {"A800 000000000000F87F", "double precision NaN 8", "\"NaN\""},
      {"FFFF 00000000", "string \"\" 0", "\"\""},
      {"FFFF 04000000 C3A9 22 0A", "string \"é\"\\n\" 4", R"("é\"\n")"},
      {"FFFF 02000000 61FF", "string 61 FF (not UTF-8) 2", "null"},
      {"2300 0A0B0C", "unknown (35) 0A 0B 0C 3", "null"},
      {"1000", "unknown (16) 0", "null"},
  };
  for (const auto& [record, line, value] : cases) {
    SCOPED_TRACE(record);
    const std::string offset = record.starts_with("FFFF") ? "9" : "5";
    const Outcome table = run({"unpack", "--hex", "01 6E 00" + record});
    EXPECT_TRUE(squeezed(table.out).ends_with("\n n " + line + " at " + offset + "\n")) << table.out;
    const Outcome json = run({"unpack", "--format=json", "--hex", "01 6E 00" + record});
    EXPECT_EQ(table.code + json.code, 0) << table.err;
    const Json parsed = Json::parse(json.out).at("records").at(0);
    EXPECT_EQ(parsed.at("value").dump(), value);
    EXPECT_EQ(std::to_string(parsed.at("offset").get<int>()), offset);
  }
}

TEST(Unpack, ColumnsAreAligned) {
  const std::string value = age + "02 61FF 00 FFFF 02000000 C3A9" +  //
                            "01 7A 00 FFFF 2A000000" + hexText(std::string(42, '.')) + "00 00 1100 01";
  EXPECT_EQ(run({"unpack", "--hex", value}).out,
            "--hex: 79 bytes\n"
            "  property  type           value  bytes at offset\n"
            "  age       signed 32-bit  30     4 at 7\n"
            "  a\\xff     string         \"é\"    2 at 21\n"
            "  z         string         \"" +
                std::string(42, '.') +
                "\"  42 at 32\n"
                "            signed 8-bit   1      1 at 78\n");
}

TEST(Unpack, JsonOfAValue) {
  const Outcome result = run({"unpack", "--format", "json", "--hex", age + "02 61FF 00 FFFF 01000000 FE 0161"});
  EXPECT_EQ(result.code, 1);
  EXPECT_EQ(Json::parse(result.out).dump(),
            R"({"size":24,"records":[)"
            R"({"property":"age","propertyBytes":"616765","type":"signed 32-bit","encode":84,)"
            R"("value":30,"offset":7,"bytes":"1E000000"},)"
            R"({"property":null,"propertyBytes":"61FF","type":"string","encode":-1,)"
            R"("value":null,"offset":21,"bytes":"FE"}],)"
            R"("stop":{"offset":22,"reason":"the value ends inside the name of a property"}})");
}

TEST(Unpack, SaysWhereAndWhyReadingStopped) {
  const std::pair<const char*, const char*> cases[] = {
      {"03", "11 of 12: the value ends inside the name of a property"},
      {"01 61", "11 of 13: the value ends inside the name of a property"},
      {"01 61 00 54", "14 of 15: the value ends inside the encode of \"a\""},
      {"01 0A 00 FFFF 0100", "16 of 18: the value ends inside the length of the text of \"\\n\""},
      {"01 61 00 FFFF FFFFFFFF 41", "20 of 21: the value ends inside the text of \"a\""},
      {"01 61 00 A800 41", "16 of 17: the value ends inside the value of \"a\""},
      {"01 61 00 0000 41", "14 of 17: encode 0 of \"a\" has no known length"},
      {"01 61 00 FEFF", "14 of 16: encode -2 of \"a\" has no known length"},
      {"01 61 00 0080", "14 of 16: encode -32768 of \"a\" has no known length"},
  };
  for (const auto& [rest, stop] : cases) {
    const Outcome result = run({"unpack", "--hex", age + rest});
    EXPECT_EQ(result.code, 1);
    EXPECT_TRUE(result.out.ends_with("30     4 at 7\n  stopped at byte " + std::string(stop) + "\n")) << result.out;
  }
}

TEST(Unpack, HexMistakes) {
  const std::pair<const char*, const char*> cases[] = {
      {"0", "an odd number of hexadecimal digits: 1"},
      {"01 6", "an odd number of hexadecimal digits: 3"},
      {"01 6g", "'g' at position 5 is no hexadecimal digit"},
      {"00x1", "'x' at position 3 is no hexadecimal digit"},
      {"x'01", "'x' at position 1 is no hexadecimal digit"},
      {" X'0g'", "'g' at position 5 is no hexadecimal digit"},
      {"0x012", "an odd number of hexadecimal digits: 3"},
      {"é", "'é' at position 1 is no hexadecimal digit"},
      {"\x1b[0m", "'\\x1b' at position 1 is no hexadecimal digit"},
  };
  for (const auto& [hex, message] : cases) {
    for (const bool elsewhere : {false, true}) {
      const Outcome result = run({"unpack", "--hex", elsewhere ? "-" : hex}, hex);
      EXPECT_EQ(result.code, 2);
      EXPECT_EQ(result.out, "");
      EXPECT_EQ(result.err, "korvex-dao: " + std::string(elsewhere ? "<stdin>" : "--hex") + ": " + message + "\n");
    }
  }
}

// -------------------------------------------------------------------------------------------
// Files and databases

using Database = std::unique_ptr<sqlite3, decltype(&sqlite3_close)>;

// Every test runs in a directory of its own.
class UnpackFiles : public testing::Test {
 protected:
  void SetUp() override { fs::current_path(_directory.path()); }
  void TearDown() override { fs::current_path(_before); }

  static std::string contentOf(const std::string& name) {
    std::ifstream file(name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }
  [[nodiscard]] std::string absolute(const std::string& name) const { return (_directory.path() / name).string(); }
  Database database(const std::string& sql, const std::string& name = "app.sqlite") const {
    sqlite3* opened = nullptr;
    EXPECT_EQ(sqlite3_open(absolute(name).c_str(), &opened), SQLITE_OK);
    EXPECT_EQ(sqlite3_exec(opened, sql.c_str(), nullptr, nullptr, nullptr), SQLITE_OK) << sqlite3_errmsg(opened);
    return {opened, sqlite3_close};
  }
  static Outcome unpack(const std::string& table, const std::string& column, const CommandLine& more = {}) {
    CommandLine arguments = {"unpack", "--db", "app.sqlite", "--table", table, "--column", column};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return run(arguments);
  }

  TemporaryDirectory _directory;
  fs::path _before = fs::current_path();
};

TEST_F(UnpackFiles, FilesAndStandardInput) {
  const std::string bytes = bytesOfHex(age).bytes;
  for (const char* form : {"X'0102'", " x'01 02'\n", "0x0102", "0X0102 "})
    EXPECT_EQ(bytesOfHex(form).bytes, "\1\2") << form;
  std::ofstream("value") << bytes;
  const std::string table = run({"unpack", "--hex", age}).out.substr(std::string("--hex").size());
  EXPECT_EQ(run({"unpack", "value"}).out, "value" + table);
  EXPECT_EQ(run({"unpack", "-"}, bytes).out, "<stdin>" + table);
  EXPECT_EQ(run({"unpack", "--hex", "-"}, age + "\n").out, "<stdin>" + table);
  EXPECT_EQ(run({"unpack", "-"}, "").out, "<stdin>: 0 bytes\n");
  EXPECT_TRUE(run({"unpack"}).err.starts_with("FILE, --hex or --db is required"));
  for (const char* unreadable : {"missing", "."}) EXPECT_EQ(run({"unpack", unreadable}).code, 2);
}

// Objects packed into a column and back, and the output of the tool.
TEST_F(UnpackFiles, RoundTripThroughAColumn) {
  const auto pack = packOf("nickname, age, Zeta");
  std::array<Person, 3> people;
  people[0].nickname = "Jo";
  people[0].age = -30;
  people[1].zeta = 0.1;
  people[2].nickname = "";
  const Database app = database("CREATE TABLE person (id INTEGER PRIMARY KEY, info BLOB)");
  for (const Person& person : people) {
    const std::string blob = hexText(*pack->packWithObject(&person));
    sqlite3_exec(app.get(), ("INSERT INTO person (info) VALUES (x'" + blob + "')").c_str(), nullptr, nullptr, nullptr);
  }
  sqlite3_stmt* select = nullptr;
  sqlite3_prepare_v2(app.get(), "SELECT info FROM person ORDER BY id", -1, &select, nullptr);
  for (const Person& person : people) {
    ASSERT_EQ(sqlite3_step(select), SQLITE_ROW);
    Person read;
    pack->unpackWithObject(&read, {static_cast<const char*>(sqlite3_column_blob(select, 0)),
                                   static_cast<std::size_t>(sqlite3_column_bytes(select, 0))});
    EXPECT_EQ(std::tie(read.nickname, read.age, read.zeta), std::tie(person.nickname, person.age, person.zeta));
  }
  sqlite3_finalize(select);

  const Outcome result = unpack("person", "info", {"--format=json"});
  EXPECT_EQ(result.code, 0) << result.err;
  EXPECT_EQ(result.err, "3 rows, 0 errors\n");
  const Json rows = Json::parse(result.out);
  for (std::size_t at = 0; at < people.size(); ++at) {
    Json values;
    for (const Json& record : rows.at(at).at("records")) values[record.at("property")] = record.at("value");
    EXPECT_EQ(values.at("age"), people[at].age);
    EXPECT_EQ(values.at("Zeta"), people[at].zeta);
    EXPECT_EQ(values.contains("nickname") ? OptionalString(values["nickname"]) : OptionalString(), people[at].nickname);
    EXPECT_EQ(rows[at].at("rowid"), at + 1);
  }
}

TEST_F(UnpackFiles, EveryKindOfCell) {
  const std::string blob = "x'" + hexText(bytesOfHex(age).bytes) + "'";
  database(
      "CREATE TABLE t (id INTEGER PRIMARY KEY, c); INSERT INTO t VALUES (12, 'text'), (9, x''), (-5, " + blob +
      "), (7, NULL), (10, 4), (11, 4.5), (13, x'0361'); CREATE VIEW v AS SELECT c FROM t WHERE id < 8;"
      "CREATE INDEX i ON t (c); CREATE TABLE w (k TEXT PRIMARY KEY, c) WITHOUT ROWID; INSERT INTO w VALUES ('k', x'')");
  const Outcome result = unpack("t", "c");
  EXPECT_EQ(result.code, 1);
  EXPECT_EQ(result.err, "7 rows, 4 errors\n");
  EXPECT_EQ(result.out,
            "rowid -5: 11 bytes\n"
            "  property  type           value  bytes at offset\n"
            "  age       signed 32-bit  30     4 at 7\n"
            "rowid 7: NULL\nrowid 9: 0 bytes\n"
            "rowid 10: integer, not a BLOB\nrowid 11: real, not a BLOB\nrowid 12: text, not a BLOB\n"
            "rowid 13: 2 bytes\n  stopped at byte 0 of 2: the value ends inside the name of a property\n");
  const Json rows = Json::parse(unpack("t", "c", {"--where", "id > 6", "--format=json"}).out);
  EXPECT_EQ(rows.at(0).dump(), R"({"row":1,"rowid":7,"storage":"null","size":0,"records":[],"stop":null})");
  EXPECT_EQ(rows.at(4).at("storage"), "text");
  const Json found = Json::parse(unpack("t", "c", {"--where", "c >= 'by the index'", "--format=json"}).out);
  EXPECT_EQ(found.at(0).at("rowid"), -5);
  EXPECT_EQ(unpack("w", "c").out, "row 1 (no rowid): 0 bytes\n");
  EXPECT_TRUE(unpack("v", "c").out.ends_with("row 2 (no rowid): NULL\n"));
  EXPECT_EQ(Json::parse(unpack("w", "c", {"--format=json"}).out).at(0).at("rowid"), Json());
}

TEST_F(UnpackFiles, NamesAreQuoted) {
  database(
      R"(CREATE TABLE "a""; DROP TABLE b; --" ("c""d' )e" BLOB); INSERT INTO "a""; DROP TABLE b; --" VALUES (x'');)"
      "CREATE TABLE b (c)");
  const Outcome result = unpack("a\"; DROP TABLE b; --", "c\"d' )e");
  EXPECT_EQ(result.out, "rowid 1: 0 bytes\n") << result.err;
  EXPECT_EQ(unpack("b", "c").code, 0);
  const std::tuple<const char*, const char*, const char*> missing[] = {{"nope", "c", "no such table: nope"},
                                                                       {"b", "nope", "no such column: nope"},
                                                                       {"b\x1b", "c", "no such table: b\\x1b"}};
  for (const auto& [table, column, message] : missing) {
    const Outcome refused = unpack(table, column);
    EXPECT_EQ(refused.code, 2);
    EXPECT_EQ(refused.err, "korvex-dao: app.sqlite: " + std::string(message) + "\n");
  }
}

TEST_F(UnpackFiles, ConditionsOnlyFilter) {
  database(
      "CREATE TABLE t (id INTEGER PRIMARY KEY, c); INSERT INTO t VALUES (1, x''), (2, x'');"
      "CREATE TABLE secret (a, b); INSERT INTO secret VALUES (2, x'')");
  const std::string before = contentOf("app.sqlite");
  for (const char* where : {"id = 2", "id = 2 -- the second", "id IN (SELECT a FROM secret)", "id = 2 OR 1 = 0"}) {
    EXPECT_EQ(unpack("t", "c", {"--where", where}).out, "rowid 2: 0 bytes\n") << where;
  }
  for (const char* where :
       {"", "1) LIMIT 1 /*", "1) THEN 1 END FROM t /*", "id = ?", "id = :x", "id = 1; DELETE FROM t",
        "1); DELETE FROM t; --", "1) UNION SELECT a, b FROM secret /*", "1) UNION SELECT a, b FROM secret WHERE (1",
        "EXISTS (DELETE FROM t RETURNING 1)", "id = \"1\"", "load_extension('x')", "1) -- )", "count(*)"}) {
    const Outcome result = unpack("t", "c", {"--where", where});
    EXPECT_EQ(result.code, 2) << where;
    EXPECT_EQ(result.out, "") << where;
    EXPECT_TRUE(result.err.starts_with("korvex-dao: app.sqlite: ")) << where;
  }
  EXPECT_EQ(contentOf("app.sqlite"), before);
  EXPECT_EQ(std::distance(fs::directory_iterator("."), fs::directory_iterator()), 1);
}

TEST_F(UnpackFiles, DatabasesThatCannotBeRead) {
  const auto refusal = [](const std::string& path) {
    const Outcome result = run({"unpack", "--db", path, "--table", "t", "--column", "c", "--format=json"});
    EXPECT_EQ(result.code, 2);
    EXPECT_EQ(result.out, "[]\n");
    return result.err.substr(std::string("korvex-dao: " + path + ": ").size());
  };
  std::ofstream("text") << "This is no database.";
  std::ofstream("empty");
  for (const char* missing : {"missing", "file:app.sqlite?mode=rwc", ":memory:"}) {
    EXPECT_EQ(refusal(missing), "No such file or directory\n");
  }
  EXPECT_EQ(refusal("."), "Is a directory\n");
  EXPECT_EQ(refusal(""), "Is a directory\n");
  EXPECT_EQ(refusal("text"), "file is not a database\n");
  EXPECT_EQ(refusal("empty"), "no such table: t\n");
  const std::string table = "CREATE TABLE t (c); INSERT INTO t VALUES (x'');";
  for (const char* strange : {"file:a?mode=memory#%41", ":memory:", "é '\"\n"}) {
    database(table, strange);
    EXPECT_EQ(run({"unpack", "--db", strange, "--table", "t", "--column", "c"}).out, "rowid 1: 0 bytes\n") << strange;
  }

  const Database busy = database(table + "BEGIN EXCLUSIVE", "busy");
  EXPECT_EQ(refusal("busy"), "database is locked\n");
  std::thread other([&busy] {
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    sqlite3_exec(busy.get(), "COMMIT", nullptr, nullptr, nullptr);
  });
  EXPECT_EQ(run({"unpack", "--db", "busy", "--table", "t", "--column", "c"}).code, 0);
  other.join();

  // What a crash leaves in the middle of a change.
  const Database crashing =
      database(table +
                   "PRAGMA cache_size = 1; PRAGMA synchronous = OFF; BEGIN;"
                   "CREATE TABLE u AS WITH RECURSIVE n (i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n"
                   " LIMIT 100) SELECT randomblob(4000) FROM n",
               "crashing");
  fs::copy("crashing", "crashed");
  fs::copy("crashing-journal", "crashed-journal");
  EXPECT_TRUE(refusal("crashed").starts_with("cannot be read without writing: "));
}

}  // namespace
}  // namespace korvex
