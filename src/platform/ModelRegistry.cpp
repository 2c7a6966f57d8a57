#include "korvex/ModelRegistry.h"

#include <type_traits>
#include <utility>

#include "korvex/ScalarTypes.h"

namespace korvex {

namespace {

std::string jsonString(std::string_view text) {
  constexpr std::string_view digits = "0123456789abcdef";
  std::string json = "\"";
  for (const char character : text) {
    const auto byte = static_cast<unsigned char>(character);
    if (byte < 0x20U) {
      json.append("\\u00").append({digits[byte >> 4U], digits[byte & 15U]});
      continue;
    }
    if (character == '"' || character == '\\') json += '\\';
    json += character;
  }
  return json + '"';
}

std::string_view scalarWord(char code) {
  std::string_view word = "object";
  anyScalarType([&]<typename Scalar>(const ScalarType<Scalar>& row) {
    if (row.code != code) return false;
    word = std::is_same_v<Scalar, bool> ? "bool" : std::is_floating_point_v<Scalar> ? "real" : "integer";
    return true;
  });
  return word;
}

// From the attributes of a property, such as "TB,N,V_crypted".
std::string_view typeWord(std::string_view attributes) {
  const std::string_view code = attributes.substr(1, attributes.find(',') - 1);
  if (code == stringTypeCode) return "string";
  if (code == numberTypeCode) return "number";
  if (code == binaryTypeCode) return "binary";
  return scalarWord(code.front());
}

std::string propertyJson(const ModelClass& modelClass, const ModelProperty& property) {
  std::string json = "{\"name\": " + jsonString(property.name) + ", \"type\": \"";
  json.append(typeWord(property.attributes)).append("\"");
  const ModelField* field = getPropertyField(modelClass, property);
  if (field && field->objectClass && !field->objectClass().name.empty()) {
    json += ", \"class\": " + jsonString(field->objectClass().name);
  }
  return json + "}";
}

std::string classJson(const ModelClass& modelClass) {
  std::map<std::string_view, std::string> properties;  // a class comes before its base classes
  for (const ModelClass* declaring = &modelClass; declaring; declaring = declaring->superclass) {
    for (const ModelProperty& property : declaring->properties) {
      properties.emplace(property.name, propertyJson(*declaring, property));
    }
  }
  std::string json = "  {\"name\": " + jsonString(modelClass.name) + ", \"properties\": [";
  std::string_view separator = "\n    ";
  for (const auto& [name, property] : properties) json.append(std::exchange(separator, ",\n    ")).append(property);
  return json + "\n  ]}";
}

}  // namespace

bool ModelRegistry::add(const ModelClass& modelClass) {
  if (modelClass.name.empty()) return false;
  return _classes.emplace(modelClass.name, &modelClass).first->second == &modelClass;
}

const ModelClass* ModelRegistry::find(std::string_view name) const {
  const auto found = _classes.find(name);
  return found == _classes.end() ? nullptr : found->second;
}

std::string ModelRegistry::json() const {
  std::string json = "{\"classes\": [";
  std::string_view separator = "\n";
  for (const auto& [name, modelClass] : _classes) {
    json.append(std::exchange(separator, ",\n")).append(classJson(*modelClass));
  }
  return json + "\n]}\n";
}

}  // namespace korvex
