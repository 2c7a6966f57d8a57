#include "korvex/ModelRegistry.h"

namespace korvex {

bool ModelRegistry::add(const ModelClass& modelClass) {
  if (modelClass.name.empty()) return false;
  return _classes.emplace(modelClass.name, &modelClass).first->second == &modelClass;
}

const ModelClass* ModelRegistry::find(std::string_view name) const {
  const auto found = _classes.find(name);
  return found == _classes.end() ? nullptr : found->second;
}

}  // namespace korvex
