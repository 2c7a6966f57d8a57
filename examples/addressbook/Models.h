// The model classes of the address book: what the rows become, and what is stored.
#pragma once

#include <korvex/ModelClass.h>
#include <korvex/ModelRegistry.h>
#include <korvex/OptionalString.h>

#include <cstdint>
#include <string>

class Person : public korvex::Model<Person> {
 public:
  static void describe(korvex::ModelDescription<Person>& model) {
    model.className("Person");
    model.property("personId", &Person::personId);
    model.property("givenName", &Person::givenName);
    model.property("familyName", &Person::familyName);
    model.property("nickname", &Person::nickname);
    model.property("birthday", &Person::birthday);
    model.property("notes", &Person::notes);
    model.property("company", &Person::company);
    model.property("jobTitle", &Person::jobTitle);
    model.property("website", &Person::website);
    model.property("doorCode", &Person::doorCode);
    model.property("alarmCode", &Person::alarmCode);
  }

  std::int64_t personId = 0;
  std::string givenName;
  std::string familyName;
  korvex::OptionalString nickname;
  double birthday = 0;                                // a Julian day; 0 when it is not known
  korvex::OptionalString notes;                       // stored encrypted
  korvex::OptionalString company, jobTitle, website;  // packed into one column
  korvex::OptionalString doorCode, alarmCode;         // packed, and encrypted
};

class Phone : public korvex::Model<Phone> {
 public:
  static void describe(korvex::ModelDescription<Phone>& model) {
    model.className("Phone");
    model.property("id", &Phone::id);
    model.property("personId", &Phone::personId);
    model.property("kind", &Phone::kind);
    model.property("number", &Phone::number);
  }

  std::int64_t id = 0;
  std::int64_t personId = 0;
  std::string kind;
  std::string number;
};

inline korvex::ModelRegistry models() {
  korvex::ModelRegistry registry;
  registry.add<Person>();
  registry.add<Phone>();
  return registry;
}
