// The model classes of an app, by their names in definitions.
#pragma once

#include <map>
#include <string>
#include <string_view>

#include "korvex/Export.h"
#include "korvex/ModelClass.h"

namespace korvex {

// Fill it before use; after that, any number of threads may read it. Copies are cheap, because classes and their names
// live until the program ends.
//
//   ModelRegistry models;
//   models.add<Person>();
//   models.add<Phone>();
class KORVEX_EXPORT ModelRegistry {
 public:
  // Returns false and adds nothing if the class has no name (ModelDescription::className) or another class has the same
  // name.
  template <ModelType Class>
  bool add() {
    return add(Class::describedClass());
  }
  bool add(const ModelClass& modelClass);

  // Null if there is none with that name. Its `create` makes an object.
  [[nodiscard]] const ModelClass* find(std::string_view name) const;

  // The classes as JSON for `korvex-dao check --models`, by name, with the properties that they declare and inherit:
  //
  //   {"classes": [
  //     {"name": "Person", "properties": [{"name": "address", "type": "object", "class": "Address"}, …]},
  //     …
  //   ]}
  //
  // The type is bool, integer, real, string, number, binary or object; an object of a class with a name has that class.
  [[nodiscard]] std::string json() const;

 private:
  std::map<std::string_view, const ModelClass*> _classes;
};

}  // namespace korvex
