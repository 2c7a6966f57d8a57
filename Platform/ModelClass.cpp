#include "Platform/ModelClass.h"

#include <algorithm>

namespace korvex {

namespace {

// The entry of that name in a list of the class or of its nearest ancestor that has one.
template <typename Entry>
const Entry* declared(const ModelClass& modelClass, std::vector<Entry> ModelClass::*list, std::string_view name) {
  for (const ModelClass* level = &modelClass; level; level = level->superclass) {
    const std::vector<Entry>& entries = level->*list;
    const auto found =
        std::find_if(entries.begin(), entries.end(), [name](const Entry& entry) { return entry.name == name; });
    if (found != entries.end()) return &*found;
  }
  return nullptr;
}

const void* addressOf(const ModelObject& object, const ModelField& field) {
  return reinterpret_cast<const std::byte*>(&object) + field.offset;
}

bool derivesFrom(const ModelClass& modelClass, const ModelClass& wanted) {
  const ModelClass* level = &modelClass;
  while (level && level != &wanted) level = level->superclass;
  return level != nullptr;
}

}  // namespace

const ModelClass& getClass(const ModelObject& object) { return object.modelClass(); }

const ModelProperty* getProperty(const ModelClass& modelClass, std::string_view name) {
  return declared(modelClass, &ModelClass::properties, name);
}

const char* getPropertyAttributes(const ModelProperty& property) { return property.attributes.c_str(); }

const char* getPropertyName(const ModelProperty& property) { return property.name.c_str(); }

const ModelField* getField(const ModelClass& modelClass, std::string_view name) {
  return declared(modelClass, &ModelClass::fields, name);
}

const char* getFieldTypeEncoding(const ModelField& field) { return field.typeEncoding; }

std::ptrdiff_t getFieldOffset(const ModelField& field) { return field.offset; }

ObjectValue getObjectField(const ModelObject& object, const ModelField& field) {
  return field.get(addressOf(object, field));
}

void setObjectField(ModelObject& object, const ModelField& field, const ObjectValue& value) {
  field.set(const_cast<void*>(addressOf(object, field)), value);
}

ObjectValue FieldAccess<OptionalString>::get(const OptionalString& field) {
  if (!field) return {};
  return std::string_view(*field);
}

void FieldAccess<OptionalString>::set(OptionalString& field, const ObjectValue& value) {
  if (const auto* text = std::get_if<std::string_view>(&value)) {
    field = std::string(*text);
  } else {
    field.reset();
  }
}

void FieldAccess<std::string>::set(std::string& field, const ObjectValue& value) {
  const auto* text = std::get_if<std::string_view>(&value);
  field = std::string(text ? *text : std::string_view());
}

ObjectValue FieldAccess<OptionalNumber>::get(const OptionalNumber& field) {
  if (!field) return {};
  return *field;
}

void FieldAccess<OptionalNumber>::set(OptionalNumber& field, const ObjectValue& value) {
  const auto* number = std::get_if<NumberObject>(&value);
  field = number ? OptionalNumber(*number) : std::nullopt;
}

std::shared_ptr<ModelObject> objectOfClass(const ObjectValue& value, const ModelClass& wanted) {
  const auto* object = std::get_if<std::shared_ptr<ModelObject>>(&value);
  return object && *object && derivesFrom(getClass(**object), wanted) ? *object : nullptr;
}

}  // namespace korvex
