// The object of eight properties that is packed and unpacked, and a class of as many as are wanted.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <utility>

#include "korvex/ModelClass.h"
#include "korvex/NumberObject.h"
#include "korvex/OptionalString.h"
#include "korvex/QXDAOPackReader.h"

namespace korvex::benchmarks {

class Person final : public Model<Person> {
 public:
  static void describe(ModelDescription<Person>& model) {
    model.property("accountNumber", &Person::accountNumber);
    model.property("company", &Person::company);
    model.property("discount", &Person::discount);
    model.property("jobTitle", &Person::jobTitle);
    model.property("rating", &Person::rating);
    model.property("subscribed", &Person::subscribed);
    model.property("visits", &Person::visits);
    model.property("website", &Person::website);
  }

  long long accountNumber = 0;
  OptionalString company;
  OptionalNumber discount;
  OptionalString jobTitle;
  double rating = 0;
  bool subscribed = false;
  int visits = 0;
  std::string website;
};

[[nodiscard]] inline Person somebody() {
  Person person;
  person.accountNumber = 4'815'162'342;
  person.company = "Analytical Engines";
  person.discount = NumberObject(12.5);
  person.jobTitle = "Programmer";
  person.rating = 4.75;
  person.subscribed = true;
  person.visits = 1843;
  person.website = "https://ada.example/notes";
  return person;
}

[[nodiscard]] inline bool isSomebody(const Person& person) {
  const Person wanted = somebody();
  return person.accountNumber == wanted.accountNumber && person.company == wanted.company &&
         person.discount == wanted.discount && person.jobTitle == wanted.jobTitle && person.rating == wanted.rating &&
         person.subscribed == wanted.subscribed && person.visits == wanted.visits && person.website == wanted.website;
}

// One property of a WideObject: a string, a long long, an int or a double in turn.
template <std::size_t Index>
struct WideField {
  using Types = std::tuple<OptionalString, long long, int, double>;
  std::tuple_element_t<Index % std::tuple_size_v<Types>, Types> value{};
};

template <typename Indices>
class WideObjectOf;

template <std::size_t... Indices>
class WideObjectOf<std::index_sequence<Indices...>> final : public Model<WideObjectOf<std::index_sequence<Indices...>>>,
                                                            public WideField<Indices>... {
 public:
  static void describe(ModelDescription<WideObjectOf>& model) {
    (model.property(nameOf(Indices), &WideField<Indices>::value), ...);
  }

  static std::string nameOf(std::size_t index) { return "property" + std::to_string(index); }

  // Gives every property a value.
  void fill() { (fill(WideField<Indices>::value), ...); }

 private:
  static void fill(OptionalString& value) { value = "Analytical Engines"; }
  template <typename Number>
  static void fill(Number& value) {
    value = Number{1843};
  }
};

template <std::size_t Count>
using WideObject = WideObjectOf<std::make_index_sequence<Count>>;

}  // namespace korvex::benchmarks
