// The address book, run: addressbook DATABASE [DEFINITIONS] makes the database, puts people into it, and calls every
// method of examples/addressbook.xml.
#include <korvex/Definition.h>
#include <korvex/DefinitionSet.h>
#include <korvex/Document.h>
#include <korvex/sqlite/Database.h>

#include <cstdlib>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Models.h"

namespace {

using korvex::Arguments;
using korvex::Dictionary;
using korvex::Value;
using korvex::ValueList;

[[noreturn]] void fail(const std::string& message) {
  std::cerr << "addressbook: " << message << '\n';
  std::exit(2);
}

template <typename T>
T valueOf(korvex::Outcome<T> outcome) {
  if (!outcome) fail(outcome.error().text());
  return std::move(*outcome);
}

// Shows where encryption comes in, and is none: an app takes the one of its platform.
class Rotation final : public korvex::Cipher {
 public:
  std::optional<std::string> encrypt(std::string_view plain) override { return rotated(plain, 13); }
  std::optional<std::string> decrypt(std::string_view stored) override { return rotated(stored, -13); }

 private:
  static std::string rotated(std::string_view bytes, int by) {
    std::string result(bytes);
    for (char& byte : result) byte = static_cast<char>(byte + by);
    return result;
  }
};

std::shared_ptr<const korvex::DefinitionSet> setOf(const std::string& path) {
  const auto read = korvex::Document::fromFile(path);
  if (!read.document) fail(path + ": " + read.error->message);
  korvex::DefinitionSetBuilder builder;
  builder.add(path, korvex::loadDefinitions(*read.document));
  auto built = std::move(builder).build();
  if (built.set) return built.set;
  const korvex::DefinitionError& error = built.errors.front();
  fail(path + ':' + std::to_string(error.position.line) + ": " + error.message);
}

std::shared_ptr<Person> person(std::int64_t id, const char* givenName, const char* familyName, double birthday) {
  auto person = std::make_shared<Person>();
  person->personId = id;
  person->givenName = givenName;
  person->familyName = familyName;
  person->birthday = birthday;
  return person;
}

std::shared_ptr<Phone> phone(std::int64_t personId, const char* kind, const char* number) {
  auto phone = std::make_shared<Phone>();
  phone->personId = personId;
  phone->kind = kind;
  phone->number = number;
  return phone;
}

// What is shown in the README: from a file to objects.
korvex::Failure firstSteps(const std::string& path, std::shared_ptr<const korvex::DefinitionSet> set) {
  auto opened = korvex::Database::open(path);
  if (!opened) return opened.error();
  korvex::Database& database = **opened;
  database.load(std::move(set), models());
  if (auto failure = database.upgrade()) return failure;

  const auto added = database.call("addPhone", {{"phone", phone(7, "home", "555 0107")}});
  if (!added) return added.error();
  const auto phones = database.call<std::vector<Phone>>("phonesOfPerson", {{"personId", 7}});
  if (!phones) return phones.error();
  for (const Phone& each : *phones) std::cout << each.kind << ' ' << each.number << '\n';
  return std::nullopt;
}

// Calls methods and prints what comes of it, a line each.
class AddressBook {
 public:
  explicit AddressBook(korvex::Database& database) : _database(database) {}

  void change(std::string_view method, const Arguments& arguments = {}) {
    print(method) << valueOf(_database.call(method, arguments)).changes << " changed\n";
  }
  template <typename T>
  void showValue(std::string_view method, const Arguments& arguments = {}, std::string_view table = {}) {
    const auto value = valueOf(_database.call<std::optional<T>>(method, arguments, {.table = table}));
    if (value) {
      print(method) << *value << '\n';
    } else {
      print(method) << "nothing\n";
    }
  }
  template <typename T>
  void showList(std::string_view method, const Arguments& arguments = {}) {
    print(method);
    for (const T& entry : valueOf(_database.call<std::vector<T>>(method, arguments))) show(entry);
    std::cout << '\n';
  }

 private:
  static std::ostream& print(std::string_view method) { return std::cout << method << ": "; }
  static void show(const Person& person) { std::cout << person.givenName << ' ' << person.familyName << "; "; }
  static void show(const Phone& phone) { std::cout << phone.kind << ' ' << phone.number << "; "; }
  static void show(const Dictionary& row) { std::cout << row.size() << " columns; "; }
  template <typename T>
  static void show(const T& value) {
    std::cout << value << "; ";
  }

  korvex::Database& _database;
};

void fillBook(korvex::Database& database, AddressBook& book) {
  const auto ada = person(1, "Ada", "Lovelace", 2393451.5);
  ada->company = "Analytical Engines";
  ada->jobTitle = "Programmer";
  ada->website = "https://ada.example";
  ada->doorCode = "1815";
  const auto rene = person(2, "René", "Brûlé", 2440000.5);
  rene->company = "Café Brûlé";
  // Several calls in one transaction: all people are there, or none.
  const auto failure = database.transaction([&] {
    for (const auto& one : {ada, rene, person(3, "Grace", "Hopper", 2417555.5), person(4, "Alan", "Turing", 2419211.5),
                            person(5, "Nobody", "", 0)}) {
      if (!database.call("savePerson", {{"person", one}})) return false;
    }
    return true;
  });
  if (failure) fail(failure->text());

  book.change("addPhone", {{"phone", phone(1, "home", "555 0100")}});
  book.change("importPhones", {{"phones", std::vector{phone(1, "mobile", "555 0101"), phone(2, "work", "555 0102")}}});
  book.change("placeGroup", {{"title", "friends"}, {"position", 1}});
  book.change("placeGroup", {{"title", "friends"}, {"position", 2}});
  book.change("rememberViewed", {{"persons", ValueList{Dictionary{{"seenAt", 2.5}, {"personId", 2}},
                                                       Dictionary{{"seenAt", 1.5}, {"personId", 1}}}}});
  ada->notes = "prefers numbers";
  book.change("updatePerson", {{"person", ada}});
  book.change("patchPerson", {{"personId", 1}, {"changes", Dictionary{{"nickname", "Countess"}}}});
}

void readBook(korvex::Database& database, AddressBook& book) {
  book.showValue<int>("countPersons");
  book.showValue<std::int64_t>("newestPersonId");
  book.showValue<bool>("hasPhone", {{"personId", 3}});
  book.showValue<double>("phonesPerPerson");
  book.showValue<std::string>("nameOfPerson", {{"personId", 2}});
  book.showValue<std::string>("photoOfPerson", {{"personId", 2}});
  book.showValue<int>("countRows", {}, "person_group");
  book.showList<std::string>("tagTitles");
  book.showList<std::int64_t>("taggedPersons", {{"title", "work"}});
  book.showList<Dictionary>("groupSizes");
  book.showList<Phone>("phonesOfPerson", {{"personId", 1}});
  book.showList<Person>("birthdaysAhead", {{"from", "12-01"}, {"to", "12-31"}});
  book.showList<Person>("searchPersons", {{"text", "e"}, {"order", "age"}});
  book.showList<Person>("searchPersons", {{"text", "Ada"}});
  book.showList<Person>("personPage", {{"byName", true}, {"offset", 0}});

  const Dictionary size = valueOf(database.call<Dictionary>("groupSize", {{"groupId", 1}}));
  std::cout << "groupSize: " << *size.find("size")->integer() << '\n';
  std::cout << "phone: " << valueOf(database.call<Phone>("phone", {{"phoneId", 1}})).number << '\n';
  const Person ada = valueOf(database.call<Person>("person", {{"personId", 1}}));
  std::cout << "person: " << ada.givenName << ", " << ada.company.value_or("") << ", door " << ada.doorCode.value_or("")
            << '\n';
}

void tidyBook(AddressBook& book) {
  book.change("deletePersons");  // without a condition it does nothing
  book.change("deletePersons", {{"personIds", ValueList{4}}});
  book.change("forgetPerson", {{"personId", 5}});
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2) fail("usage: addressbook DATABASE [DEFINITIONS]");
  const auto set = setOf(argc > 2 ? argv[2] : "examples/addressbook.xml");
  if (const auto failure = firstSteps(argv[1], set)) fail(failure->text());
  korvex::DatabaseOptions options;
  options.cipher = std::make_shared<Rotation>();
  const auto database = valueOf(korvex::Database::open(argv[1], options));
  database->load(set, models());
  std::cout << "version " << *valueOf(database->version()) << '\n';

  AddressBook book(*database);
  fillBook(*database, book);
  readBook(*database, book);
  tidyBook(book);
}
