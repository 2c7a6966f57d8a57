// Model classes at run time: what a description declares, and fields under their ownership rules.
#include <gtest/gtest.h>

#include <cmath>

#include "korvex/ModelClass.h"
#include "korvex/ModelRegistry.h"
#include "korvex/NumberObject.h"
#include "tests/support/Models.h"

namespace korvex {
namespace {

// A second base, so that the ModelObject is not at the start of the object.
struct Observer {
  virtual ~Observer() = default;
  int notifications = 0;
};

class Holder : public Observer, public Model<Holder> {
 public:
  static void describe(ModelDescription<Holder>& model) {
    model.property("strong", &Holder::strong);
    model.property("weak", &Holder::weak);
    model.property("raw", &Holder::raw);
    model.property("list", &Holder::list);
    model.property("crypted", &Holder::crypted);
    model.propertyWithoutField<double>("ratio");
  }

  std::shared_ptr<Person> strong;
  std::weak_ptr<Person> weak;
  Person* raw = nullptr;
  std::vector<int> list;
  bool crypted = false;
};

std::shared_ptr<ModelObject> objectIn(const ModelObject& object, const char* fieldName) {
  const ObjectValue value = getObjectField(object, *getField(getClass(object), fieldName));
  const auto* held = std::get_if<std::shared_ptr<ModelObject>>(&value);
  EXPECT_TRUE(!held || *held);  // no object is absent, not a null one
  return held ? *held : nullptr;
}

TEST(ModelClass, TellsPropertiesAndFields) {
  const ModelClass& holder = getClass(Holder());
  EXPECT_EQ(&holder, &Holder::describedClass());
  const std::vector<std::pair<const char*, const char*>> attributes = {
      {"crypted", "TB,N,V_crypted"}, {"ratio", "Td,N"}, {"strong", "T@,N,V_strong"}, {"list", "T@,N,V_list"}};
  for (const auto& [name, expected] : attributes) {
    const ModelProperty* property = getProperty(holder, name);
    ASSERT_NE(property, nullptr) << name;
    EXPECT_STREQ(getPropertyName(*property), name);
    EXPECT_STREQ(getPropertyAttributes(*property), expected);
  }
  EXPECT_EQ(getProperty(holder, "Crypted"), nullptr);
  EXPECT_EQ(getField(holder, "crypted"), nullptr);
  const ModelClass& types = AllTypes::describedClass();
  EXPECT_STREQ(getPropertyAttributes(*getProperty(types, "text")), "T@\"String\",N,V_text");
  EXPECT_STREQ(getFieldTypeEncoding(*getField(types, "_number")), "@\"Number\"");
  EXPECT_STREQ(getPropertyAttributes(*getProperty(Person::describedClass(), "age")), "Ti,N,Vyears");
}

TEST(ModelClass, FindsTheBackingFieldOfAProperty) {
  const ModelClass& person = Person::describedClass();
  EXPECT_EQ(getPropertyField(person, *getProperty(person, "age")), getField(person, "years"));
  const ModelClass& holder = Holder::describedClass();
  EXPECT_EQ(getPropertyField(holder, *getProperty(holder, "ratio")), nullptr);
}

// Such a field would compile as an object of an unknown class and never be packed.
static_assert(isOptionalScalar<std::optional<std::int32_t>> && isOptionalScalar<std::optional<bool>>);
static_assert(!isOptionalScalar<OptionalNumber> && !isOptionalScalar<OptionalString>);

TEST(ModelClass, InheritsFromItsBase) {
  const Employee employee;
  const ModelClass& cls = getClass(employee);
  EXPECT_EQ(cls.superclass, &Person::describedClass());
  EXPECT_EQ(getProperty(cls, "nickname"), getProperty(Person::describedClass(), "nickname"));
  EXPECT_NE(getField(cls, "_salary"), nullptr);
  EXPECT_EQ(getField(Person::describedClass(), "_salary"), nullptr);
}

TEST(ModelClass, OffsetsHoldBehindAnotherBase) {
  Holder holder;
  holder.crypted = true;
  const ModelObject& object = holder;
  const std::ptrdiff_t offset = getFieldOffset(*getField(getClass(object), "_crypted"));
  EXPECT_EQ(reinterpret_cast<const char*>(&object) + offset, reinterpret_cast<const char*>(&holder.crypted));
}

TEST(ModelClass, FieldsKeepTheirOwnershipRule) {
  Holder holder;
  const auto set = [&holder](const char* name, const ObjectValue& value) {
    setObjectField(holder, *getField(getClass(holder), name), value);
  };
  auto person = std::make_shared<Employee>();
  const std::weak_ptr<Employee> watch = person;
  for (const char* name : {"_strong", "_weak", "_raw"}) {
    set(name, person);
    EXPECT_EQ(objectIn(holder, name), person) << name;
  }
  EXPECT_EQ(person.use_count(), 2);  // the strong field's and this one
  for (const char* name : {"_strong", "_weak", "_raw"}) {
    set(name, std::make_shared<Holder>());  // not a Person
    EXPECT_EQ(objectIn(holder, name), nullptr) << name;
    for (const ObjectValue& other : {ObjectValue(std::string_view("text")), ObjectValue(std::shared_ptr<Person>())}) {
      set(name, person);
      set(name, other);
      EXPECT_EQ(objectIn(holder, name), nullptr) << name;
    }
  }
  set("_weak", person);
  person.reset();
  EXPECT_TRUE(watch.expired());
  EXPECT_EQ(objectIn(holder, "_weak"), nullptr);
  set("_list", std::string_view("text"));
  set("_crypted", NumberObject(true));
  EXPECT_FALSE(holder.crypted || objectIn(holder, "_list"));
}

TEST(ModelClass, TextsAndNumbersAreReplaced) {
  AllTypes object;
  object.fill();
  const auto set = [&object](const char* name, const ObjectValue& value) {
    const ModelField& field = *getField(getClass(object), name);
    setObjectField(object, field, value);
    return getObjectField(object, field);
  };
  const ObjectValue text = std::string_view("t");
  const ObjectValue number = NumberObject(1.5);
  EXPECT_EQ(set("_text", text), text);
  EXPECT_EQ(set("_plain", text), text);
  EXPECT_EQ(set("_number", number), number);
  // A value of another kind counts as absent; a std::string has no such state.
  EXPECT_EQ(set("_text", number), ObjectValue());
  EXPECT_EQ(set("_plain", number), ObjectValue(std::string_view()));
  EXPECT_EQ(set("_number", text), ObjectValue());
}

TEST(ModelClass, ScalarsAreReadAndReplacedInOneStep) {
  AllTypes object;
  const ModelClass& cls = AllTypes::describedClass();
  constexpr double tooLarge = 18446744073709551616.0;  // 2 to the 64th
  struct Case {
    const char* property;
    std::variant<std::int64_t, double> number;
    std::optional<double> stored;
  };
  const std::vector<Case> cases = {
      {"flag", 7L, 1},     {"flag", 0.0, 0},        {"c", -128L, -128}, {"c", 128L, {}},   {"C", 255L, 255},
      {"C", -1L, {}},      {"S", 65536L, {}},       {"i", 2.0, 2},      {"i", 2.5, {}},    {"i", 2147483648.0, {}},
      {"I", -1L, {}},      {"q", -9e18, -9e18},     {"q", 9.3e18, {}},  {"Q", -1L, {}},    {"Q", 1.8e19, 1.8e19},
      {"Q", tooLarge, {}}, {"Q", std::nan(""), {}}, {"f", 3L, 3},       {"d", 0.25, 0.25}, {"color", 7L, 7},
      {"color", 256L, {}}, {"text", 1L, {}},        {"number", 1L, {}},
  };
  for (const auto& [property, number, stored] : cases) {
    const ModelField& field = *fieldOfProperty(cls, property);
    object = AllTypes();
    const bool set = std::visit([&](auto value) { return setScalarField(object, field, value); }, number);
    EXPECT_EQ(set, stored.has_value()) << property;
    const OptionalNumber read = getScalarField(object, field);
    EXPECT_EQ(read.has_value(), field.scalar.get != nullptr) << property;
    AllTypes expected;
    if (stored) static_cast<void>(setScalarField(expected, field, *stored));
    EXPECT_EQ(read, getScalarField(expected, field)) << property;
  }
  EXPECT_EQ(getScalarField(object, *fieldOfProperty(cls, "flag")), OptionalNumber(NumberObject(false)));
  EXPECT_EQ(fieldOfProperty(Person::describedClass(), "computed"), nullptr);
  EXPECT_EQ(fieldOfProperty(Person::describedClass(), "age"), getField(Person::describedClass(), "years"));
}

class Attachment : public Model<Attachment> {
 public:
  static void describe(ModelDescription<Attachment>& model) {
    model.className("Attachment");
    model.property("bytes", &Attachment::bytes);
    model.property("preview", &Attachment::preview);
  }

  std::vector<std::byte> bytes;
  std::optional<std::vector<std::byte>> preview;
};

TEST(ModelClass, BinaryFieldsHoldBytes) {
  Attachment object;
  const auto set = [&object](const char* property, const ObjectValue& value) {
    const ModelField& field = *fieldOfProperty(getClass(object), property);
    setObjectField(object, field, value);
    return getObjectField(object, field);
  };
  const ObjectValue bytes = BinaryView{std::string_view("\0\xFF", 2)};
  EXPECT_EQ(set("bytes", bytes), bytes);
  EXPECT_EQ(set("preview", bytes), bytes);
  EXPECT_EQ(object.bytes, object.preview);
  EXPECT_EQ(set("bytes", std::string_view("text")), ObjectValue(BinaryView()));
  EXPECT_EQ(set("preview", {}), ObjectValue());
}

TEST(ModelRegistry, FindsClassesByTheirNames) {
  ModelRegistry models;
  EXPECT_TRUE(models.add<Attachment>() && models.add<Attachment>());
  EXPECT_FALSE(models.add<Holder>());  // it has no name
  ModelClass other;
  other.name = "Attachment";
  EXPECT_FALSE(models.add(other));
  const ModelClass* found = models.find("Attachment");
  ASSERT_EQ(found, &Attachment::describedClass());
  EXPECT_EQ(&getClass(*found->create()), found);
  EXPECT_EQ(models.find("attachment"), nullptr);

  class Letter : public Model<Letter, Attachment> {
   public:
    static void describe(ModelDescription<Letter>& model) {
      model.className("a\t\"Letter\"");
      model.property("reply", &Letter::reply);
      model.property("number", &Letter::number);
      model.property("pages", &Letter::pages);
      model.propertyWithoutField<double>("weight");
      model.property("name", &Letter::open);
    }
    std::shared_ptr<Attachment> reply;
    OptionalNumber number;
    std::int16_t pages = 0;
    bool open = false;
  };
  ModelRegistry letters;
  EXPECT_EQ(letters.json(), "{\"classes\": [\n]}\n");
  ASSERT_TRUE(letters.add<Letter>());
  EXPECT_EQ(letters.json(), R"({"classes": [
  {"name": "a\u0009\"Letter\"", "properties": [
    {"name": "bytes", "type": "binary"},
    {"name": "name", "type": "bool"},
    {"name": "number", "type": "number"},
    {"name": "pages", "type": "integer"},
    {"name": "preview", "type": "binary"},
    {"name": "reply", "type": "object", "class": "Attachment"},
    {"name": "weight", "type": "real"}
  ]}
]}
)");
}

TEST(NumberObject, RemembersItsType) {
  EXPECT_EQ(NumberObject(5L).typeCode(), 'q');
  EXPECT_EQ(NumberObject('a').typeCode(), 'c');
  EXPECT_EQ(NumberObject(5UL).value<unsigned long long>(), 5ULL);
  EXPECT_EQ(NumberObject(5).value<long>(), std::nullopt);
  EXPECT_EQ(NumberObject(5L), NumberObject(5LL));
  EXPECT_FALSE(NumberObject(5) == NumberObject(5L));
  EXPECT_EQ(NumberObject(0.0), NumberObject(-0.0));
  EXPECT_EQ(NumberObject(0.0F), NumberObject(-0.0F));
  EXPECT_FALSE(NumberObject(true) == NumberObject(false));
  EXPECT_FALSE(NumberObject(256) == NumberObject(512));
}

}  // namespace
}  // namespace korvex
