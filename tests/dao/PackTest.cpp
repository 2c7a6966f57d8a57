// Layouts and packed values: model classes to bytes and back.
#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <new>
#include <set>
#include <thread>

#include "dao/mapping/PackLayout.h"
#include "korvex/ModelClass.h"
#include "korvex/NumberObject.h"
#include "korvex/OptionalString.h"
#include "korvex/QXDAOElement.h"
#include "korvex/QXDAOPack.h"
#include "korvex/QXDAOPackEncode.h"
#include "korvex/QXDAOPackReader.h"
#include "tests/support/Hex.h"
#include "tests/support/Models.h"
#include "tests/support/Packs.h"

namespace {

std::atomic<int> allocationsUntilFailure{-1};

bool allocationFails() { return allocationsUntilFailure-- == 0; }

}  // namespace

// Layouts are the only allocations that ask for null on failure.
void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
  return allocationFails() ? nullptr : operator new(size);
}
void* operator new[](std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
  return allocationFails() ? nullptr : operator new[](size);
}

namespace korvex {
namespace {

// One record in hex: name, encode, content.
std::string record(const std::string& name, const std::string& encode, const std::string& content) {
  return hex(std::string(1, static_cast<char>(name.size())) + name) + "00" + encode + content;
}

constexpr const char* workedExample =
    "03 61 67 65 00 54 00 1E 00 00 00 08 6E 69 63 6B 6E 61 6D 65 00 FF FF 02 00 00 00 4A 6F";

TEST(Pack, NumberOfAnUnknownTypeLeavesNoBytes) {
  AllTypes object;
  object.number = NumberObject::fromBits('?', 7);
  object.text = "t";
  EXPECT_EQ(packOf("number, text")->packWithObject(&object), bytes(record("text", "FFFF", "01000000 74")));
}

TEST(Pack, WorkedExample) {
  Person person;
  person.nickname = "Jo";
  person.age = 30;
  const auto pack = packOf("nickname, age");
  EXPECT_EQ(pack->packWithObject(&person), bytes(workedExample));
  Person read;
  pack->unpackWithObject(&read, bytes(workedExample));
  EXPECT_EQ(read.age, 30);
  EXPECT_EQ(read.nickname, "Jo");
  person.nickname.reset();
  EXPECT_EQ(pack->packWithObject(&person), bytes(workedExample).substr(0, 11));
  EXPECT_GE(pack->packWithObject(&person)->capacity(), 1024U);
}

TEST(Pack, LayoutIsSortedAndKeptPerClass) {
  const Person person;
  const Employee employee;
  const auto pack = packOf("nickname,missing,Zeta,age,ages,friend,computed,age");
  EXPECT_EQ(pack->getClassInfoWithObject(nullptr), nullptr);
  AllTypes unmet;
  pack->unpackWithObject(&unmet, "");
  const QXDAOPackClassInfo* layout = pack->getClassInfoWithObject(&person);
  ASSERT_EQ(layout->count, 8);
  EXPECT_EQ(layout->next, nullptr);
  const std::vector<std::pair<std::string, int>> wanted = {{"Zeta", 'd'}, {"age", 'i'},  {"age", 'i'},
                                                           {"ages", 'S'}, {"friend", 0}, {"nickname", -1}};
  for (std::size_t at = 0; at < wanted.size(); ++at) {
    EXPECT_EQ(layout->properties[at].name, wanted[at].first);
    EXPECT_EQ(layout->properties[at].encode_c, wanted[at].second);
    EXPECT_EQ(layout->properties[at].length, wanted[at].first.size());
  }
  EXPECT_FALSE(layout->properties[6].field || layout->properties[7].field || layout->properties[7].name);
  EXPECT_EQ(pack->getClassInfoWithObject(&person), layout);

  const QXDAOPackClassInfo* later = pack->getClassInfoWithObject(&employee);
  EXPECT_NE(later, layout);
  EXPECT_EQ(later->cls, &Employee::describedClass());
  EXPECT_EQ(later->next, layout);
  EXPECT_EQ(later->properties[1].field, layout->properties[1].field);  // inherited
}

// The record of every type of field: a value, the empty value, and the limits.
TEST(Pack, EveryTypeIsWrittenAndReadBack) {
  const auto writes = [](const char* property, auto member, auto value, const std::string& expected) {
    SCOPED_TRACE(property);
    AllTypes object;
    object.*member = value;
    const auto pack = packOf(std::string(property) + ",nothing");
    const std::optional<std::string> packed = pack->packWithObject(&object);
    EXPECT_EQ(hex(*packed), expected.empty() ? "" : record(property, expected.substr(0, 4), expected.substr(4)));
    AllTypes read;
    pack->unpackWithObject(&read, *packed);
    EXPECT_EQ(read.*member, value);
  };
  writes("flag", &AllTypes::flag, true, "010001");
  writes("c", &AllTypes::c, std::int8_t{-128}, "110080");
  writes("C", &AllTypes::C, std::uint8_t{255}, "2100FF");
  writes("s", &AllTypes::s, std::int16_t{-2}, "3200FEFF");
  writes("S", &AllTypes::S, std::uint16_t{0xABCD}, "4200CDAB");
  writes("i", &AllTypes::i, std::int32_t{-1}, "5400FFFFFFFF");
  writes("I", &AllTypes::I, 0xDEADBEEFU, "6400EFBEADDE");
  writes("l", &AllTypes::l, -3L, "7800FDFFFFFFFFFFFFFF");
  writes("L", &AllTypes::L, 5UL, "88000500000000000000");
  writes("q", &AllTypes::q, -4LL, "7800FCFFFFFFFFFFFFFF");
  writes("Q", &AllTypes::Q, ~0ULL, "8800FFFFFFFFFFFFFFFF");
  writes("f", &AllTypes::f, 1.5F, "94000000C03F");
  writes("d", &AllTypes::d, -2.0, "A80000000000000000C0");
  writes("color", &AllTypes::color, Color::Blue, "210007");
  writes("text", &AllTypes::text, OptionalString("\xC3\xA9"), "FFFF02000000C3A9");
  writes("text", &AllTypes::text, OptionalString(""), "FFFF00000000");
  writes("text", &AllTypes::text, OptionalString(), "");
  writes("plain", &AllTypes::plain, std::string("x"), "FFFF0100000078");
  writes("plain", &AllTypes::plain, std::string(), "FFFF00000000");
  writes("number", &AllTypes::number, OptionalNumber(), "");
  writes("number", &AllTypes::number, OptionalNumber(NumberObject(true)), "010001");
  writes("number", &AllTypes::number, OptionalNumber(NumberObject(std::int8_t{-1})), "1100FF");
  writes("number", &AllTypes::number, OptionalNumber(NumberObject(std::uint8_t{1})), "210001");
  writes("number", &AllTypes::number, OptionalNumber(NumberObject(std::int16_t{1})), "32000100");
  writes("number", &AllTypes::number, OptionalNumber(NumberObject(std::uint16_t{1})), "42000100");
  writes("number", &AllTypes::number, OptionalNumber(NumberObject(std::int32_t{1})), "540001000000");
  writes("number", &AllTypes::number, OptionalNumber(NumberObject(std::uint32_t{1})), "640001000000");
  writes("number", &AllTypes::number, OptionalNumber(NumberObject(std::int64_t{-1})), "7800FFFFFFFFFFFFFFFF");
  writes("number", &AllTypes::number, OptionalNumber(NumberObject(std::uint64_t{1})), "88000100000000000000");
  writes("number", &AllTypes::number, OptionalNumber(NumberObject(1.5F)), "94000000C03F");
  writes("number", &AllTypes::number, OptionalNumber(NumberObject(-2.0)), "A80000000000000000C0");
}

TEST(Pack, StringsThatDoNotFitARecord) {
  const auto pack = packOf("text,nothing");
  AllTypes object;
  for (const auto& [text, content] :
       std::vector<std::pair<std::string, std::string>>{{std::string("a\0b", 3), "0100000061"},
                                                        {"a\xFF", "00000000"},
                                                        {"\xED\xA0\x80", "00000000"},
                                                        {std::string("a\0\xFF", 3), "00000000"}}) {
    object.text = text;
    EXPECT_EQ(hex(*pack->packWithObject(&object)), record("text", "FFFF", content));
  }
}

// The effect of each record on each kind of field: record → the fields afterwards.
TEST(Pack, RecordsOfAnotherTypeThanTheField) {
  struct Case {
    const char* property;
    std::string encode, content;
    std::string expected;  // what the object packs afterwards: encode and content, empty when absent
  };
  const auto pack = [](const char* property) { return packOf(std::string(property) + ",nothing"); };
  for (const auto& [property, encode, content, expected] : std::vector<Case>{
           {"i", "1100", "FF", "5400FF000000"},                // no sign extension
           {"i", "7800", "0102030405060708", "540001020304"},  // the low bytes
           {"i", "9400", "0000C03F", "54000000C03F"},          // the bits
           {"i", "2300", "0A0B0C", "54000A0B0C00"},            // an unknown scalar: its bytes
           {"i", "1000", "", "540000000000"},                  // of no bytes: zero
           {"i", "FFFF", "0100000041", "540007000000"},        // a string: skipped
           {"i", "2F00", "0102030405060708090A0B0C0D0E0F", "540001020304"},
           {"c", "A800", "0102030405060708", "110001"},
           {"flag", "1100", "02", "010001"},
           {"flag", "0100", "02", "010001"},  // any byte but zero is true
           {"flag", "0100", "80", "010001"},
           {"flag", "3200", "0001", "010000"},
           {"text", "1100", "01", "FFFF010000006B"},               // a scalar: skipped
           {"text", "FFFF", "01000000FF", ""},                     // not UTF-8: absent
           {"text", "FFFF", "030000006100 62", "FFFF0100000061"},  // a zero byte is text, packing ends there
           {"plain", "FFFF", "01000000FF", "FFFF00000000"},        // absent is empty to it
           {"number", "5400", "05000000", "540005000000"},
           {"number", "0100", "80", "010001"},
           {"number", "0100", "00", "010000"},
           {"number", "2300", "0A0B0C", ""},            // an unknown scalar: absent
           {"number", "FFFF", "0100000041", "110009"},  // a string: skipped
           {"friend", "5400", "05000000", ""},
       }) {
    SCOPED_TRACE(std::string(property) + " " + encode);
    AllTypes object;
    object.i = 7;
    object.text = object.plain = "k";
    object.number = NumberObject(std::int8_t{9});
    pack(property)->unpackWithObject(&object, bytes(record(property, encode, content)));
    const std::string after = hex(*pack(property)->packWithObject(&object));
    EXPECT_EQ(after, expected.empty() ? "" : record(property, expected.substr(0, 4), expected.substr(4)));
  }
}

TEST(Pack, ReadsOtherOrdersAndSkipsWhatItDoesNotKnow) {
  const auto pack = packOf("age,nickname,ages");
  Person person;
  person.ages = 3;
  pack->unpackWithObject(&person,
                         bytes(record("nickname", "FFFF", "0100000041") + record("zz", "FFFF", "0100000041") +
                               record("Zeta", "A800", "0000000000000000") + record("age", "5400", "09000000")));
  EXPECT_EQ(person.nickname, "A");
  EXPECT_EQ(person.age, 9);
  EXPECT_EQ(person.ages, 3);
  // The length of a name determines its end, whatever byte follows.
  pack->unpackWithObject(&person, bytes("03 61 67 65 FF 54 00 01 00 00 00"));
  EXPECT_EQ(person.age, 1);
  pack->unpackWithObject(&person, bytes("04 61 67 65 00 00 54 00 02 00 00 00"));
  EXPECT_EQ(person.age, 1);
  for (const char* stop : {"0000", "FEFF", "FDFF", "0080"}) {
    pack->unpackWithObject(
        &person, bytes(record("ages", "4200", "0500") + record("zz", stop, "") + record("age", "1100", "63")));
    EXPECT_EQ(person.age, 1) << stop;
    EXPECT_EQ(person.ages, 5);
  }
  pack->unpackWithObject(nullptr, bytes(workedExample));
  EXPECT_EQ(pack->packWithObject(nullptr), std::nullopt);
}

TEST(Pack, AnotherClassReadsTheSameValue) {
  Employee employee;
  employee.age = 40;
  employee.salary = 1000;
  const auto pack = packOf("age,salary");
  Person person;
  pack->unpackWithObject(&person, *pack->packWithObject(&employee));
  EXPECT_EQ(person.age, 40);
  person.companion = std::make_shared<Person>();  // no record reaches another object
  packOf("age,friend")
      ->unpackWithObject(&person, bytes(record("friend", "FFFF", "0100000041") + record("friend", "1100", "01")));
  EXPECT_NE(person.companion, nullptr);
  EXPECT_EQ(packOf("missing,other")->packWithObject(&person), "");
  EXPECT_EQ(QXDAOPack().packWithObject(&person), "");
  EXPECT_EQ(packOf("age,age")->packWithObject(&person)->size(), 22U);
}

TEST(Pack, NamesTooLongForARecordAreNeverPacked) {
  LongNames object;
  object.a = false;
  const auto pack = packOf(LongNames::fits + "," + LongNames::tooLong + ",fieldTooLong");
  const std::string value = *pack->packWithObject(&object);
  EXPECT_EQ(value.size(), 1 + 255 + 1 + 2 + 1U);
  object.a = true;
  pack->unpackWithObject(&object, value);
  EXPECT_FALSE(object.a);
  std::string other = LongNames::fits;
  other.back() = '!';
  pack->unpackWithObject(&object, bytes(record(other, "0100", "01")));
  EXPECT_FALSE(object.a);
  // The name of a field in the attributes goes from the first ",V" to the next comma.
  object.b = false;
  EXPECT_EQ(hex(*packOf("cut,nothing")->packWithObject(&object)), record("cut", "0100", "01"));
}

// A truncated value applies its complete records, and nothing of the incomplete one.
TEST(Pack, TruncatedValues) {
  const auto pack = packOf("age,nickname,ages");
  const std::string first = bytes(record("age", "5400", "01020304"));
  const std::string value = first + bytes(record("nickname", "FFFF", "0300000041 42 43"));
  for (std::size_t length = 0; length < value.size(); ++length) {
    Person person;
    const std::unique_ptr<char[]> exact(new char[length]);  // the sanitizers see a byte too many
    std::copy_n(value.data(), length, exact.get());
    for (const char* place :
         {static_cast<const char*>(exact.get()), value.data()}) {  // there the rest of the value follows the cut
      pack->unpackWithObject(&person, {place, length});
      EXPECT_EQ(person.age, length < first.size() ? 0 : 0x04030201) << length;
      EXPECT_EQ(person.nickname, std::nullopt) << length;
    }
  }
}

// A length beyond the end of the value ends the reading; the bytes after it are not read as records.
TEST(Pack, TextsLongerThanTheValue) {
  const auto pack = packOf("nickname,ages");
  for (const char* name : {"nickname", "unknown"}) {
    for (const char* length : {"0B000000", "FF000000", "FFFFFFFF"}) {
      Person person;
      pack->unpackWithObject(&person, bytes(record(name, "FFFF", length + record("ages", "4200", "0500"))));
      EXPECT_EQ(person.ages, 0) << name << length;
      EXPECT_EQ(person.nickname, std::nullopt);
    }
  }
  AllTypes object;
  const std::string text = record("text", "FFFF", "0100000041");
  packOf("plain,text")->unpackWithObject(&object, bytes(record("plain", "FFFF", "FF000000" + text)));
  EXPECT_EQ(object.text, std::nullopt);
}

TEST(Pack, LongValues) {
  const auto pack = packOf("text,plain,i");
  AllTypes object;
  object.i = 5;
  for (const std::size_t length : {1023U, 1024U, 1025U, 70000U}) {
    object.text = std::string(length, 'x');
    object.plain = *object.text + "\xC3\xA9";
    const std::string value = *pack->packWithObject(&object);
    EXPECT_EQ(value.size(), 12 + length + 13 + length + 2 + 9);  // text, plain, i
    AllTypes read;
    pack->unpackWithObject(&read, value);
    EXPECT_EQ(read.text, object.text);
    EXPECT_EQ(read.plain, object.plain);
    EXPECT_EQ(read.i, 5);
  }
}

// The codes of strings and numbers are compared completely, all others by their first character.
TEST(Pack, TypeCodes) {
  class Odd : public ModelObject {
   public:
    explicit Odd(const char* typeEncoding) {
      ModelDescription<Person>(_class).property("age", &Person::age);
      ModelDescription<Person>(_class).property("nickname", &Person::nickname);
      for (ModelField& field : _class.fields) field.typeEncoding = typeEncoding;
    }
    [[nodiscard]] const ModelClass& modelClass() const override { return _class; }

   private:
    ModelClass _class;
  };
  for (const auto& [typeEncoding, code] : std::vector<std::pair<const char*, int>>{{"@\"Number\"", -2},
                                                                                   {"@\"String\"", -1},
                                                                                   {"@\"Number", 0},
                                                                                   {"@\"String\"x", 0},
                                                                                   {"@\"Strings\"", 0},
                                                                                   {"@", 0},
                                                                                   {"ix", 'i'}}) {
    const auto pack = packOf("age,nickname");
    EXPECT_EQ(pack->getClassInfoWithObject(std::make_unique<Odd>(typeEncoding).get())->properties[0].encode_c, code)
        << typeEncoding;
  }
}

TEST(Pack, ChangedBytesDoNoHarm) {
  const auto pack = packOf("flag,c,i,d,text,plain,number,color,friend");
  AllTypes object;
  object.text = "text";
  object.number = NumberObject(1.0);
  const std::string value = *pack->packWithObject(&object);
  for (std::size_t at = 0; at < value.size(); ++at) {
    for (int byte = 0; byte < 256; ++byte) {
      std::string changed = value;
      changed[at] = static_cast<char>(byte);
      AllTypes read;
      pack->unpackWithObject(&read, changed);
      EXPECT_TRUE(pack->packWithObject(&read));
    }
  }
}

TEST(PackReader, SaysWhereAndWhyItEnds) {
  struct Case {
    std::string value;
    QXDAOPackReadStatus status;
    QXDAOPackPart part;
    std::size_t offset;
  };
  const std::string age = record("age", "5400", "1E000000");
  for (const auto& [value, status, part, offset] : std::vector<Case>{
           {age + "03", QXDAOPackReadStatus::Truncated, QXDAOPackPart::Name, 11},
           {age + "0361", QXDAOPackReadStatus::Truncated, QXDAOPackPart::Name, 11},
           {age + "01610054", QXDAOPackReadStatus::Truncated, QXDAOPackPart::Encode, 14},
           {age + "016100FFFF0100", QXDAOPackReadStatus::Truncated, QXDAOPackPart::StringLength, 16},
           {age + "016100FFFFFFFFFFFF41", QXDAOPackReadStatus::Truncated, QXDAOPackPart::String, 20},
           {age + "0161005400010203", QXDAOPackReadStatus::Truncated, QXDAOPackPart::Scalar, 16},
           {age + "0161000000", QXDAOPackReadStatus::Stopped, QXDAOPackPart::Encode, 14},
           {age + "016100FEFF", QXDAOPackReadStatus::Stopped, QXDAOPackPart::Encode, 14},
           {age, QXDAOPackReadStatus::End, QXDAOPackPart::Scalar, 11},
       }) {
    SCOPED_TRACE(value);
    const std::string held = bytes(value);
    QXDAOPackReader reader(held);
    QXDAOPackRecord read;
    ASSERT_EQ(reader.next(read), QXDAOPackReadStatus::Record);
    EXPECT_EQ(read.name, "age");
    EXPECT_EQ(read.encode, QXDAOPackEncodeInt32);
    EXPECT_EQ(read.bytesOffset, 7U);
    EXPECT_EQ(reader.next(read), status);
    EXPECT_EQ(read.offset, 11U);
    EXPECT_TRUE(read.bytes.empty());
    EXPECT_EQ(reader.next(read), status);
    const bool contentBegan =
        status == QXDAOPackReadStatus::Truncated && (part == QXDAOPackPart::String || part == QXDAOPackPart::Scalar);
    EXPECT_EQ(read.bytesOffset, contentBegan ? offset : 0U);
    EXPECT_EQ(reader.part(), part);
    EXPECT_EQ(reader.offset(), offset);
  }
}

TEST(Pack, FailedAllocations) {
  const auto pack = packOf("nickname, age");
  Person person;
  static_cast<void>(getClass(person));   // described before, which needs memory too
  for (const int failing : {0, 1, 2}) {  // the record, its entries, the heads of their records
    allocationsUntilFailure = failing;
    EXPECT_EQ(pack->packWithObject(&person), std::nullopt);
    allocationsUntilFailure = failing;
    pack->unpackWithObject(&person, bytes(workedExample));
    EXPECT_EQ(person.age, 0);
  }
  allocationsUntilFailure = -1;
  pack->unpackWithObject(&person, bytes(workedExample));
  EXPECT_EQ(person.age, 30);
}

// Every layout that a thread got stays linked. Threads that request a new class at the same time may each link one.
TEST(Pack, ThreadsMeetClassesAtOnce) {
  const Person person;
  const Employee employee;
  const AllTypes types;
  const std::array<const ModelObject*, 3> objects = {&person, &employee, &types};
  for (int round = 0; round < 1000; ++round) {
    const auto pack = packOf("nickname,age,i,text");
    std::atomic<bool> go{false};
    std::array<const QXDAOPackClassInfo*, 8> met{};
    std::vector<std::thread> threads;
    for (std::size_t number = 0; number < met.size(); ++number) {
      threads.emplace_back([&, number] {
        const ModelObject* object = objects[number % objects.size()];
        while (!go) std::this_thread::yield();
        met[number] = pack->getClassInfoWithObject(object);
        for (int turn = 0; turn < 3; ++turn) ASSERT_TRUE(pack->packWithObject(object));
      });
    }
    go = true;
    for (std::thread& thread : threads) thread.join();
    std::set<const QXDAOPackClassInfo*> linked;
    const LongNames last;
    for (const auto* info = pack->getClassInfoWithObject(&last); info; info = info->next) linked.insert(info);
    for (const QXDAOPackClassInfo* info : met) ASSERT_TRUE(linked.contains(info));
    ASSERT_LE(linked.size(), met.size() + 1);
  }
}

// Values of earlier versions, which this version reads and writes byte for byte.
TEST(Pack, GoldenValues) {
  AllTypes types;
  types.fill();
  Person person;
  person.nickname = "Jo";
  person.age = 30;
  const auto all = packOf(AllTypes::propertyNames);
  const auto two = packOf("nickname, age");
  const auto check = [](const QXDAOPack& pack, const ModelObject& full, ModelObject& blank, const char* name) {
    std::ifstream file(std::filesystem::path(KORVEX_SOURCE_DIR) / "tests/golden/packed" / name);
    const std::string golden = bytes(std::string(std::istreambuf_iterator<char>(file), {}));
    ASSERT_FALSE(golden.empty()) << name;
    EXPECT_EQ(hex(*pack.packWithObject(&full)), hex(golden));
    pack.unpackWithObject(&blank, golden);
    EXPECT_EQ(hex(*pack.packWithObject(&blank)), hex(golden));
  };
  AllTypes blankTypes;
  Person blankPerson;
  check(*all, types, blankTypes, "all-types.hex");
  check(*two, person, blankPerson, "person.hex");
}

}  // namespace
}  // namespace korvex
