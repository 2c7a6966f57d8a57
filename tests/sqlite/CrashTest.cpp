// Whenever the power goes or the process is killed, the file opens again, has a version that was declared, and what
// goes on where it was runs nothing twice.
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <random>
#include <set>
#include <thread>

#include "tests/sqlite/FragileDisk.h"
#include "tests/sqlite/Support.h"

namespace korvex {
namespace {

// Everything that is done leaves a line in the log.
constexpr const char* work = R"(
  <upgrade toVersion="initial">
    <step>CREATE TABLE log (what TEXT)</step>
    <step>INSERT INTO log VALUES ('initial 2')</step>
    <step resumable="true">INSERT INTO log VALUES ('initial 3')</step>
    <step>INSERT INTO log VALUES ('initial 4')</step>
  </upgrade>
  <upgrade toVersion="1.5">
    <step resumable="true">INSERT INTO log VALUES ('1.5 1')</step>
    <step resumable="true">INSERT INTO log SELECT '1.5 2 ' || value FROM json_each('[1,2,3]')</step>
    <step>CREATE INDEX log_what ON log (what)</step>
  </upgrade>
  <upgrade toVersion="2"><try>INSERT INTO nowhere VALUES (1)
    <except>INSERT INTO log VALUES ('2')</except></try></upgrade>
  <insert id="import" arguments="list" foreach="list.entry" resumable="true">INSERT INTO log VALUES (:entry)</insert>
  <insert id="importAtOnce" arguments="list" foreach="list.entry">INSERT INTO log VALUES (:entry)</insert>
  <select id="log" result="[string]">SELECT what FROM log</select>
  <select id="imported" arguments="pattern" result="int">SELECT count(*) FROM log WHERE what GLOB :pattern</select>
  <select id="integrity" result="string">SELECT integrity_check FROM pragma_integrity_check</select>
)";
constexpr std::size_t entries = 120;  // two transactions when resumable
constexpr std::size_t linesOfUpgrades = 8;

Value listOf(const std::string& prefix) {
  ValueList list;
  for (std::size_t entry = 0; entry < entries; ++entry) list.emplace_back(prefix + std::to_string(entry));
  return Value(std::move(list));
}

int importedOf(Database& database, const char* pattern) {
  const auto count = database.call<int>("imported", {{"pattern", pattern}});
  return count ? *count : 0;  // no table yet
}

// Does what is still to be done. An import is called again unless all of it is there: an app that does not know whether
// a call came to its end looks.
bool finish(Database& database) {
  if (database.upgrade()) return false;
  static const Value resumable = listOf("r ");
  static const Value atOnce = listOf("o ");
  if (importedOf(database, "r *") != entries && !database.call("import", {{"list", resumable}})) return false;
  return importedOf(database, "o *") == entries || database.call("importAtOnce", {{"list", atOnce}});
}

// Of a file that was opened again.
void expectSound(Database& database) {
  const auto version = database.version();
  ASSERT_TRUE(version) << textOf(version);
  EXPECT_TRUE(!*version || **version == 0 || **version == 1.5 || **version == 2) << **version;
  EXPECT_EQ(*database.call<std::string>("integrity"), "ok");
  const int resumable = importedOf(database, "r *");
  EXPECT_TRUE(resumable % 100 == 0 || resumable == entries) << resumable;
  const int atOnce = importedOf(database, "o *");
  EXPECT_TRUE(atOnce == 0 || atOnce == entries) << atOnce;
}

void expectEverythingOnce(Database& database) {
  EXPECT_EQ(**database.version(), 2.0);
  const auto log = database.call<std::vector<std::string>>("log");
  ASSERT_TRUE(log) << textOf(log);
  EXPECT_EQ(log->size(), linesOfUpgrades + 2 * entries);
  EXPECT_EQ(std::set<std::string>(log->begin(), log->end()).size(), log->size());
}

class PowerLoss : public testing::Test {
 protected:
  std::unique_ptr<Database> open() {
    auto opened = Database::open("/work.sqlite", {.vfs = "fragile"});
    if (!opened) return nullptr;
    (*opened)->load(set);
    return std::move(*opened);
  }
  // Works until the power goes; whether everything was done before.
  bool workUntil(int operation) {
    disk.failAt(operation);
    const std::unique_ptr<Database> database = open();
    return database && finish(*database);
  }

  FragileDisk disk{"fragile"};
  std::shared_ptr<const DefinitionSet> set = definitions(work);
};

TEST_F(PowerLoss, AtAnyOperationLosesNothingThatWasDoneAndRunsNothingTwice) {
  ASSERT_TRUE(workUntil(-1));
  const int operations = disk.operations();
  ASSERT_GT(operations, 100);
  std::mt19937 random(1);
  for (int operation = 1; operation <= operations && !HasFailure(); ++operation) {
    disk.setImage({});
    const bool done = workUntil(operation);
    const auto crashed = disk.image();
    for (int damage = 0; damage < damageCount; ++damage) {
      SCOPED_TRACE("operation " + std::to_string(operation) + ", damage " + std::to_string(damage));
      disk.setImage(crashed);
      disk.recover(static_cast<Damage>(damage), static_cast<std::uint32_t>(random()));
      if (damage % 4 == 3) {  // and once more, while it recovers
        workUntil(1 + static_cast<int>(random() % 40));
        disk.recover(static_cast<Damage>(random() % damageCount), static_cast<std::uint32_t>(random()));
      }
      const auto database = open();
      ASSERT_TRUE(database);
      expectSound(*database);
      if (done) expectEverythingOnce(*database);
      ASSERT_TRUE(finish(*database));
      expectEverythingOnce(*database);
    }
  }
}

// Works in a process of its own, until it has done everything or is killed.
pid_t startWork(const std::string& path, const std::shared_ptr<const DefinitionSet>& set) {
  const pid_t child = fork();
  if (child != 0) return child;
  auto database = Database::open(path, {.durable = false});
  if (!database) _exit(1);
  (*database)->load(set);
  _exit(finish(**database) ? 0 : 1);
}

TEST(ProcessKilled, AtAnyMomentLeavesAFileThatGoesOn) {
  const TemporaryDirectory directory;
  const std::string path = (directory.path() / "work.sqlite").string();
  const auto set = definitions(work);
  std::mt19937 random(2);
  int killed = 0;
  for (int tries = 0; killed < 200 && tries < 2000 && !HasFailure(); ++tries) {
    const pid_t child = startWork(path, set);
    ASSERT_GT(child, 0);
    std::this_thread::sleep_for(std::chrono::microseconds(random() % 6'000));
    ::kill(child, SIGKILL);
    int status = 0;
    waitpid(child, &status, 0);
    if (WIFSIGNALED(status)) ++killed;
    EXPECT_TRUE(WIFSIGNALED(status) || WEXITSTATUS(status) == 0) << "the work failed";
    auto database = Database::open(path, {.durable = false});
    ASSERT_TRUE(database) << textOf(database);
    (*database)->load(set);
    expectSound(**database);
    if (WIFSIGNALED(status)) continue;
    expectEverythingOnce(**database);
    database->reset();
    for (const char* file : {"", "-wal", "-shm"}) std::filesystem::remove(path + file);
  }
  EXPECT_EQ(killed, 200);
}

}  // namespace
}  // namespace korvex
