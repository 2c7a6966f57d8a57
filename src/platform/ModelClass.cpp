#include "korvex/ModelClass.h"

#include <algorithm>

namespace korvex {

namespace {

// The entry of that name in a list of the class or of its nearest ancestor that has one.
template <typename Entry>
const Entry* declared(const ModelClass& modelClass, std::vector<Entry> ModelClass::*list, std::string_view name) {
  for (const ModelClass* level = &modelClass; level; level = level->superclass) {
    const std::vector<Entry>& entries = level->*list;
    const auto found =
        std::lower_bound(entries.begin(), entries.end(), name,
                         [](const Entry& entry, std::string_view wanted) { return entry.name < wanted; });
    if (found != entries.end() && found->name == name) return &*found;
  }
  return nullptr;
}

const void* addressOf(const ModelObject& object, const ModelField& field) {
  return reinterpret_cast<const std::byte*>(&object) + field.offset;
}

// The name after ",V" in a property's attributes; absent when the property is computed.
OptionalStringView backingFieldIn(std::string_view attributes) {
  const std::size_t mark = attributes.find(",V");
  if (mark == std::string_view::npos) return std::nullopt;
  const std::string_view rest = attributes.substr(mark + 2);
  return rest.substr(0, rest.find(','));
}

// The object value of an optional or a pointer; absent if it is empty.
ObjectValue objectValue(const std::shared_ptr<ModelObject>& object) {
  return object ? ObjectValue(object) : ObjectValue();
}

template <typename Value>
ObjectValue objectValue(const std::optional<Value>& value) {
  return value ? ObjectValue(*value) : ObjectValue();
}

template <typename Value>
std::optional<Value> valueAs(const ObjectValue& value) {
  const auto* wanted = std::get_if<Value>(&value);
  return wanted ? std::optional<Value>(*wanted) : std::nullopt;
}

template <typename Entry>
void addByName(std::vector<Entry>& entries, Entry&& entry) {
  const auto place = std::upper_bound(entries.begin(), entries.end(), entry.name,
                                      [](const std::string& name, const Entry& other) { return name < other.name; });
  entries.insert(place, std::move(entry));
}

}  // namespace

void addEntry(std::vector<ModelProperty>& properties, ModelProperty property) {
  addByName(properties, std::move(property));
}

void addEntry(std::vector<ModelField>& fields, ModelField field) { addByName(fields, std::move(field)); }

const ModelClass& getClass(const ModelObject& object) { return object.modelClass(); }

const ModelProperty* getProperty(const ModelClass& modelClass, std::string_view name) {
  return declared(modelClass, &ModelClass::properties, name);
}

const char* getPropertyAttributes(const ModelProperty& property) { return property.attributes.c_str(); }

const char* getPropertyName(const ModelProperty& property) { return property.name.c_str(); }

const ModelField* getPropertyField(const ModelClass& modelClass, const ModelProperty& property) {
  return property.fieldName.empty() ? nullptr : getField(modelClass, property.fieldName);
}

const ModelField* getField(const ModelClass& modelClass, std::string_view name) {
  return declared(modelClass, &ModelClass::fields, name);
}

const char* getFieldTypeEncoding(const ModelField& field) { return field.typeEncoding; }

std::ptrdiff_t getFieldOffset(const ModelField& field) { return field.offset; }

ObjectValue getObjectField(const ModelObject& object, const ModelField& field) {
  const void* address = addressOf(object, field);
  if (field.text.get) return objectValue(field.text.get(address));
  if (field.number.get) return objectValue(field.number.get(address));
  if (field.object.get) return objectValue(field.object.get(address));
  if (field.binary.get) return objectValue(field.binary.get(address));
  return {};
}

void setObjectField(ModelObject& object, const ModelField& field, const ObjectValue& value) {
  void* address = const_cast<void*>(addressOf(object, field));
  if (field.text.set) field.text.set(address, valueAs<std::string_view>(value));
  if (field.number.set) field.number.set(address, valueAs<NumberObject>(value));
  if (field.object.set) field.object.set(address, valueAs<std::shared_ptr<ModelObject>>(value).value_or(nullptr));
  if (field.binary.set) field.binary.set(address, valueAs<BinaryView>(value));
}

const ModelField* fieldOfProperty(const ModelClass& modelClass, std::string_view property) {
  const ModelProperty* found = getProperty(modelClass, property);
  const OptionalStringView field = found ? backingFieldIn(found->attributes) : std::nullopt;
  return field ? getField(modelClass, *field) : nullptr;
}

OptionalNumber getScalarField(const ModelObject& object, const ModelField& field) {
  return field.scalar.get ? OptionalNumber(field.scalar.get(addressOf(object, field))) : std::nullopt;
}

bool setScalarField(ModelObject& object, const ModelField& field, std::int64_t integer) {
  return field.scalar.setInteger && field.scalar.setInteger(const_cast<void*>(addressOf(object, field)), integer);
}

bool setScalarField(ModelObject& object, const ModelField& field, double real) {
  return field.scalar.setReal && field.scalar.setReal(const_cast<void*>(addressOf(object, field)), real);
}

bool isKindOf(const ModelClass& modelClass, const ModelClass& wanted) {
  const ModelClass* level = &modelClass;
  while (level && level != &wanted) level = level->superclass;
  return level != nullptr;
}

std::shared_ptr<ModelObject> objectOfClass(const std::shared_ptr<ModelObject>& object, const ModelClass& wanted) {
  return object && isKindOf(getClass(*object), wanted) ? object : nullptr;
}

}  // namespace korvex
