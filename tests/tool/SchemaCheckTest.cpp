// Definitions whose SQL is checked against a schema.
#include <gtest/gtest.h>
#include <sqlite3.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>

#include "tests/support/RunTool.h"

namespace korvex {
namespace {

constexpr const char* person =
    "<upgrade toVersion='1'>CREATE TABLE person (id INTEGER PRIMARY KEY, name TEXT, birthday TEXT)</upgrade>\n";

// Without "<stdin>:", for the definitions after the upgrade, whose lines count from 2.
std::string findings(const std::string& definitions, const CommandLine& options = {}, const char* upgrade = person) {
  CommandLine arguments = {"check", "--format", "text", "--schema", "upgrades", "-"};
  arguments.insert(arguments.end() - 1, options.begin(), options.end());
  std::istringstream lines(run(arguments, "<k>" + (upgrade + definitions) + "</k>").out);
  std::string result;
  for (std::string line; std::getline(lines, line);) {
    if (line.starts_with("<stdin>:")) result += line.substr(8) + '\n';
    if (line.starts_with("help: ")) result += line + '\n';
  }
  return result;
}

struct SchemaCase {
  const char* definitions;
  const char* findings;
};

constexpr SchemaCase schemaCases[] = {
    {"<select id='a' result='[string]'>SELECT name FROM person</select>", ""},
    {"<select id='a' result='[string]'>SELECT nam FROM person</select>",
     "2:41: error: no such column: nam [sql]\nhelp: did you mean 'name'?\n"},
    {"<select id='a' result='[string]'>SELECT name FROM person WHERE id &lt; 3 &amp; 1 AND nam = 1</select>",
     "2:86: error: no such column: nam [sql]\nhelp: did you mean 'name'?\n"},
    {"<select id='a' result='[string]'>\n <![CDATA[SELECT name FROM person WHERE id < 3 & 1 AND é = 1]]></select>",
     "3:56: error: no such column: é [sql]\n"},
    {"<select id='a' result='[string]' arguments='b, c'>SELECT name FROM person <where>\n"
     "<if false='b'>birthdayy = 1</if> <if true='c == null'>AND id = 3</if></where></select>",
     "3:15: error: no such column: birthdayy [sql]\nhelp: did you mean 'birthday'?\n"
     "2:1: note: in 2 of 4 variants, for example when b is false\n"},
    {"<select id='a' result='[string]'>SELECT @c FROM person</select>\n<sql id='c'>nam</sql>"
     "<select id='b' result='[string]' arguments='x'>SELECT @c FROM person<if true='x'> WHERE id = 1</if></select>",
     "3:13: error: no such column: nam [sql]\nhelp: did you mean 'name'?\n2:1: note: breaks method 'a'\n"
     "3:22: note: breaks method 'b' in all 2 variants\n"},
    {"<update id='a' arguments='d'>UPDATE person <format prefix='SET ' pairs='d' join=', '/></update>",
     "2:37: error: incomplete input [sql]\n2:1: note: in 1 of 2 variants, for example when d is empty\n"},
    {"<select id='a' result='[string]' assignedTable='true'>SELECT birthday FROM @T</select>", ""},
    {"<select id='a' result='[string]'>SELECT name FROM person; SELECT 1 ;</select>",
     "2:59: error: the SQL goes on after its first statement, which alone would run [sql]\n"
     "help: Make each statement a step of its own.\n"},
    {"<select id='a' result='[string]'>DELETE FROM person</select>",
     "2:34: error: a select cannot change data [sql]\nhelp: Make the method an insert, an update or a delete.\n"},
    {"<update id='a'>BEGIN</update>",
     "2:16: error: a method cannot begin or end transactions, or attach databases: every call is a transaction of its "
     "own [sql]\n"},
    {"<update id='a'><step>CREATE TEMP TABLE t (x)</step><step>UPDATE t SET x = 1, y = 2</step></update>"
     "<update id='b'>UPDATE t SET x = 1</update>",
     "2:78: error: no such column: y [sql]\n2:121: error: no such table: t [sql]\n"},
    {"<select id='a' result='[string]'>SELECT name FROM person WHERE id = :x</select>"
     "<select id='b' result='[string]'>SELECT 1 FROM persn</select>",
     "2:69: error: 'x' is no argument of method 'a': declare it in arguments [not-runnable]\n"
     "2:127: error: no such table: persn [sql]\nhelp: did you mean 'person'?\n"},
    {"<select id='a' result='[string]'>SELECT dist(1, 2) FROM person</select>",
     "2:41: error: no such function: dist [sql]\n"},
    {"<delete id='a' arguments='x'>DELETE FROM person <if true='x'>WHERE id = :x</if></delete>"
     "\n"
     "<!-- korvex: allow lost-where -->"
     "<delete id='c' arguments='x'>DELETE FROM person <if true='x'>WHERE id = :x</if></delete>"
     "<delete id='d'>DELETE FROM person</delete>"
     "<update id='e' arguments='x'>UPDATE person SET <if true='x'>name = (SELECT 1 WHERE :x),</if> id = 1</update>",
     "2:30: warning: without a condition, the statement changes all rows [lost-where]\n"
     "help: Write a <where onVoid=\"quit\">, or a condition that is always there.\n"
     "2:1: note: in 1 of 2 variants, for example when x is false\n"},
    {"<select id='a' result='[{}]'>SELECT (SELECT max(a.id, 2) FROM person a) x, id, name AS x FROM person</select>",
     "2:80: warning: two columns have the name 'x' [repeated-result-column]\n"
     "help: Remove one of them, or name it with AS.\n"},
    {"<select id='a' result='int'>SELECT count(*) FROM person WHERE name = \"foo\"</select>",
     "2:70: error: no such column: foo [sql]\nhelp: A name is in double quotes; write a text in single quotes.\n"},
    {"<sql id='b'>id, <!-- name --> nam</sql><select id='a' result='[{}]'>SELECT @b FROM person</select>",
     "2:31: error: no such column: nam [sql]\nhelp: did you mean 'name'?\n2:40: note: breaks method 'a'\n"},
    {"<map id='m' result='P'><result column='name' property='a'/>\n<result column='brthday' property='b'/></map>"
     "<select id='a' result=':m'>SELECT name FROM person</select>"
     "<select id='b' result=':m'>SELECT birthday FROM person</select>",
     "3:1: warning: no select with this map yields a column 'brthday' [unyielded-column]\n"
     "help: did you mean 'birthday'?\n"},
    {"<sql id='b'>id = :x AND :y</sql><const c='1'/>"
     "<select id='a' arguments='x, y, z' result='int'>SELECT 1 FROM person WHERE @b</select>",
     "2:33: warning: '@c' is never used [unused-definition]\n"
     "2:79: warning: argument 'z' is never used [unused-argument]\n"},
    {"<update id='a'> vacuum</update><delete id='b'>DELETE FROM person</delete>",
     "2:17: error: a method cannot begin or end transactions, or attach databases: every call is a transaction of its "
     "own [sql]\nhelp: Run VACUUM outside of methods.\n"},
    {"<select id='a' result='int' arguments='b'>SELECT 1 FROM person WHERE id NOT IN ( ) AND id IN <foreach"
     " collection='b' item='c' open='(' separator=',' close=')'>:c</foreach></select>",
     "2:77: warning: the list is empty [empty-list]\n2:1: note: in all 3 variants\n"},
    {"<upgrade toVersion='2'>CREATE TABLE used (x); CREATE TABLE seen (x); CREATE TABLE kept (x); CREATE VIEW v AS "
     "SELECT x FROM seen; CREATE TRIGGER t AFTER DELETE ON person BEGIN INSERT INTO kept VALUES (1); END; CREATE TABLE "
     "lost (x); CREATE VIRTUAL TABLE f USING fts5(x)</upgrade><select id='a' result='int'>SELECT count(*) FROM used, v"
     "</select><delete id='b'>DELETE FROM person</delete><select id='c' result='int'>SELECT 1 FROM f</select>",
     "2:223: warning: no method uses the table 'lost' [unused-table]\n"},
    {"<upgrade toVersion='2'>ALTER TABLE person ADD COLUMN name TEXT</upgrade>",
     "2:54: error: duplicate column name: name [sql]\n"},
    {"<upgrade toVersion='2'>CREATE TABLE a (x); CREATE TABLE b (y); ALTER TABLE a ADD COLUMN x</upgrade>"
     "<select id='c' result='int'>SELECT y FROM b, a</select>",
     "2:64: error: duplicate column name: x [sql]\n"},
    {"<upgrade toVersion='2'>INSERT INTO person (id) VALUES (1), (1)</upgrade>",
     "2:24: error: UNIQUE constraint failed: person.id [sql]\n"},
    {"<upgrade toVersion='2'><try>ALTER TABLE person ADD COLUMN name<except>SELECT 1</except></try></upgrade>", ""},
};

TEST(SchemaCheck, TellsWhatIsWrongWhereAndWhen) {
  for (const auto& [definitions, wanted] : schemaCases) EXPECT_EQ(findings(definitions), wanted) << definitions;
}

// The classes are those of the address book, read from its C++.
TEST(SchemaCheck, FindsUnknownClassesAndProperties) {
  const std::string pack = "<pack as='info' properties='notes, company'/>\n";
  const SchemaCase cases[] = {
      {"<map id='m' result='Persn'/><select id='a' result=':m'>SELECT 1 FROM person</select>",
       "3:21: warning: there is no model class 'Persn' [unknown-class]\nhelp: did you mean 'Person'?\n"},
      {"<select id='a' result='[Phon]'>SELECT 1 AS id FROM person</select>",
       "3:25: warning: there is no model class 'Phon' [unknown-class]\nhelp: did you mean 'Phone'?\n"},
      {"<map id='m' result='Person'><result column='id' property='persnId'/></map>"
       "<select id='a' result=':m'>SELECT id FROM person</select>",
       "3:59: warning: class 'Person' has no property 'persnId' [unknown-property]\nhelp: did you mean 'personId'?\n"},
      {"<crypt class='Person' property='note'/>",
       "3:33: warning: class 'Person' has no property 'note' [unknown-property]\nhelp: did you mean 'notes'?\n"},
      {"<crypt class='Company' property='name'/>",
       "3:15: warning: there is no model class 'Company' [unknown-class]\n"},
      {"<pack as='name' properties='notes, jobTitel'/>",
       "3:1: warning: the packed column 'name' has the type TEXT [pack-column]\n"
       "help: Declare the column as BLOB.\n"
       "3:36: warning: no model class has a property 'jobTitel' [unknown-property]\nhelp: did you mean 'jobTitle'?\n"},
      // By the argument's name, in a condition, a shared block, a loop and a path that occurs twice.
      {"<update id='a' arguments='newPerson'>UPDATE person SET name = :newPerson.givenNam, id = :newPerson.info"
       "<if true='newPerson.nicknam'>, birthday = @b</if></update><sql id='b'>:newPerson.birthdy</sql>",
       "3:74: warning: class 'Person' has no property 'givenNam' [unknown-property]\nhelp: did you mean 'givenName'?\n"
       "3:124: warning: class 'Person' has no property 'nicknam' [unknown-property]\nhelp: did you mean 'nickname'?\n"
       "3:185: warning: class 'Person' has no property 'birthdy' [unknown-property]\nhelp: did you mean 'birthday'?\n"},
      {"<select id='a' result='int' arguments='p'>SELECT 1 FROM person WHERE id IN (<foreach collection='p.phones'"
       " item='phone' separator=','>:phone.numbr</foreach>) AND :p.phones.count = 1</select>",
       "3:142: warning: class 'Phone' has no property 'numbr' [unknown-property]\nhelp: did you mean 'number'?\n"},
      // By what is read from the argument, unless it may be a dictionary.
      {"<update id='a' arguments='q'>UPDATE person SET name = :q.givenName, id = :q.personId, birthday = :q.birthdy"
       "</update>",
       "3:101: warning: class 'Person' has no property 'birthdy' [unknown-property]\nhelp: did you mean 'birthday'?\n"},
      {"<update id='a' arguments='q'>UPDATE person SET id = :q.personId, birthday = :q.day</update>", ""},
  };
  for (const auto& [definitions, wanted] : cases) {
    const CommandLine models = {"--models", KORVEX_SOURCE_DIR "/examples/addressbook/Models.h"};
    std::string told = findings(pack + definitions, models,
                                "<upgrade toVersion='1'>CREATE TABLE person (id INTEGER, "
                                "name TEXT, birthday TEXT, info BLOB)</upgrade>\n");
    EXPECT_EQ(told, wanted) << definitions;
  }
}

// A base class has no name in definitions; the app may assign any table.
TEST(SchemaCheck, FindsInheritedPropertiesAndAssignedTables) {
  const std::string path = testing::TempDir() + "/korvex_bases.h";
  std::ofstream(path)
      << R"(class A : Model<A> { property("a") }; class B : Model<B, A> { className("B") property("b") })";
  EXPECT_EQ(
      findings("<update id='u' arguments='b'>UPDATE person SET id = :b.a, name = :b.b, birthday = :b.third</update>",
               {"--models", path}),
      "2:86: warning: class 'B' has no property 'third' [unknown-property]\n");
  EXPECT_EQ(findings("<select id='s' result='int' assignedTable='true'>SELECT 1 FROM @T</select>"
                     "<upgrade toVersion='2'>CREATE TABLE other (x)</upgrade>"),
            "");
}

TEST(SchemaCheck, ReadsModels) {
  const std::string path = testing::TempDir() + "/korvex_models";
  const auto models = [&](const std::string& text) {
    std::ofstream(path) << text;
    const Outcome outcome = run({"models", path});
    std::string told =
        outcome.out + outcome.err.substr(std::min(outcome.err.find("korvex_models") + 15, outcome.err.size()));
    std::erase_if(told, [](char character) { return character == ' ' || character == '\n'; });
    return told;
  };
  const std::pair<std::string, std::string> cases[] = {
      {R"( {"classes": [{"name": "A", "properties": ["b", {"name": "c", "class": "A", "type": "object"}]}]})",
       R"({"classes":[{"name":"A","properties":["b",{"name":"c","class":"A"}]}]})"},
      {R"({"classes": [{"name": "A", b}]})", "1:28:notJSONfromhereon"},
      {R"({"classes": [{"properties": []}]})",
       R"(aclasswithoutaname:write{"classes":[{"name":"…","properties":[…]}]})"},
      {R"x(struct A : korvex::Model<app::A> { // Model<No> className("No")
        d(D& m) { m.className( "A" ); m.property("b", &A::b, "_b"); m.propertyWithoutField<int>("c"); /* m.property("d" */
        struct B : Model<B, app::A> { m.className("B"); m.property("e", '"', &B::e); puts("m.property(\"f\")"); };
        struct C : Model<C, C> {)x",
       R"({"classes":[{"name":"A","properties":["b","c"]},{"name":"B","properties":["b","c","e"]}]})"},
      {"/* Model<A", R"(nomodelclass:givetheJSONthatModelRegistry::json()prints,oraC++filewithclassName("…"))"},
  };
  for (const auto& [text, wanted] : cases) EXPECT_EQ(models(text), wanted) << text;
  EXPECT_NE(run({"models", testing::TempDir()}).err.find("no list of model classes can be read"), std::string::npos);
}

// Without a schema, and without false alarms for an engine with another notation.
TEST(SchemaCheck, FindsWhatNoEngineCanLoad) {
  const std::filesystem::path folder = std::filesystem::path(testing::TempDir()) / "korvex_set";
  std::filesystem::create_directories(folder);
  const std::string method = "<select id='a' result='int' arguments='b'>SELECT :b";
  const SchemaCase cases[] = {
      {"", ""},
      {" + :c", ":1:58: warning: 'c' is no argument of method 'a': declare it, or write one of b [not-runnable]\n"},
      {"<if true='c'>+ 1</if>",
       ":1:65: warning: condition: 'c' is no argument of method 'a': declare it, or write one of b "
       "[not-runnable]\n"},
      {"<if true='b &amp;&amp;'>+ 1</if>",
       ":1:65: warning: not an expression: the expression ends where a value is missing "
       "[expression-syntax]\n"},
      {" + @c", ":1:58: warning: '@c' is neither an sql block nor a constant [not-runnable]\n"},
      {" + @b", ""},  // where arguments are written so, references are another engine's
      {"</select><select id='n' result=''>",
       ":1:79: error: Result type of select method 'n' is undefined. ('result' is empty; write result=\"int\". A "
       "result "
       "is int, long long, bool, double, string, binary, {}, a class, or :map, and in [ ] a list of them) "
       "[missing-result]\n"},
      {"</select><sql id='s'>@s</sql><select id='d' arguments='e' result='int'>SELECT 1",
       ":1:76: warning: '@s' is part of itself: s → s [not-runnable]\n"
       ":1:110: warning: argument 'e' is never used [unused-argument]\n"},
      {"</select><select id='d' arguments='e' result='int'>SELECT 1",
       ":1:90: warning: argument 'e' is never used [unused-argument]\n"},
      {"</select><!-- korvex: allow unused-argument --><select id='d' arguments='e' result='int'>SELECT 1", ""},
  };
  for (const auto& [more, wanted] : cases) {
    std::ofstream(folder / "a.xml") << "<k>" + method + more + "</select></k>";
    const std::string out = run({"check", "--format", "short", folder.string()}).out;
    std::string found;
    std::istringstream lines(out);
    for (std::string line; std::getline(lines, line);) found += line.substr((folder / "a.xml").string().size()) + "\n";
    EXPECT_EQ(found, wanted) << more;
  }
  EXPECT_EQ(
      run({"check", "-"}, "<k><select id='a' result='int' arguments='b'>SELECT #{b} + #{c} + :c</select></k>").out, "");
}

// A definition that is left out is never silent.
TEST(SchemaCheck, ErrorsCannotBeDisabled) {
  const std::string wrong =
      "<!-- korvex: allow not-runnable --><select id='a' result='int' arguments='b'>SELECT :b, :c</select>";
  EXPECT_EQ(findings(wrong, {"--no-warn", "not-runnable"}),
            "2:89: error: 'c' is no argument of method 'a': declare it, or write one of b [not-runnable]\n");
  EXPECT_EQ(run({"check", "-"}, "<k>" + wrong + "</k>").out, "");
}

TEST(SchemaCheck, TakesWhatTheAppDeclares) {
  const std::string uses =
      "<upgrade toVersion='2'>CREATE VIRTUAL TABLE words USING icu (title, body, limit=3)</upgrade>"
      "<select id='a' result='[string]'>SELECT dist(1, 2) FROM person ORDER BY name COLLATE de</select>"
      "<select id='b' result='[string]'>SELECT title FROM words WHERE words MATCH 'x' ORDER BY rank</select>";
  EXPECT_EQ(findings(uses, {"--function", "dist/2", "--collation", "de", "--module", "icu"}), "");
  EXPECT_NE(findings(uses, {"--function", "dist/3", "--collation", "de", "--module", "icu"}), "");
  EXPECT_NE(findings(uses, {"--function", "dist/*", "--module", "icu"}), "");
  EXPECT_EQ(run({"check", "--schema", "upgrades", "--function", "dist", "-"}).code, ExitCodeTrouble);
}

// What documents may not do; each is stopped in bounded time and leaves no file.
TEST(SchemaCheck, RunsHostileUpgradesInMemoryAlone) {
  const std::filesystem::path file = std::filesystem::path(testing::TempDir()) / "korvex_hostile.sqlite";
  const std::string name = file.string();
  const std::string endless = "WITH RECURSIVE n(x) AS (SELECT 1 UNION ALL SELECT x + 1 FROM n) ";
  for (const std::string& sql :
       {"ATTACH '" + name + "' AS other", "VACUUM INTO '" + name + "'", "SELECT load_extension('" + name + "')",
        endless + "SELECT count(*) FROM n", endless + "INSERT INTO person (name) SELECT zeroblob(100000) FROM n"}) {
    EXPECT_NE(findings("<upgrade toVersion='2'>" + sql + "</upgrade>"), "") << sql;
  }
  EXPECT_EQ(findings("<upgrade toVersion='2'>PRAGMA temp_store_directory = '/nowhere'</upgrade>"), "");
  EXPECT_FALSE(std::filesystem::exists(file));
}

// A covering choice finds what one condition does, and what three do together.
TEST(SchemaCheck, CoversMoreVariantsThanCanBeTried) {
  std::string body;
  std::string arguments = "x";
  for (int number = 0; number < 24; ++number) {
    const std::string name = "a" + std::to_string(number);
    arguments += "," + name;
    body += "<if true='" + name + "'>AND id = " + (number == 20 ? "nope" : "1") + "</if>";
  }
  const std::string select = "<select id='s' arguments='" + arguments + "' result='int'>SELECT id FROM person";
  const std::string three = "<if true='a1'>(</if><if false='a2'>(</if><if true='a3'>))</if>";
  EXPECT_NE(findings(select + "<where>" + body + "</where></select>").find("error: no such column: nope [sql]"),
            std::string::npos);
  EXPECT_NE(findings(select + "<where>:x AND " + body + "</where>" + three + "</select>").find("syntax error [sql]"),
            std::string::npos);
  const std::string err =
      run({"check", "--schema", "upgrades", "-"}, "<k>" + select + "<where>" + body + "</where></select></k>").err;
  EXPECT_NE(err.find("1 method by a covering choice of variants\n"), std::string::npos) << err;
}

TEST(SchemaCheck, ReadsScriptsAndDatabases) {
  const std::filesystem::path folder = testing::TempDir();
  const std::string script = (folder / "korvex_schema.sql").string();
  const std::string database = (folder / "korvex_schema.sqlite").string();
  const std::string document =
      "<k><select id='a' result='[string]'>SELECT title, nope FROM book WHERE book MATCH 'x'</select></k>";
  const auto check = [&document](const std::string& schema) {
    return run({"check", "--format", "short", "--schema", schema, "-"}, document);
  };
  constexpr const char* schema =
      "PRAGMA foreign_keys=OFF; BEGIN; CREATE VIRTUAL TABLE book USING fts5(title, body);\nCREATE INDEX i ON "
      "x(y);";
  std::ofstream(script) << schema;
  EXPECT_EQ(check(script).out, script + ":2:19: error: no such table: main.x [sql]\n");
  std::ofstream(script) << "CREATE VIRTUAL TABLE book USING fts5(title, body); -- the only one";
  EXPECT_EQ(check(script).out, "<stdin>:1:51: error: no such column: nope [sql]\n");

  std::filesystem::remove(database);
  sqlite3* opened = nullptr;
  ASSERT_EQ(sqlite3_open(database.c_str(), &opened), SQLITE_OK);
  ASSERT_EQ(sqlite3_exec(opened, "PRAGMA journal_mode=WAL; CREATE VIRTUAL TABLE book USING fts5(title, body)", nullptr,
                         nullptr, nullptr),
            SQLITE_OK);
  EXPECT_EQ(check(database).out, "<stdin>:1:51: error: no such column: nope [sql]\n") << "with a log";
  sqlite3_close(opened);
  const auto before = std::filesystem::last_write_time(database);
  EXPECT_EQ(check(database).out, "<stdin>:1:51: error: no such column: nope [sql]\n");
  EXPECT_EQ(std::filesystem::last_write_time(database), before);
  EXPECT_FALSE(std::filesystem::exists(database + "-wal"));

  // A dump of many statements with a fault is searched no further than the statement.
  std::string dump = "CREATE TABLE book(title);\n";
  for (int row = 0; row < 20000; ++row) dump += "INSERT INTO book VALUES ('" + std::to_string(row) + "');\n";
  std::ofstream(script) << dump + "INSERT INTO bok VALUES (1);\n" + dump;
  EXPECT_EQ(check(script).out, script + ":20002:13: error: no such table: bok (did you mean 'book'?) [sql]\n");

  EXPECT_EQ(check((folder / "korvex_none").string()).code, ExitCodeTrouble);
  std::filesystem::resize_file(database, 60);
  EXPECT_EQ(check(database).code, ExitCodeTrouble);
}

TEST(SqlCommand, SaysWhatSQLiteRefuses) {
  const std::string document =
      "<k><upgrade toVersion='1'>CREATE TABLE p (id INTEGER PRIMARY KEY)</upgrade><update id='u' "
      "arguments='a, d'>"
      "<step>UPDATE p SET <if true='a'>x</if><if false='a'>id</if> = 1</step>"
      "<step>UPDATE p <format pairs='d' prefix='SET ' join=','/></step></update></k>";
  const Outcome outcome = run({"sql", "--schema", "upgrades", "-", "u"}, document);
  EXPECT_EQ(outcome.code, ExitCodeSomethingFound);
  EXPECT_EQ(outcome.out,
            "-- step 1\n-- 2 variants\n\n-- a is true\nUPDATE p SET x = 1\n-- error: no such column: x\n\n"
            "-- a is false\nUPDATE p SET id = 1\n-- step 2\n-- 2 variants\n\n-- d has 1 entry\nUPDATE p SET "
            "\"key\" = ?\n"
            "-- error: no such column: key\n\n-- d is empty\nUPDATE p\n-- error: incomplete input\n");
  EXPECT_EQ(run({"sql", "-", "v"}, document).code, ExitCodeTrouble);
}

TEST(SchemaCheck, HasNoFalseAlarmForStatementsOfEveryKind) {
  for (const char* file : {"/tests/verification/statements.xml", "/examples/addressbook.xml"}) {
    const Outcome outcome = run({"check", "--werror", "--warn", "undefined-map", "--schema", "upgrades",
                                 KORVEX_SOURCE_DIR + std::string(file)});
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.code, ExitCodeNothingFound);
  }
}

// Whether any finding is given, and whether one is on the line.
struct Found {
  bool any = false;
  bool onLine = false;
};

Found findingsAfter(const std::string& text, std::size_t changed) {
  const auto line = 1 + std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(changed), '\n');
  const std::string out =
      run({"check", "--format", "short", "--schema", "upgrades", "--warn", "undefined-map", "-"}, text).out;
  return {!out.empty(), ("\n" + out).find("\n<stdin>:" + std::to_string(line) + ":") != std::string::npos};
}

// Nearly every mistake has a finding at its line.
TEST(SchemaCheck, FindsSingleMistakes) {
  constexpr std::string_view arrow = " => ";
  std::ifstream file(KORVEX_SOURCE_DIR "/examples/addressbook.xml");
  const std::string book(std::istreambuf_iterator<char>(file), {});
  std::ifstream mistakes(KORVEX_SOURCE_DIR "/tests/verification/mistakes.txt");
  std::size_t count = 0;
  std::size_t found = 0;
  std::size_t onLine = 0;
  for (std::string line; std::getline(mistakes, line);) {
    if (line.starts_with('#')) continue;
    const std::size_t middle = line.find(arrow);
    ASSERT_NE(middle, std::string::npos) << line;
    const std::string right = line.substr(0, middle);
    const std::string wrong = line.substr(middle + arrow.size());
    const std::size_t at = book.find(right);
    ASSERT_TRUE(at != std::string::npos && book.find(right, at + 1) == std::string::npos) << line;
    const auto changed = std::mismatch(right.begin(), right.end(), wrong.begin(), wrong.end()).first - right.begin();
    const Found result =
        findingsAfter(std::string(book).replace(at, right.size(), wrong), at + static_cast<std::size_t>(changed));
    ++count;
    found += result.any ? 1U : 0U;
    onLine += result.onLine ? 1U : 0U;
    if (!result.onLine) std::cout << (result.any ? "elsewhere: " : "not found: ") << line << '\n';
  }
  EXPECT_GE(count, 60U);
  EXPECT_LE(count - found, 3U);
  EXPECT_LE(count - onLine, 5U);
}

}  // namespace
}  // namespace korvex
