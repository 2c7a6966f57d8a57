// Puts people of an address book into a new table of an SQLite file, what the app knows of their
// work packed into one column: pack_people DATABASE [DEFINITIONS]
#include <korvex/Definition.h>
#include <korvex/Document.h>
#include <korvex/ModelClass.h>
#include <korvex/QXDAOPack.h>
#include <sqlite3.h>

#include <algorithm>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

class Person : public korvex::Model<Person> {
 public:
  static void describe(korvex::ModelDescription<Person>& model) {
    model.property("givenName", &Person::givenName);
    model.property("company", &Person::company);
    model.property("jobTitle", &Person::jobTitle);
    model.property("website", &Person::website);
  }

  std::string givenName;
  korvex::OptionalString company;
  korvex::OptionalString jobTitle;
  korvex::OptionalString website;
};

namespace {

struct Close {
  void operator()(sqlite3* database) const { sqlite3_close(database); }
  void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};
using Database = std::unique_ptr<sqlite3, Close>;
using Statement = std::unique_ptr<sqlite3_stmt, Close>;

std::vector<Person> somePeople() {
  std::vector<Person> people(3);
  people[0].givenName = "Ada";
  people[0].company = "Analytical Engines";
  people[0].jobTitle = "Programmer";
  people[0].website = "https://ada.example";
  people[1].givenName = "René";
  people[1].company = "Café Brûlé";
  people[2].givenName = "Grace";
  return people;
}

// The pack of a column; null when no definition is one.
const korvex::QXDAOPack* packOf(const std::vector<korvex::Definition>& definitions, std::string_view column) {
  for (const korvex::Definition& definition : definitions) {
    const auto* pack = korvex::QXDAOElementCast<korvex::QXDAOPack>(definition.element.get());
    if (pack && pack->column() == column) return pack;
  }
  return nullptr;
}

Database opened(const char* path) {
  sqlite3* database = nullptr;
  sqlite3_open(path, &database);
  return Database(database);
}

bool insert(sqlite3* database, const Person& person, const korvex::QXDAOPack& info) {
  sqlite3_stmt* prepared = nullptr;
  sqlite3_prepare_v2(database, "INSERT INTO person (given_name, info) VALUES (?, ?)", -1, &prepared, nullptr);
  const Statement statement(prepared);
  const auto bytes = info.packWithObject(&person);
  if (!statement || !bytes) return false;
  sqlite3_bind_text64(prepared, 1, person.givenName.data(), person.givenName.size(), SQLITE_STATIC, SQLITE_UTF8);
  sqlite3_bind_blob64(prepared, 2, bytes->data(), bytes->size(), SQLITE_STATIC);
  return sqlite3_step(prepared) == SQLITE_DONE;
}

bool store(sqlite3* database, const std::vector<Person>& people, const korvex::QXDAOPack& info) {
  constexpr const char* table = "CREATE TABLE person (id INTEGER PRIMARY KEY, given_name TEXT, info BLOB)";
  if (sqlite3_exec(database, table, nullptr, nullptr, nullptr) != SQLITE_OK) return false;
  return std::all_of(people.begin(), people.end(),
                     [&](const Person& person) { return insert(database, person, info); });
}

int fail(std::string_view message) {
  std::cerr << "pack_people: " << message << '\n';
  return 2;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2) return fail("usage: pack_people DATABASE [DEFINITIONS]");
  const std::string path = argc > 2 ? argv[2] : "examples/addressbook.xml";
  const auto read = korvex::Document::fromFile(path);
  if (!read.document) return fail(path + ": " + read.error->message);
  const auto definitions = korvex::loadDefinitions(*read.document);
  const korvex::QXDAOPack* info = packOf(definitions, "info");
  if (!info) return fail(path + ": no pack for the column info");
  const Database database = opened(argv[1]);
  if (!store(database.get(), somePeople(), *info))
    return fail(argv[1] + std::string(": ") + sqlite3_errmsg(database.get()));
}
