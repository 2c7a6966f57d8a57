// What calls give, and what is left behind when they fail.
#include <sqlite3.h>

#include <atomic>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <thread>

#include "korvex/sqlite/Database.h"
#include "tests/sqlite/Support.h"

namespace korvex {
namespace {

using namespace std::chrono_literals;

constexpr const char* notes = R"(
  <upgrade toVersion="initial">CREATE TABLE note (id INTEGER PRIMARY KEY, content UNIQUE, mark)</upgrade>
  <insert id="add" arguments="content">INSERT INTO note (content) VALUES (:content)</insert>
  <select id="contents" result="[string]">SELECT content FROM note ORDER BY id</select>
  <select id="count" result="int">SELECT count(*) FROM note</select>
  <select id="countInParallel" result="int" parallel="true">SELECT count(*) FROM note</select>
  <insert id="addAll" arguments="list" foreach="list.entry">INSERT INTO note (content) VALUES (:entry)</insert>
  <insert id="addOrMark" arguments="content">
    <try>INSERT INTO note (content) VALUES (:content)
      <except>UPDATE note SET mark = 1 WHERE content = :content</except></try>
  </insert>
  <select id="forever" result="int">
    WITH RECURSIVE n(x) AS (SELECT 1 UNION ALL SELECT x + 1 FROM n) SELECT count(*) FROM n
  </select>
)";

int countOf(Database& database) {
  const auto count = database.call<int>("count");
  EXPECT_TRUE(count) << textOf(count);
  return count ? *count : -1;
}

// ---------------------------------------------------------------------------------------------
// Values

TEST(DatabaseValues, AnyContentComesBackAndChangesNoStatement) {
  TestDatabase database(R"(
    <upgrade toVersion="initial">CREATE TABLE t (id INTEGER PRIMARY KEY, v, "odd ""name""")</upgrade>
    <insert id="add" arguments="v">INSERT INTO t (v) VALUES (:v)</insert>
    <select id="same" arguments="v" result="[int]">SELECT id FROM t WHERE v = :v</select>
    <select id="last" result="{}">SELECT v FROM t ORDER BY id DESC LIMIT 1</select>
    <update id="patch" arguments="pairs">UPDATE t <format prefix="SET " pairs="pairs" join=", "/> WHERE id = 1</update>
    <select id="rows" result="int" assignedTable="true">SELECT count(*) FROM @T</select>
    <select id="tables" result="int">SELECT count(*) FROM sqlite_schema WHERE type = 'table'</select>
  )");
  const std::string hostile[] = {
      "'", "\"", "''); DROP TABLE t; --", "?",        ":v",   "@T", "%{'*', a}", "/*", "--",
      ";", "\\", std::string("a\0b", 3),  "\xFF\xFE", "\xC3", "",   " ",         "\n", std::string(10'000'000, '\'')};
  for (const std::string& text : hostile) {
    for (const Value& value : {Value(text), Value::blob(text)}) {
      const auto added = database->call("add", {{"v", value}});
      ASSERT_TRUE(added) << textOf(added);
      EXPECT_TRUE(*database->call<Dictionary>("last")->find("v") == value) << text.substr(0, 40);
      EXPECT_EQ(database->call<std::vector<int>>("same", {{"v", value}})->size(), 1U) << text.substr(0, 40);
    }
    if (text.size() > 100) continue;
    // A name that is no column or table is refused, whatever it looks like.
    EXPECT_FALSE(database->call("patch", {{"pairs", Dictionary{{text, 1}}}})) << text.substr(0, 40);
    EXPECT_FALSE(database->call<int>("rows", {}, {.table = text})) << text.substr(0, 40);
  }
  EXPECT_EQ(database->call("patch", {{"pairs", Dictionary{{"odd \"name\"", 1}}}})->changes, 1);
  EXPECT_EQ(*database->call<int>("tables"), 2);  // the version's is the other one
}

TEST(DatabaseValues, AColumnFitsItsResultOrIsRefused) {
  struct Case {
    const char* result;
    const char* sql;
    Value expected;  // a list means: refused
  };
  const Value refused{ValueList{}};
  const Case cases[] = {
      {"int", "2147483647", 2147483647},
      {"int", "2147483648", refused},
      {"int", "3.0", 3},
      {"int", "3.5", refused},
      {"int", "'3'", refused},
      {"int", "NULL", nullptr},
      {"int", "1 WHERE 0", nullptr},
      {"int", "1 UNION SELECT 2", 1},
      {"long long", "9223372036854775807", INT64_MAX},
      {"long long", "-9223372036854775808.0", INT64_MIN},
      {"long long", "9223372036854775808.0", refused},
      {"long long", "x'00'", refused},
      {"bool", "7", 1},
      {"bool", "0.0", 0},
      {"bool", "'true'", refused},
      {"double", "1", 1.0},
      {"double", "'1'", refused},
      {"string", "'é'", "é"},
      {"string", "12", "12"},
      {"string", "2.0", "2.0"},
      {"string", "x'41'", refused},
      {"binary", "x'00FF'", Value::blob(std::string("\0\xFF", 2))},
      {"binary", "'A'", Value::blob("A")},
      {"binary", "1", refused},
  };
  for (const Case& c : cases) {
    const std::string select =
        std::string("<select id=\"s\" result=\"") + c.result + "\">SELECT " + c.sql + "</select>";
    TestDatabase database(select);
    const auto result = database->call("s");
    if (c.expected.list()) {
      EXPECT_FALSE(result) << select;
      EXPECT_TRUE(result || result.error().kind == DatabaseErrorKind::Result) << textOf(result);
    } else {
      EXPECT_TRUE(result && result->value == c.expected) << select << ": " << textOf(result);
    }
  }
}

TEST(DatabaseValues, RowsBecomeWhatTheCallerTakes) {
  TestDatabase database(R"(
    <select id="none" result="int">SELECT 1 WHERE 0</select>
    <select id="null" result="[int]">SELECT 1 UNION ALL SELECT NULL</select>
    <select id="same" result="{}">SELECT 1 AS a, 2 AS b, 3 AS a</select>
    <update id="nothing">UPDATE korvex_schema SET version = version WHERE 0</update>
  )");
  EXPECT_EQ(*database->call<std::optional<int>>("none"), std::nullopt);
  EXPECT_EQ(database->call<int>("none").error().kind, DatabaseErrorKind::Result);
  EXPECT_EQ(database->call<std::vector<int>>("none").error().kind, DatabaseErrorKind::Result);
  EXPECT_EQ((*database->call<std::vector<std::optional<int>>>("null")).back(), std::nullopt);
  EXPECT_EQ(database->call<std::vector<int>>("null").error().kind, DatabaseErrorKind::Result);
  EXPECT_EQ(database->call<int>("null").error().kind, DatabaseErrorKind::Result);
  EXPECT_EQ(database->call<int>("nothing").error().kind, DatabaseErrorKind::Result);
  const Dictionary row = *database->call<Dictionary>("same");
  EXPECT_EQ(row.size(), 2U);
  EXPECT_EQ(row.find("a")->integer(), 3);
}

class Mapped : public Model<Mapped> {
 public:
  static void describe(ModelDescription<Mapped>& model) {
    model.className("Mapped");
    model.property("small", &Mapped::small);
    model.property("text", &Mapped::text);
    model.property("bytes", &Mapped::bytes);
  }

  std::int8_t small = 0;
  std::string text;
  std::vector<std::byte> bytes;
};

TEST(DatabaseValues, PropertiesRefuseWhatTheyCannotHold) {
  const std::pair<const char*, bool> cases[] = {
      {"127 AS small", true}, {"128 AS small", false},    {"1.5 AS small", false}, {"'1' AS small", false},
      {"1.0 AS small", true}, {"x'41' AS text", false},   {"'A' AS text", true},   {"NULL AS text", true},
      {"1 AS bytes", false},  {"x'00FF' AS bytes", true}, {"'A' AS bytes", true},  {"1 AS nowhere", true},
  };
  for (const auto& [columns, fits] : cases) {
    TestDatabase database(std::string("<select id='m' result='Mapped'>SELECT ") + columns + "</select>");
    const auto result = database->call<Mapped>("m");
    EXPECT_EQ(bool(result), fits) << columns << ": " << textOf(result);
    EXPECT_TRUE(fits || result.error().kind == DatabaseErrorKind::Result) << columns << ": " << textOf(result);
  }
}

// ---------------------------------------------------------------------------------------------
// Errors

TEST(DatabaseErrors, AreOfTheirKindAtTheirPlace) {
  struct Case {
    const char* definition;
    DatabaseErrorKind kind;
    int sqliteCode;
    const char* text;
  };
  const Case cases[] = {
      {"<select id=\"m\" result=\"int\">SELECT 1; SELECT 2</select>", DatabaseErrorKind::SeveralStatements, 0,
       ": m: the SQL goes on"},
      {"<select id=\"m\" result=\"int\">SELECT 1; -- no more\n ;</select>", DatabaseErrorKind::Sqlite, 0, ""},
      {"<update id=\"m\">BEGIN</update>", DatabaseErrorKind::Forbidden, 0, ": m: a method cannot"},
      {"<update id=\"m\">ATTACH 'x' AS y</update>", DatabaseErrorKind::Forbidden, 0, ""},
      {"<select id=\"m\" result=\"int\">DELETE FROM korvex_schema RETURNING 1</select>", DatabaseErrorKind::WouldWrite,
       0, ""},
      {"<select id=\"m\" result=\"int\">SELECT 1 FROM\n  nowhere</select>", DatabaseErrorKind::Sqlite, SQLITE_ERROR,
       "m: no such table: nowhere"},
      {"<select id=\"m\" result=\"int\">SELECT \"nothing\"</select>", DatabaseErrorKind::Sqlite, SQLITE_ERROR,
       "test.xml:1:85: m: no such column"},
      {"<select id=\"m\" result=\"int\" arguments=\"$a\">SELECT :a</select>", DatabaseErrorKind::Call, 0, "'a'"},
      {"<select id=\"m\" result=\"Nobody\">SELECT 1</select>", DatabaseErrorKind::Result, 0, "'Nobody'"},
      {"<const m=\"\"/>", DatabaseErrorKind::Definitions, 0, "no method has the name 'm'"},
  };
  for (const Case& c : cases) {
    TestDatabase database(std::string("<upgrade toVersion=\"1\">SELECT 1</upgrade>") + c.definition);
    const auto result = database->call("m");
    if (*c.text == '\0' && c.kind == DatabaseErrorKind::Sqlite) {
      EXPECT_TRUE(result) << textOf(result);
      continue;
    }
    ASSERT_FALSE(result) << c.definition;
    EXPECT_EQ(result.error().kind, c.kind) << textOf(result);
    EXPECT_EQ(result.error().sqliteCode, c.sqliteCode) << textOf(result);
    std::string text = textOf(result);
    EXPECT_NE(text.find(c.text), std::string::npos) << text;
  }
}

TEST(DatabaseErrors, HoldNoValue) {
  TestDatabase database(R"(
    <upgrade toVersion="1">CREATE VIRTUAL TABLE words USING fts5(word)</upgrade>
    <select id="find" arguments="what" result="[string]">SELECT word FROM words WHERE words MATCH :what</select>
    <select id="parse" arguments="what" result="string">SELECT json_extract('{}', :what)</select>
  )");
  for (const char* method : {"find", "parse"}) {
    const auto result = database->call(method, {{"what", "\"secret"}});
    ASSERT_FALSE(result);
    EXPECT_EQ(textOf(result).find("secret"), std::string::npos) << textOf(result);
    EXPECT_EQ(result.error().sql.find("secret"), std::string::npos) << result.error().sql;
  }
}

TEST(DatabaseErrors, FilesThatCannotServeAreToldAtOnce) {
  TemporaryDirectory directory;
  const std::string path = (directory.path() / "x.sqlite").string();
  EXPECT_EQ(Database::open(path, {.create = false}).error().sqliteCode & 0xff, SQLITE_CANTOPEN);
  EXPECT_EQ(Database::open(directory.path().string()).error().sqliteCode & 0xff, SQLITE_CANTOPEN);
  std::ofstream(path) << "This is a text that was never a database, and it is longer than a header would be.";
  EXPECT_EQ(Database::open(path).error().sqliteCode, SQLITE_NOTADB);
}

TEST(DatabaseErrors, ACorruptPageIsAnErrorAndNothingElse) {
  TestDatabase database(notes);
  ValueList list;
  for (int i = 0; i < 2000; ++i) list.emplace_back("note " + std::to_string(i));
  ASSERT_TRUE(database->call("addAll", {{"list", list}}));
  database->suspend();  // writes the log into the file
  {
    std::fstream file(database.path(), std::ios::in | std::ios::out | std::ios::binary);
    file.seekp(3 * 4096);
    file << std::string(std::size_t{10} * 4096, '\xA5');
  }
  ASSERT_FALSE(database->resume());
  const auto result = database->call("contents");
  ASSERT_FALSE(result);
  EXPECT_EQ(result.error().sqliteCode & 0xff, SQLITE_CORRUPT) << textOf(result);
}

TEST(DatabaseErrors, AFullDiskTakesBackTheCallAndTheTransaction) {
  DatabaseOptions options;
  options.onConnection = [](sqlite3& connection) {
    sqlite3_exec(&connection, "PRAGMA max_page_count = 40", nullptr, nullptr, nullptr);
  };
  TestDatabase database(notes, options);
  const std::string large(1'000'000, 'x');
  const auto result = database->call("add", {{"content", large}});
  ASSERT_FALSE(result);
  EXPECT_EQ(result.error().sqliteCode, SQLITE_FULL);
  EXPECT_EQ(countOf(*database), 0);
  const Failure failure = database->transaction([&] {
    EXPECT_TRUE(database->call("add", {{"content", "small"}}));
    EXPECT_FALSE(database->call("add", {{"content", large}}));
    return true;
  });
  EXPECT_EQ(countOf(*database), failure ? 0 : 1);  // as a whole, and told
}

TEST(DatabaseErrors, AReadOnlyDatabaseRefusesChanges) {
  TestDatabase writer(notes);
  ASSERT_TRUE(writer->call("add", {{"content", "a"}}));
  auto opened = Database::open(writer.path(), {.readOnly = true});
  ASSERT_TRUE(opened) << textOf(opened);
  (*opened)->load(definitions(notes));
  EXPECT_EQ(countOf(**opened), 1);
  EXPECT_EQ((*opened)->call("add").error().kind, DatabaseErrorKind::WouldWrite);
  EXPECT_EQ((*opened)->upgrade()->kind, DatabaseErrorKind::WouldWrite);
}

TEST(DatabaseErrors, WhatIsEncryptedNeedsACipher) {
  TestDatabase database(R"(
    <pack as="p" properties="a, b" crypt="true"/>
    <upgrade toVersion="1">CREATE TABLE t (p)</upgrade>
    <insert id="add" arguments="v">INSERT INTO t (p) VALUES (:v.p)</insert>
  )");
  class Packed : public Model<Packed> {
   public:
    static void describe(ModelDescription<Packed>& model) {
      model.property("a", &Packed::a);
      model.property("b", &Packed::b);
    }
    int a = 1;
    int b = 2;
  };
  const auto result = database->call("add", {{"v", std::make_shared<Packed>()}});
  ASSERT_FALSE(result);
  EXPECT_EQ(result.error().kind, DatabaseErrorKind::Cipher);
}

// ---------------------------------------------------------------------------------------------
// Transactions

TEST(DatabaseTransactions, KeepAllOrNothing) {
  TestDatabase database(notes);
  EXPECT_FALSE(database->transaction([&] { return bool(database->call("add", {{"content", 1}})); }));
  EXPECT_FALSE(database->transaction([&] {
    EXPECT_TRUE(database->call("add", {{"content", 2}}));
    EXPECT_EQ(*database->call<int>("countInParallel"), 2);  // sees its own changes
    return false;
  }));
  EXPECT_THROW(static_cast<void>(database->transaction([&]() -> bool {
                 EXPECT_TRUE(database->call("add", {{"content", 2}}));
                 throw std::runtime_error("x");
               })),
               std::runtime_error);
  EXPECT_EQ(countOf(*database), 1);
  // A failure within it takes back its own call alone.
  EXPECT_FALSE(database->transaction([&] {
    EXPECT_TRUE(database->call("add", {{"content", 2}}));
    EXPECT_FALSE(database->call("addAll", {{"list", ValueList{3, 4, 1}}}));
    EXPECT_EQ(database->call("addOrMark", {{"content", 1}})->changes, 1);
    EXPECT_EQ(database->transaction([] { return true; })->kind, DatabaseErrorKind::Reentered);
    EXPECT_EQ(database->upgrade()->kind, DatabaseErrorKind::Reentered);
    return true;
  }));
  EXPECT_EQ(countOf(*database), 2);
}

TEST(DatabaseTransactions, AResumableForeachGoesOnAtTheEntryThatFailed) {
  const std::string text = std::string(notes) + R"(
    <insert id="import" arguments="list" foreach="list.entry" resumable="true">
      INSERT INTO note (content) VALUES (:entry)
    </insert>
    <delete id="remove" arguments="content">DELETE FROM note WHERE content = :content</delete>)";
  TestDatabase database(text);
  ASSERT_TRUE(database->call("add", {{"content", 250}}));
  ValueList list;
  for (int i = 0; i < 300; ++i) list.emplace_back(i);
  const auto failed = database->call("import", {{"list", list}});
  ASSERT_FALSE(failed);
  EXPECT_NE(textOf(failed).find("(entry 251 of 'list')"), std::string::npos) << textOf(failed);
  EXPECT_EQ(countOf(*database), 201);  // two transactions of 100 entries
  database.reopen();
  ASSERT_TRUE(database->call("remove", {{"content", 250}}));
  EXPECT_EQ(database->call("import", {{"list", list}})->changes, 100);
  EXPECT_EQ(countOf(*database), 300);
  EXPECT_FALSE(database->call("import", {{"list", list}})) << "a call that has ended begins anew";
  EXPECT_EQ(countOf(*database), 300);
}

TEST(DatabaseTransactions, InterruptedStepsDoNotGoOnAsOthers) {
  const auto methodWith = [](const std::string& step) {
    return std::string(notes) + R"(
      <insert id="two" arguments="content">
        <step resumable="true">INSERT INTO note (content) VALUES (:content)</step>
        <step resumable="true">INSERT INTO note (content) VALUES (:content)</step>)" +
           step + "</insert>";
  };
  TestDatabase database(methodWith({}));
  ASSERT_FALSE(database->call("two", {{"content", 1}}));  // the content is unique
  database->load(definitions(methodWith("<step>DELETE FROM note</step>")));
  EXPECT_EQ(database->call("two", {{"content", 1}}).error().kind, DatabaseErrorKind::Progress);
  EXPECT_EQ(countOf(*database), 1);
}

// ---------------------------------------------------------------------------------------------
// Upgrades

TEST(DatabaseUpgrades, RunOnceInOrderAndKeepTheirVersionExactly) {
  const std::string first = R"(
    <upgrade toVersion="0.1">INSERT INTO log VALUES ('0.1')</upgrade>
    <upgrade toVersion="initial">CREATE TABLE log (what TEXT); INSERT INTO log VALUES ('initial');</upgrade>
    <select id="log" result="[string]">SELECT what FROM log ORDER BY rowid</select>)";
  TestDatabase database(first);
  EXPECT_EQ(**database->version(), 0.1);
  database->load(
      definitions(first + "<upgrade toVersion=\"0.10000000000000002\">INSERT INTO log VALUES ('next')</upgrade>"));
  std::string steps;
  EXPECT_FALSE(database->upgrade([&](const UpgradeStep& step) { return steps += std::to_string(step.steps), true; }));
  EXPECT_EQ(steps, "1");
  EXPECT_EQ(**database->version(), 0.10000000000000002);
  EXPECT_FALSE(database->upgrade());
  EXPECT_EQ(*database->call<std::vector<std::string>>("log"), (std::vector<std::string>{"initial", "0.1", "next"}));
  database->load(definitions(first));
  EXPECT_EQ(database->upgrade()->kind, DatabaseErrorKind::Version) << "the file is newer than the app";
  EXPECT_EQ(database->adopt(3)->kind, DatabaseErrorKind::Version);
}

TEST(DatabaseUpgrades, AFileWithTablesOfItsOwnIsAdopted) {
  TemporaryDirectory directory;
  const std::string path = (directory.path() / "old.sqlite").string();
  sqlite3* raw = nullptr;
  sqlite3_open(path.c_str(), &raw);
  sqlite3_exec(raw, "CREATE TABLE person (id)", nullptr, nullptr, nullptr);
  sqlite3_close(raw);
  auto database = Database::open(path);
  ASSERT_TRUE(database);
  (*database)->load(definitions(R"(
    <upgrade toVersion="initial">CREATE TABLE person (id)</upgrade>
    <upgrade toVersion="2">ALTER TABLE person ADD COLUMN name</upgrade>)"));
  EXPECT_EQ((*database)->upgrade()->kind, DatabaseErrorKind::Version);
  EXPECT_FALSE((*database)->adopt(0));
  EXPECT_FALSE((*database)->upgrade());
  EXPECT_EQ(**(*database)->version(), 2.0);
}

TEST(DatabaseUpgrades, AFailureKeepsWhatResumableStepsHaveDone) {
  const std::string before = R"(<upgrade toVersion="initial">CREATE TABLE log (what TEXT UNIQUE)</upgrade>
    <select id="count" result="int">SELECT count(*) FROM log</select>
    <insert id="add">INSERT INTO log VALUES ('c')</insert><delete id="clear">DELETE FROM log WHERE what = 'c'</delete>)";
  const auto upgrade = [&](const char* resumable) {
    return before + "<upgrade toVersion=\"1\"><step>INSERT INTO log VALUES ('a')</step><step resumable=\"" + resumable +
           "\">INSERT INTO log VALUES ('b')</step><step>INSERT INTO log VALUES ('c')</step></upgrade>";
  };
  for (const auto& [resumable, kept] : {std::pair("false", 1), std::pair("true", 3)}) {
    TestDatabase database(before);
    ASSERT_TRUE(database->call("add"));
    database->load(definitions(upgrade(resumable)));
    const Failure failure = database->upgrade();
    ASSERT_TRUE(failure);
    EXPECT_NE(failure->text().find("upgrade to 1"), std::string::npos) << failure->text();
    EXPECT_EQ(countOf(*database), kept);
    EXPECT_EQ(**database->version(), 0.0);
    ASSERT_TRUE(database->call("clear"));
    const Failure again = database->upgrade();
    EXPECT_FALSE(again) << textOf(again);
    EXPECT_EQ(countOf(*database), 3);
  }
}

TEST(DatabaseUpgrades, TablesAreMadeAnewWithoutLosingTheirReferences) {
  const std::string before = R"(
    <upgrade toVersion="1">CREATE TABLE p (id INTEGER PRIMARY KEY);
      CREATE TABLE c (p REFERENCES p ON DELETE CASCADE); INSERT INTO p VALUES (1); INSERT INTO c VALUES (1)</upgrade>
    <select id="count" result="int">SELECT count(*) FROM c</select>
    <delete id="clear">DELETE FROM p</delete>)";
  TestDatabase database(before);
  database->load(definitions(before + R"(<upgrade toVersion="2">CREATE TABLE q (id INTEGER PRIMARY KEY);
    INSERT INTO q SELECT id FROM p; DROP TABLE p; ALTER TABLE q RENAME TO p</upgrade>)"));
  EXPECT_FALSE(database->upgrade());
  EXPECT_EQ(countOf(*database), 1);
  database->load(definitions(before + "<upgrade toVersion=\"3\">DELETE FROM p</upgrade>"));
  EXPECT_EQ(database->upgrade()->sqliteCode, SQLITE_CONSTRAINT_FOREIGNKEY);
  ASSERT_TRUE(database->call("clear"));
  EXPECT_EQ(countOf(*database), 0) << "foreign keys hold again";
}

// ---------------------------------------------------------------------------------------------
// Threads

TEST(DatabaseThreads, ThousandCallsOnEightThreadsLoseNothing) {
  TestDatabase database(notes, {.durable = false, .statementsKept = 3});
  std::atomic<int> failures = 0;
  std::vector<std::thread> threads;
  for (int thread = 0; thread < 8; ++thread) {
    threads.emplace_back([&, thread] {
      for (int i = 0; i < 42; ++i) {
        const Value content(thread * 1000 + i);
        if (i % 7 == 0) {
          if (database->transaction([&] { return bool(database->call("add", {{"content", content}})); })) ++failures;
        } else if (!database->call("add", {{"content", content}})) {
          ++failures;
        }
        const auto before = database->call<int>("countInParallel");
        const auto after = database->call<int>("count");
        if (!before || !after || *before > *after) ++failures;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(failures, 0);
  EXPECT_EQ(countOf(*database), 8 * 42);
}

TEST(DatabaseThreads, ACallEndsWhenItIsCancelledWhereverItIs) {
  TestDatabase database(notes);
  const auto cancelled = [&](auto call) {
    Cancellation cancellation;
    std::thread canceller([&] {
      std::this_thread::sleep_for(20ms);
      cancellation.cancel();
    });
    const Outcome<CallResult> result = call(cancellation);
    canceller.join();
    EXPECT_FALSE(result);
    EXPECT_TRUE(result || result.error().kind == DatabaseErrorKind::Cancelled) << textOf(result);
  };
  const auto run = [&](const Cancellation& cancellation) {
    return database->call("forever", {}, {.cancellation = &cancellation});
  };
  const auto add = [&](const Cancellation& cancellation) {
    return database->call("add", {{"content", 1}}, {.cancellation = &cancellation});
  };
  cancelled(run);
  // For another process's lock, and for another thread's turn.
  sqlite3* raw = nullptr;
  sqlite3_open(database.path().c_str(), &raw);
  sqlite3_exec(raw, "BEGIN IMMEDIATE", nullptr, nullptr, nullptr);
  cancelled(add);
  sqlite3_close(raw);
  EXPECT_FALSE(database->transaction([&] {
    std::thread([&] { cancelled(add); }).join();
    return true;
  }));
  EXPECT_EQ(countOf(*database), 0);
}

TEST(DatabaseThreads, ALockOfAnotherProcessIsWaitedForAndThenTold) {
  TestDatabase database(notes, {.busyTimeout = 30ms});
  sqlite3* raw = nullptr;
  sqlite3_open(database.path().c_str(), &raw);
  sqlite3_exec(raw, "BEGIN IMMEDIATE", nullptr, nullptr, nullptr);
  const auto begin = std::chrono::steady_clock::now();
  EXPECT_EQ(database->call("add").error().sqliteCode & 0xff, SQLITE_BUSY);
  EXPECT_GE(std::chrono::steady_clock::now() - begin, 25ms);
  EXPECT_EQ(countOf(*database), 0) << "reading goes on";
  sqlite3_close(raw);
  EXPECT_TRUE(database->call("add"));
}

bool isOpenHere(const std::string& path) {
  for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
    std::error_code error;
    if (std::filesystem::read_symlink(entry, error).string().starts_with(path)) return true;
  }
  return false;
}

TEST(DatabaseThreads, ASuspendedDatabaseLetsGoOfItsFile) {
  TestDatabase database(notes);
  std::thread running([&] { EXPECT_EQ(database->call("forever").error().kind, DatabaseErrorKind::Suspended); });
  std::thread inTransaction([&] {
    const Failure failure = database->transaction([&] {
      while (database->call("add")) std::this_thread::sleep_for(1ms);
      return true;
    });
    EXPECT_EQ(failure->kind, DatabaseErrorKind::Suspended);
  });
  std::this_thread::sleep_for(50ms);
  database->suspend();
  EXPECT_FALSE(isOpenHere(database.path()));
  running.join();
  inTransaction.join();
  EXPECT_EQ(database->call("add").error().kind, DatabaseErrorKind::Suspended);
  ASSERT_FALSE(database->resume());
  EXPECT_EQ(countOf(*database), 0);
  EXPECT_TRUE(database->call("add"));
}

TEST(DatabaseThreads, NothingWithinACallCallsAgain) {
  Database* self = nullptr;
  DatabaseOptions options;
  std::pair<Database**, DatabaseErrorKind> seen{&self, DatabaseErrorKind::Sqlite};
  options.onConnection = [&](sqlite3& connection) {
    const auto function = [](sqlite3_context* context, int, sqlite3_value**) {
      auto& [database, kind] = *static_cast<decltype(seen)*>(sqlite3_user_data(context));
      kind = (*database)->call("one").error().kind;
      sqlite3_result_int(context, 1);
    };
    sqlite3_create_function(&connection, "call_again", 0, SQLITE_UTF8, &seen, function, nullptr, nullptr);
  };
  TestDatabase database(R"(<select id="one" result="int">SELECT 1</select>
    <select id="again" result="int">SELECT call_again()</select>)",
                        options);
  self = &*database;
  EXPECT_EQ(*database->call<int>("again"), 1);
  EXPECT_EQ(seen.second, DatabaseErrorKind::Reentered);
}

TEST(DatabaseThreads, ACursorSeesOneMomentAndBlocksNoWriter) {
  TestDatabase database(notes);
  for (int i = 0; i < 5; ++i) ASSERT_TRUE(database->call("add", {{"content", i}}));
  {
    auto cursor = database->cursor("contents");
    ASSERT_TRUE(cursor) << textOf(cursor);
    int rows = 0;
    while (cursor->next()) {
      EXPECT_EQ(*cursor->row<std::string>(), std::to_string(rows++));
      ASSERT_TRUE(database->call("add", {{"content", 100 + rows}}));
    }
    EXPECT_FALSE(cursor->failure());
    EXPECT_EQ(rows, 5);
  }
  EXPECT_EQ(countOf(*database), 10);
  EXPECT_EQ(database->cursor("add").error().kind, DatabaseErrorKind::Result);
}

}  // namespace
}  // namespace korvex
