// The model classes of an app by the names that its definitions call them by.
#pragma once

#include <map>
#include <string_view>

#include "korvex/Export.h"
#include "korvex/ModelClass.h"

namespace korvex {

// Filled before it is used; afterwards any number of threads read it. Classes and their names live until the program
// ends, so copies are cheap and equal.
//
//   ModelRegistry models;
//   models.add<Person>();
//   models.add<Phone>();
class KORVEX_EXPORT ModelRegistry {
 public:
  // False, and nothing is added, when the class has no name (ModelDescription::className) or another class has it.
  template <ModelType Class>
  bool add() {
    return add(Class::describedClass());
  }
  bool add(const ModelClass& modelClass);

  // Null when there is none of that name. Its `create` makes an object.
  [[nodiscard]] const ModelClass* find(std::string_view name) const;

 private:
  std::map<std::string_view, const ModelClass*> _classes;
};

}  // namespace korvex
