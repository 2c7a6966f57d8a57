// Every method of the address book on a file, from the first upgrade on.
#include <map>
#include <set>

#include "examples/addressbook/Models.h"
#include "tests/sqlite/Support.h"

namespace korvex {
namespace {

class Mirror final : public Cipher {
 public:
  std::optional<std::string> encrypt(std::string_view plain) override {
    return "<" + std::string(plain.rbegin(), plain.rend());
  }
  std::optional<std::string> decrypt(std::string_view stored) override {
    if (!stored.starts_with('<')) return std::nullopt;
    return std::string(stored.rbegin(), stored.rend() - 1);
  }
};

class AddressBook : public testing::Test {
 protected:
  void SetUp() override {
    set = setOfDocument("addressbook.xml", Document::fromFile(KORVEX_SOURCE_DIR "/examples/addressbook.xml"));
    ASSERT_TRUE(set);
    DatabaseOptions options;
    options.cipher = std::make_shared<Mirror>();
    auto opened = Database::open((directory.path() / "people.sqlite").string(), options);
    ASSERT_TRUE(opened) << textOf(opened);
    database = std::move(*opened);
    database->load(set, models());
    const Failure failure = database->upgrade();
    ASSERT_FALSE(failure) << textOf(failure);
  }

  template <typename T = Value>
  T get(const std::string& method, const Arguments& arguments = {}, std::string_view table = {}) {
    called.insert(method);
    const Outcome<T> result = database->call<T>(method, arguments, {.table = table});
    EXPECT_TRUE(result) << textOf(result);
    return result ? *result : T{};
  }
  CallResult run(const std::string& method, const Arguments& arguments = {}) {
    called.insert(method);
    const Outcome<CallResult> result = database->call(method, arguments);
    EXPECT_TRUE(result) << textOf(result);
    return result ? *result : CallResult{};
  }
  std::string names(const std::vector<Person>& people) {
    std::string text;
    for (const Person& person : people) text += person.givenName + ' ';
    return text;
  }

  TemporaryDirectory directory;
  std::shared_ptr<const DefinitionSet> set;
  std::unique_ptr<Database> database;
  std::set<std::string, std::less<>> called;
};

Person personOf(std::int64_t id, const std::string& given, const std::string& family, double birthday) {
  Person person;
  person.personId = id;
  person.givenName = given;
  person.familyName = family;
  person.birthday = birthday;
  return person;
}

Phone phoneOf(std::int64_t personId, const std::string& kind, const std::string& number) {
  Phone phone;
  phone.personId = personId;
  phone.kind = kind;
  phone.number = number;
  return phone;
}

TEST_F(AddressBook, EveryMethodRuns) {
  const auto version = database->version();
  ASSERT_TRUE(version) << textOf(version);
  EXPECT_EQ(**version, 2.5);

  Person ada = personOf(1, "Ada", "Lovelace", 2393451.5);  // 1840-12-10
  ada.company = "Analytical Engines";
  ada.doorCode = "0815";
  Person rene = personOf(2, "René", "Brûlé", 2440000.5);
  Person grace = personOf(3, "Grace", "Hopper", 2417555.5);
  for (const Person* person : {&ada, &rene, &grace}) {
    EXPECT_EQ(run("savePerson", {{"person", Value::reference(*person)}}).changes, 1);
  }
  ada.familyName = "King";
  EXPECT_EQ(run("savePerson", {{"person", Value::reference(ada)}}).changes, 1);
  EXPECT_EQ(get<int>("countPersons"), 3);
  EXPECT_EQ(get<std::int64_t>("newestPersonId"), 3);
  EXPECT_EQ(get<std::string>("nameOfPerson", {{"personId", 1}}), "Ada King");

  const CallResult added = run("addPhone", {{"phone", std::make_shared<Phone>(phoneOf(1, "home", "123"))}});
  EXPECT_EQ(added.lastInsertedId, 1);
  EXPECT_EQ(run("importPhones", {{"phones", ValueList{Value(std::make_shared<Phone>(phoneOf(1, "mobile", "456"))),
                                                      Dictionary{{"personId", 2}, {"kind", "work"}, {"number", "7"}}}}})
                .changes,
            2);
  EXPECT_TRUE(get<bool>("hasPhone", {{"personId", 1}}));
  EXPECT_FALSE(get<bool>("hasPhone", {{"personId", 3}}));
  EXPECT_EQ(get<double>("phonesPerPerson"), 1.0);
  EXPECT_EQ(get<Phone>("phone", {{"phoneId", added.lastInsertedId}}).number, "123");
  EXPECT_EQ(get<std::vector<Phone>>("phonesOfPerson", {{"personId", 1}}).size(), 2U);
  EXPECT_EQ(get<std::optional<std::string>>("photoOfPerson", {{"personId", 1}}), std::nullopt);

  ada.notes = "prefers numbers";
  EXPECT_EQ(run("updatePerson", {{"person", Value::reference(ada)}}).changes, 1);
  EXPECT_EQ(run("patchPerson", {{"personId", 1}, {"changes", Dictionary{{"nickname", "Countess"}}}}).changes, 1);
  const Person read = get<Person>("person", {{"personId", 1}});
  EXPECT_EQ(read.familyName, "King");
  EXPECT_EQ(read.nickname, "Countess");
  EXPECT_EQ(read.company, "Analytical Engines");
  EXPECT_EQ(read.doorCode, "0815");
  EXPECT_EQ(read.birthday, ada.birthday);

  EXPECT_EQ(run("placeGroup", {{"title", "friends"}, {"position", 1}}).changes, 1);
  EXPECT_EQ(run("placeGroup", {{"title", "friends"}, {"position", 2}}).changes, 1);  // moved by the except
  EXPECT_EQ(get<Dictionary>("groupSize", {{"groupId", 1}}).find("size")->integer(), 0);
  EXPECT_TRUE(get<std::vector<Dictionary>>("groupSizes").empty());
  EXPECT_EQ(get<int>("countRows", {}, "person_group"), 1);
  EXPECT_EQ(run("rememberViewed", {{"persons", ValueList{Dictionary{{"seenAt", 2.5}, {"personId", 2}},
                                                         Dictionary{{"seenAt", 1.5}, {"personId", 1}}}}})
                .changes,
            2);
  EXPECT_TRUE(get<std::vector<std::string>>("tagTitles").empty());
  EXPECT_TRUE(get<std::vector<std::int64_t>>("taggedPersons", {{"title", "x"}}).empty());

  EXPECT_EQ(names(get<std::vector<Person>>("birthdaysAhead", {{"from", "12-01"}, {"to", "12-31"}})), "Ada Grace ");
  EXPECT_EQ(names(get<std::vector<Person>>("searchPersons", {{"text", "ré"}})), "");
  EXPECT_EQ(names(get<std::vector<Person>>("searchPersons", {{"order", "age"}})), "Ada Grace René ");
  EXPECT_EQ(names(get<std::vector<Person>>("searchPersons", {{"text", "Hopper"}, {"groupIds", ValueList{}}})),
            "Grace ");
  EXPECT_EQ(names(get<std::vector<Person>>("searchPersons", {{"groupIds", ValueList{1, 2}}})), "");
  EXPECT_EQ(names(get<std::vector<Person>>("personPage", {{"byAge", true}, {"offset", 1}})), "Grace René ");

  EXPECT_EQ(run("deletePersons").changes, 0);  // without a condition it quits
  EXPECT_EQ(run("deletePersons", {{"personIds", ValueList{3}}}).changes, 1);
  EXPECT_EQ(run("forgetPerson", {{"personId", 1}}).changes, 3);
  EXPECT_EQ(get<int>("countPersons"), 1);

  for (const Plan* plan : set->plans()) EXPECT_TRUE(called.contains(plan->name())) << plan->name();
  EXPECT_EQ(database->counter("addPhone")->_invocationCount, 1U);
  EXPECT_EQ(database->counter("birthdaysAhead")->_bootupCount, 1U);
  EXPECT_EQ(database->counter("countPersons"), std::nullopt);
}

}  // namespace
}  // namespace korvex
