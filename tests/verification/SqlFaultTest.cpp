// The places of faults in SQL, with the schema of persons and their phones.
#include <gtest/gtest.h>
#include <sqlite3.h>

#include <memory>

#include "verification/SqlFault.h"

namespace korvex::verification {
namespace {

constexpr const char* personSchema =
    "CREATE TABLE person(id INTEGER PRIMARY KEY, name TEXT, birthday TEXT);"
    "CREATE TABLE phone(id INTEGER PRIMARY KEY, person INTEGER, number TEXT);";

class SqlFaultTest : public testing::Test {
 protected:
  void SetUp() override {
    sqlite3* opened = nullptr;
    ASSERT_EQ(sqlite3_open(":memory:", &opened), SQLITE_OK);
    _database.reset(opened);
    ASSERT_EQ(sqlite3_exec(opened, personSchema, nullptr, nullptr, nullptr), SQLITE_OK);
  }
  std::unique_ptr<sqlite3, int (*)(sqlite3*)> _database{nullptr, sqlite3_close};
};

struct FaultCase {
  std::string_view marked;  // the piece at fault in «»
  std::string_view help;
};

constexpr FaultCase faultCases[] = {
    {"SELECT «p.birthdayy» FROM person p", "did you mean 'birthday'?"},
    {"SELECT name FROM person WHERE «nam» = :nam", "did you mean 'name'?"},
    {"SELECT persn.name, 'persn' /* persn */ FROM «persn»", "did you mean 'person'?"},
    {"SELECT * FROM person -- phon\nWHERE id IN (SELECT person FROM «\"phon\"»)", "did you mean 'phone'?"},
    {"SELECT * FROM «main.persn»", "did you mean 'person'?"},
    {"UPDATE person SET «nme» = :nme WHERE id = 1", "did you mean 'name'?"},
    {"INSERT INTO person(name, «[birthdy]») VALUES ('birthdy', 2)", "did you mean 'birthday'?"},
    {"SELECT «id» FROM person, phone ORDER BY number", ""},
    {"SELECT max(id), «lenght»(name) FROM person", ""},
    {"SELECT length(name), «length»(name, 2) FROM person", ""},
    {"SELECT count(*) FROM person WHERE «count»(*) > 1", ""},
    {"SELECT name FROM person ORDER BY name COLLATE «GERMAN»", ""},
    {"SELECT name FROM person INDEXED BY «byName»", ""},
    {"SELECT name FROM person ORDER BY 1«, 5»", ""},
    {"INSERT INTO phone(person, number) VALUES (1, 2«, 3»)", ""},
    {"SELECT id«, name» FROM person UNION SELECT id FROM phone", ""},
    {"SELECT name FROM person WHERE id IN (1, «2»", ""},
    {"SELECT name, «FROM» person", ""},
    {"SELECT name FROM person WHERE name = «'x»", ""},
};

std::string unmarked(std::string_view marked, std::size_t open, std::size_t close) {
  constexpr std::size_t mark = std::string_view("«").size();
  std::string sql(marked);
  return sql.erase(close, mark).erase(open, mark);
}

TEST_F(SqlFaultTest, PointsAtThePieceAtFault) {
  for (const auto& [marked, help] : faultCases) {
    SCOPED_TRACE(marked);
    const std::size_t open = marked.find("«");
    const std::size_t close = marked.find("»");
    const std::string sql = unmarked(marked, open, close);
    const std::optional<SqlFault> fault = faultOf(*_database, sql);
    ASSERT_TRUE(fault);
    EXPECT_EQ(sql.substr(fault->place.begin, fault->place.end - fault->place.begin),
              marked.substr(open + 2, close - open - 2))
        << fault->message;
    EXPECT_EQ(fault->place.begin, open) << fault->message;
    EXPECT_EQ(fault->help, help);
  }
}

TEST_F(SqlFaultTest, FindsNothingWrongWithWhatCanBePrepared) {
  for (const std::string_view sql : {"", "-- nothing", "SELECT \"name\", [id] FROM `person` WHERE name = 'it''s'"}) {
    EXPECT_FALSE(faultOf(*_database, sql)) << sql;
  }
}

}  // namespace
}  // namespace korvex::verification
