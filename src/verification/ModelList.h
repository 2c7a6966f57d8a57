// The model classes of an app, as its build knows them.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace korvex::verification {

struct ModelInfo {
  std::string name;  // in definitions; empty if the class has none
  std::string base;  // the C++ name of its base class; empty if there is none or its properties are listed
  std::map<std::string, std::string, std::less<>> properties;  // to the class of their objects, if it is known
};

class ModelList {
 public:
  // A file is the JSON that ModelRegistry::json() prints, or a C++ source with model classes.
  struct Reading;
  [[nodiscard]] static Reading read(const std::string& path);

  [[nodiscard]] bool empty() const { return _classes.empty(); }
  // Null if no class has that name.
  [[nodiscard]] const ModelInfo* find(std::string_view name) const;
  // The class of the property's objects, empty if it is not known. Null if neither the class nor a base class declares
  // the property.
  [[nodiscard]] const std::string* property(const ModelInfo& model, std::string_view property) const;
  // Of a class and its base classes.
  [[nodiscard]] std::vector<std::string_view> propertiesOf(const ModelInfo& model) const;
  // All with a name.
  [[nodiscard]] std::vector<const ModelInfo*> classes() const;
  // In the format of ModelRegistry::json(), without types.
  [[nodiscard]] std::string json() const;

 private:
  [[nodiscard]] const ModelInfo* baseOf(const ModelInfo& model) const;

  std::map<std::string, ModelInfo, std::less<>> _classes;  // by their C++ names
};

struct ModelList::Reading {
  ModelList models;
  std::string fault;  // why there are none, with the line and column in the file; empty if there are some
};

}  // namespace korvex::verification
