// The engine beside sqlite3 by hand: the same statements on the same file, prepared once and kept.
#include <sqlite3.h>
#include <unistd.h>

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "benchmarks/Measuring.h"
#include "korvex/DefinitionSet.h"
#include "korvex/sqlite/Database.h"

namespace korvex::benchmarks {
namespace {

constexpr const char* definitions = R"(<korvex>
  <upgrade toVersion="initial">
    CREATE TABLE person (id INTEGER PRIMARY KEY, name TEXT, age INTEGER, city TEXT, rating REAL);
    CREATE TABLE entry (id INTEGER PRIMARY KEY, name TEXT, age INTEGER);
    CREATE INDEX person_age ON person (age)
  </upgrade>
  <insert id="addPerson" arguments="name, age, city, rating">
    INSERT INTO person (name, age, city, rating) VALUES (:name, :age, :city, :rating)
  </insert>
  <insert id="addEntry" arguments="name, age">INSERT INTO entry (name, age) VALUES (:name, :age)</insert>
  <delete id="clearEntries">DELETE FROM entry</delete>
  <select id="find" arguments="age, city, name" result="[long long]">
    SELECT id FROM person
    <where>
      <if true="age != null">AND age = :age</if>
      <if true="city != null">AND city = :city</if>
      <if true="name != null">AND name = :name</if>
    </where>
  </select>
  <select id="twenty" arguments="age" result="[BenchmarkPerson]">
    SELECT id, name, age, city, rating FROM person WHERE age >= :age ORDER BY age LIMIT 20
  </select>
</korvex>)";

constexpr const char* findSql = "SELECT id FROM person WHERE age = ? AND city = ? AND name = ?";
constexpr const char* twentySql = "SELECT id, name, age, city, rating FROM person WHERE age >= ? ORDER BY age LIMIT 20";
constexpr const char* addSql = "INSERT INTO entry (name, age) VALUES (?, ?)";
constexpr int people = 2000;

class BenchmarkPerson : public Model<BenchmarkPerson> {
 public:
  static void describe(ModelDescription<BenchmarkPerson>& model) {
    model.className("BenchmarkPerson");
    model.property("id", &BenchmarkPerson::id);
    model.property("name", &BenchmarkPerson::name);
    model.property("age", &BenchmarkPerson::age);
    model.property("city", &BenchmarkPerson::city);
    model.property("rating", &BenchmarkPerson::rating);
  }

  std::int64_t id = 0;
  std::string name;
  std::int32_t age = 0;
  std::string city;
  double rating = 0;
};

std::string nameOf(int person) { return "A person of the number " + std::to_string(person); }
std::string cityOf(int person) { return "City " + std::to_string(person % 10); }

struct Close {
  void operator()(sqlite3* database) const { sqlite3_close(database); }
  void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};
using Handle = std::unique_ptr<sqlite3, Close>;
using Prepared = std::unique_ptr<sqlite3_stmt, Close>;

// One file, opened by the engine and by hand.
class Peers {
 public:
  Peers() : _path(std::filesystem::temp_directory_path() / ("korvex-benchmark-" + std::to_string(getpid()))) {
    remove();
    const Document::Result read = Document::fromBytes(definitions);
    DefinitionSetBuilder builder;
    builder.add("benchmark", loadDefinitions(*read.document));
    DefinitionSetBuilder::Result built = std::move(builder).build();
    require(built.set != nullptr, "the engine's definitions are refused");
    auto opened = Database::open(_path.string(), {.durable = false});
    require(bool(opened), "the engine's file cannot be opened");
    database = std::move(*opened);
    database->load(built.set);
    require(!database->upgrade(), "the engine's tables cannot be made");
    fill();
    openByHand();
  }
  Peers(const Peers&) = delete;
  Peers& operator=(const Peers&) = delete;
  ~Peers() {
    find.reset(), twenty.reset(), add.reset();
    hand.reset();
    database.reset();
    remove();
  }

  void run(const char* sql) const {
    require(sqlite3_exec(hand.get(), sql, nullptr, nullptr, nullptr) == SQLITE_OK, sql);
  }

  std::unique_ptr<Database> database;
  Handle hand;
  Prepared find;
  Prepared twenty;
  Prepared add;

 private:
  void fill() {
    const Failure failure = database->transaction([&] {
      for (int person = 0; person < people; ++person) {
        const Arguments arguments{
            {"name", nameOf(person)}, {"age", person % 500}, {"city", cityOf(person)}, {"rating", person / 3.0}};
        if (!database->call("addPerson", arguments)) return false;
      }
      return true;
    });
    require(!failure, "the engine's file cannot be filled");
  }

  Prepared prepared(const char* sql) const {
    sqlite3_stmt* statement = nullptr;
    require(sqlite3_prepare_v3(hand.get(), sql, -1, SQLITE_PREPARE_PERSISTENT, &statement, nullptr) == SQLITE_OK, sql);
    return Prepared(statement);
  }

  // With the engine's own settings: no mutex, for one thread uses it, and the same journal.
  void openByHand() {
    sqlite3* handle = nullptr;
    sqlite3_open_v2(_path.c_str(), &handle, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX, nullptr);
    hand.reset(handle);
    run("PRAGMA synchronous=NORMAL; PRAGMA foreign_keys=ON");
    find = prepared(findSql);
    twenty = prepared(twentySql);
    add = prepared(addSql);
  }

  void remove() const {
    for (const char* suffix : {"", "-wal", "-shm"}) std::filesystem::remove(_path.string() + suffix);
  }

  std::filesystem::path _path;
};

Peers& peers() {
  static Peers peers;
  return peers;
}

std::vector<std::int64_t> findByHand(const std::string& city, const std::string& name) {
  sqlite3_stmt* statement = peers().find.get();
  sqlite3_bind_int(statement, 1, 7);
  sqlite3_bind_text64(statement, 2, city.data(), city.size(), SQLITE_STATIC, SQLITE_UTF8);
  sqlite3_bind_text64(statement, 3, name.data(), name.size(), SQLITE_STATIC, SQLITE_UTF8);
  std::vector<std::int64_t> ids;
  while (sqlite3_step(statement) == SQLITE_ROW) ids.push_back(sqlite3_column_int64(statement, 0));
  sqlite3_reset(statement);
  return ids;
}

std::vector<std::int64_t> findByEngine(const std::string& city, const std::string& name) {
  auto ids = peers().database->call<std::vector<std::int64_t>>("find", {{"age", 7}, {"city", city}, {"name", name}});
  require(bool(ids), "the engine's select fails");
  return std::move(*ids);
}

std::string textColumn(sqlite3_stmt* statement, int column) {
  const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement, column));
  return {text, static_cast<std::size_t>(sqlite3_column_bytes(statement, column))};
}

std::vector<BenchmarkPerson> twentyByHand() {
  sqlite3_stmt* statement = peers().twenty.get();
  sqlite3_bind_int(statement, 1, 7);
  std::vector<BenchmarkPerson> found;
  while (sqlite3_step(statement) == SQLITE_ROW) {
    BenchmarkPerson& person = found.emplace_back();
    person.id = sqlite3_column_int64(statement, 0);
    person.name = textColumn(statement, 1);
    person.age = sqlite3_column_int(statement, 2);
    person.city = textColumn(statement, 3);
    person.rating = sqlite3_column_double(statement, 4);
  }
  sqlite3_reset(statement);
  return found;
}

std::vector<BenchmarkPerson> twentyByEngine() {
  auto found = peers().database->call<std::vector<BenchmarkPerson>>("twenty", {{"age", 7}});
  require(bool(found), "the engine's objects fail");
  return std::move(*found);
}

void addByHand() {
  peers().run("BEGIN IMMEDIATE");
  sqlite3_stmt* statement = peers().add.get();
  for (int entry = 0; entry < 1000; ++entry) {
    const std::string name = nameOf(entry);
    sqlite3_bind_text64(statement, 1, name.data(), name.size(), SQLITE_STATIC, SQLITE_UTF8);
    sqlite3_bind_int(statement, 2, entry);
    require(sqlite3_step(statement) == SQLITE_DONE, "an insert by hand fails");
    sqlite3_reset(statement);
  }
  peers().run("COMMIT");
}

void addByEngine() {
  Database& database = *peers().database;
  const Failure failure = database.transaction([&] {
    for (int entry = 0; entry < 1000; ++entry) {
      if (!database.call("addEntry", {{"name", nameOf(entry)}, {"age", entry}})) return false;
    }
    return true;
  });
  require(!failure, "the engine's inserts fail");
}

template <typename Work>
void measure(benchmark::State& state, Work work) {
  for ([[maybe_unused]] auto iteration : state) benchmark::DoNotOptimize(work());
}

// The entries are removed outside the clock.
template <typename Work>
void measureInserts(benchmark::State& state, Work work) {
  for ([[maybe_unused]] auto iteration : state) {
    work();
    state.PauseTiming();
    peers().run("DELETE FROM entry");
    state.ResumeTiming();
  }
}

}  // namespace

void registerEngine() {
  static const std::string city = cityOf(507);
  static const std::string name = nameOf(507);
  require(findByHand(city, name) == findByEngine(city, name) && findByHand(city, name).size() == 1,
          "the engine finds others than sqlite3 does");
  require(twentyByEngine().size() == 20 && twentyByEngine().back().name == twentyByHand().back().name,
          "the engine's objects are others than those by hand");
  benchmark::RegisterBenchmark(
      "engine/select", [](benchmark::State& state) { measure(state, [] { return findByEngine(city, name); }); });
  benchmark::RegisterBenchmark("hand/select",
                               [](benchmark::State& state) { measure(state, [] { return findByHand(city, name); }); });
  benchmark::RegisterBenchmark("engine/selectInTransaction", [](benchmark::State& state) {
    const Failure failure = peers().database->transaction([&] {
      measure(state, [] { return findByEngine(city, name); });
      return true;
    });
    require(!failure, "the engine's transaction fails");
  });
  benchmark::RegisterBenchmark("hand/selectInTransaction", [](benchmark::State& state) {
    peers().run("BEGIN");
    measure(state, [] { return findByHand(city, name); });
    peers().run("COMMIT");
  });
  benchmark::RegisterBenchmark("engine/objects", [](benchmark::State& state) { measure(state, twentyByEngine); });
  benchmark::RegisterBenchmark("hand/objects", [](benchmark::State& state) { measure(state, twentyByHand); });
  benchmark::RegisterBenchmark("engine/inserts", [](benchmark::State& state) { measureInserts(state, addByEngine); });
  benchmark::RegisterBenchmark("hand/inserts", [](benchmark::State& state) { measureInserts(state, addByHand); });
}

}  // namespace korvex::benchmarks
