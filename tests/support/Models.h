// Model classes for the tests of packing.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "korvex/ModelClass.h"
#include "korvex/NumberObject.h"
#include "korvex/OptionalString.h"
#include "korvex/QXDAOPackReader.h"

namespace korvex {

class Person : public Model<Person> {
 public:
  static void describe(ModelDescription<Person>& model) {
    model.property("nickname", &Person::nickname);
    model.property("age", &Person::age, "years");
    model.property("ages", &Person::ages);
    model.property("Zeta", &Person::zeta);
    model.property("friend", &Person::companion);
    model.propertyWithoutField<bool>("computed");
  }

  OptionalString nickname;
  std::int32_t age = 0;
  std::uint16_t ages = 0;
  double zeta = 0;
  std::shared_ptr<Person> companion;
};

class Employee : public Model<Employee, Person> {
 public:
  static void describe(ModelDescription<Employee>& model) { model.property("salary", &Employee::salary); }

  std::int64_t salary = 0;
};

enum class Color : std::uint8_t { Red = 0, Blue = 7 };

class AllTypes : public Model<AllTypes> {
 public:
  static constexpr const char* propertyNames = "flag,c,C,s,S,i,I,l,L,q,Q,f,d,color,text,plain,number,friend";

  static void describe(ModelDescription<AllTypes>& model) {
    model.property("flag", &AllTypes::flag);
    model.property("c", &AllTypes::c);
    model.property("C", &AllTypes::C);
    model.property("s", &AllTypes::s);
    model.property("S", &AllTypes::S);
    model.property("i", &AllTypes::i);
    model.property("I", &AllTypes::I);
    model.property("l", &AllTypes::l);
    model.property("L", &AllTypes::L);
    model.property("q", &AllTypes::q);
    model.property("Q", &AllTypes::Q);
    model.property("f", &AllTypes::f);
    model.property("d", &AllTypes::d);
    model.property("color", &AllTypes::color);
    model.property("text", &AllTypes::text);
    model.property("plain", &AllTypes::plain);
    model.property("number", &AllTypes::number);
    model.property("friend", &AllTypes::companion);
  }

  void fill() {
    flag = true;
    c = -1, C = 2, s = -3, S = 4, i = -5, I = 6, l = -7, L = 8, q = -9, Q = 10;
    f = 0.5F, d = -0.25;
    color = Color::Blue;
    text = "na\xC3\xAFve \xF0\x9F\x98\x80";
    plain = "plain";
    number = NumberObject(std::uint16_t{65535});
  }

  bool flag = false;
  std::int8_t c = 0;
  std::uint8_t C = 0;
  std::int16_t s = 0;
  std::uint16_t S = 0;
  std::int32_t i = 0;
  std::uint32_t I = 0;
  long l = 0;
  unsigned long L = 0;
  long long q = 0;
  unsigned long long Q = 0;
  float f = 0;
  double d = 0;
  Color color = Color::Red;
  OptionalString text;
  std::string plain;
  OptionalNumber number;
  std::weak_ptr<AllTypes> companion;
};

// Names at the limit of a record and beyond it, and the name of a field that holds a comma.
class LongNames : public Model<LongNames> {
 public:
  static inline const std::string fits = std::string(255, 'a');
  static inline const std::string tooLong = std::string(256, 'b');

  static void describe(ModelDescription<LongNames>& model) {
    model.property(fits, &LongNames::a, std::string(255, 'f'));
    model.property(tooLong, &LongNames::b, "_b");
    model.property("fieldTooLong", &LongNames::c, std::string(256, 'c'));
    model.property("cut", &LongNames::d, "_b,V_d");
  }

  bool a = true;
  bool b = true;
  bool c = true;
  bool d = true;
};

}  // namespace korvex
