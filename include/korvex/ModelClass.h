// Model classes at run time: which properties and fields a class declares, and access to the fields of an
// object whose class is not known at compile time.
//
// A model class derives from Model and describes itself, with one line for each property:
//
//   class Person : public Model<Person> {
//    public:
//     static void describe(ModelDescription<Person>& model) {
//       model.className("Person");                         // the name in definitions
//       model.property("nickname", &Person::_nickname);    // backed by the field "_nickname"
//       model.property("age", &Person::_years, "_years");  // by a field of another name
//       model.propertyWithoutField<bool>("adult");         // computed
//     }
//
//    private:
//     OptionalString _nickname;
//     std::int32_t _years = 0;
//   };
//   class Employee : public Model<Employee, Person> { … };  // inherits the properties of Person
//
// The C++ type of a field determines at compile time what it can store:
//
//   bool, the integers, float, double       scalar, type code "B", "c" … "d"
//   enumerations with a fixed type          scalar, as the underlying type
//   OptionalString, std::string             string; absent becomes empty in a std::string
//   OptionalNumber                          number object
//   std::vector<std::byte>, also optional   binary; absent becomes empty without optional
//   std::shared_ptr<T>, std::weak_ptr<T>,
//   T* with T a model class                 object; a strong, weak or non-owning reference
//   std::optional of a scalar               compile-time error; use OptionalNumber
//   any other class                         object that cannot be read or replaced
//
// A class is described once, on first use, on any thread. Its description, handles and names are then immutable and
// live until the program ends. Objects belong to the caller, who must not let another thread change an object while its
// fields are read or replaced.
#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

#include "korvex/Export.h"
#include "korvex/NumberObject.h"
#include "korvex/OptionalString.h"

namespace korvex {

struct ModelClass;

// The base of all model objects.
class KORVEX_EXPORT ModelObject {
 public:
  virtual ~ModelObject() = default;
  // The class of the object: the most derived one that derives from Model.
  [[nodiscard]] virtual const ModelClass& modelClass() const = 0;
};

// The bytes of a binary field.
struct BinaryView {
  std::string_view bytes;

  bool operator==(const BinaryView&) const = default;
};
using OptionalBinaryView = std::optional<BinaryView>;

// The value of an object-valued field: absent (monostate), a string or bytes (views that are valid until
// the field changes), a number, or another model object.
using ObjectValue =
    std::variant<std::monostate, std::string_view, NumberObject, std::shared_ptr<ModelObject>, BinaryView>;

// The type codes of strings, number objects and all other objects.
inline constexpr const char* stringTypeCode = "@\"String\"";
inline constexpr const char* numberTypeCode = "@\"Number\"";
inline constexpr const char* binaryTypeCode = "@\"Binary\"";
inline constexpr const char* objectTypeCode = "@";

// Reads and replaces a field of type Value; both are null for other fields.
template <typename Value>
struct FieldOperations {
  Value (*get)(const void* field) = nullptr;
  void (*set)(void* field, const Value& value) = nullptr;
};

// Reads and replaces a scalar field; all are null for other fields. Numbers are converted to the type of the field: for
// a bool, everything except 0 is true; for a float or double, an integer is rounded. Storing returns false and changes
// nothing if an integer field cannot represent the number: out of range, with a fraction, or NaN.
struct ScalarOperations {
  NumberObject (*get)(const void* field) = nullptr;
  bool (*setInteger)(void* field, std::int64_t integer) = nullptr;
  bool (*setReal)(void* field, double real) = nullptr;
};

struct ModelField {
  std::string name;
  const char* typeEncoding;
  std::ptrdiff_t offset;  // in bytes, from the ModelObject in every object of the class
  FieldOperations<OptionalStringView> text;
  FieldOperations<OptionalNumber> number;
  FieldOperations<std::shared_ptr<ModelObject>> object;
  FieldOperations<OptionalBinaryView> binary;
  ScalarOperations scalar;
  // The class of the objects that the field holds; null for other fields.
  const ModelClass& (*objectClass)() = nullptr;
};

struct ModelProperty {
  std::string name;
  std::string attributes;
  std::string fieldName;  // of the backing field; empty if the property is computed
};

// The description of one class; built by Model and never changed afterwards.
struct ModelClass {
  const ModelClass* superclass = nullptr;  // null if the class derives from no other model class
  std::vector<ModelProperty> properties;   // properties and fields are sorted by name
  std::vector<ModelField> fields;
  std::string name;  // empty if the class has no name
  // Creates an object; null if the class has no public default constructor.
  std::shared_ptr<ModelObject> (*create)() = nullptr;
};

// Inserts an entry into the sorted list of a class. Of several entries with the same name, the first one counts.
KORVEX_EXPORT void addEntry(std::vector<ModelProperty>& properties, ModelProperty property);
KORVEX_EXPORT void addEntry(std::vector<ModelField>& fields, ModelField field);

// ---------------------------------------------------------------------------------------------
// Introspection. Names are compared exactly. A class is searched before its base classes; null means that none of them
// declares the name.

[[nodiscard]] KORVEX_EXPORT const ModelClass& getClass(const ModelObject& object);
[[nodiscard]] KORVEX_EXPORT const ModelProperty* getProperty(const ModelClass& modelClass, std::string_view name);
// Comma-separated: "T" and the type code, "N", and if there is a backing field "V" and its name, as in
// "TB,N,V_crypted".
[[nodiscard]] KORVEX_EXPORT const char* getPropertyAttributes(const ModelProperty& property);
[[nodiscard]] KORVEX_EXPORT const char* getPropertyName(const ModelProperty& property);
// The backing field of a property, declared by the class or a base class; null if there is none.
[[nodiscard]] KORVEX_EXPORT const ModelField* getPropertyField(const ModelClass& modelClass,
                                                               const ModelProperty& property);
[[nodiscard]] KORVEX_EXPORT const ModelField* getField(const ModelClass& modelClass, std::string_view name);
[[nodiscard]] KORVEX_EXPORT const char* getFieldTypeEncoding(const ModelField& field);
// The offset of the field in every object of the class, in bytes from its ModelObject.
[[nodiscard]] KORVEX_EXPORT std::ptrdiff_t getFieldOffset(const ModelField& field);
// The value of an object-valued field; absent for a scalar field.
[[nodiscard]] KORVEX_EXPORT ObjectValue getObjectField(const ModelObject& object, const ModelField& field);
// Replaces the value of an object-valued field; the field determines the ownership. A value of an unsuitable type
// counts as absent. A scalar field is unchanged.
KORVEX_EXPORT void setObjectField(ModelObject& object, const ModelField& field, const ObjectValue& value);

// Shortcuts for code that reads and writes whole objects:

// The backing field of a property; null if the property is computed or not declared.
[[nodiscard]] KORVEX_EXPORT const ModelField* fieldOfProperty(const ModelClass& modelClass, std::string_view property);
// The value of a scalar field, with the type of the field; absent for an object-valued field.
[[nodiscard]] KORVEX_EXPORT OptionalNumber getScalarField(const ModelObject& object, const ModelField& field);
// Stores a number like ScalarOperations; also false for an object-valued field.
[[nodiscard]] KORVEX_EXPORT bool setScalarField(ModelObject& object, const ModelField& field, std::int64_t integer);
[[nodiscard]] KORVEX_EXPORT bool setScalarField(ModelObject& object, const ModelField& field, double real);
// Whether a class is the same as another one or derives from it.
[[nodiscard]] KORVEX_EXPORT bool isKindOf(const ModelClass& modelClass, const ModelClass& wanted);

// ---------------------------------------------------------------------------------------------
// Describing a class

template <typename T>
concept ModelType = std::derived_from<T, ModelObject>;

// Only such an enumeration can hold every value of its underlying type.
template <typename T>
concept FixedEnumeration = std::is_enum_v<T> && requires {
  T{0};
};

// Converts a number to a scalar type, like ScalarOperations.
template <BoxableScalar Scalar>
[[nodiscard]] std::optional<Scalar> convertedTo(std::int64_t integer) {
  if constexpr (std::is_same_v<Scalar, bool>) return integer != 0;
  if constexpr (std::is_floating_point_v<Scalar>) return static_cast<Scalar>(integer);
  const auto scalar = static_cast<Scalar>(integer);
  const bool same = static_cast<std::int64_t>(scalar) == integer && (std::is_signed_v<Scalar> || integer >= 0);
  return same ? std::optional(scalar) : std::nullopt;
}
template <BoxableScalar Scalar>
[[nodiscard]] std::optional<Scalar> convertedTo(double real) {
  if constexpr (std::is_same_v<Scalar, bool>) return real != 0;
  if constexpr (std::is_floating_point_v<Scalar>) return static_cast<Scalar>(real);
  // A power of two, which a double holds exactly, and the first value beyond the largest.
  constexpr double end = 2.0 * static_cast<double>(std::numeric_limits<Scalar>::max() / 2 + 1);
  const bool inside = real >= static_cast<double>(std::numeric_limits<Scalar>::min()) && real < end;
  if (!inside || static_cast<double>(static_cast<Scalar>(real)) != real) return std::nullopt;
  return static_cast<Scalar>(real);
}

template <typename T>
concept ScalarField = BoxableScalar<T> || FixedEnumeration<T>;

template <typename T>
inline constexpr bool isOptionalScalar = std::is_same_v<T, NumberObject>;
template <ScalarField Scalar>
inline constexpr bool isOptionalScalar<std::optional<Scalar>> = true;

// Describes a field of type T to the introspection operations. `Value` is the type with which they read and replace it,
// if they can.
template <typename T>
struct FieldAccess {
  static_assert(std::is_class_v<T>, "a model cannot have a field of this type");
  static_assert(!isOptionalScalar<T>, "declare a number that may be absent as an OptionalNumber");
  static constexpr const char* typeEncoding = objectTypeCode;
};

template <BoxableScalar Scalar>
struct FieldAccess<Scalar> {
  static constexpr char typeEncoding[] = {scalarTypeCode<Scalar>, '\0'};
};

template <FixedEnumeration Enumeration>
struct FieldAccess<Enumeration> {
  static constexpr auto& typeEncoding = FieldAccess<std::underlying_type_t<Enumeration>>::typeEncoding;
};

template <>
struct FieldAccess<OptionalString> {
  using Value = OptionalStringView;
  static constexpr const char* typeEncoding = stringTypeCode;
  static Value get(const OptionalString& field) { return field; }
  static void set(OptionalString& field, const Value& value) {
    if (!value) return field.reset();
    if (field) return static_cast<void>(field->assign(*value));
    field.emplace(*value);
  }
};

template <>
struct FieldAccess<std::string> {
  using Value = OptionalStringView;
  static constexpr const char* typeEncoding = stringTypeCode;
  static Value get(const std::string& field) { return field; }
  static void set(std::string& field, const Value& value) { field.assign(value.value_or(std::string_view())); }
};

template <>
struct FieldAccess<OptionalNumber> {
  using Value = OptionalNumber;
  static constexpr const char* typeEncoding = numberTypeCode;
  static Value get(const OptionalNumber& field) { return field; }
  static void set(OptionalNumber& field, const Value& value) { field = value; }
};

template <>
struct FieldAccess<std::vector<std::byte>> {
  using Value = OptionalBinaryView;
  using Bytes = std::vector<std::byte>;
  static constexpr const char* typeEncoding = binaryTypeCode;
  static Value get(const Bytes& field) {
    return BinaryView{{reinterpret_cast<const char*>(field.data()), field.size()}};
  }
  static void set(Bytes& field, const Value& value) {
    const auto bytes = std::as_bytes(std::span(value ? value->bytes : std::string_view()));
    field.assign(bytes.begin(), bytes.end());
  }
};

template <>
struct FieldAccess<std::optional<std::vector<std::byte>>> {
  using Value = OptionalBinaryView;
  using Bytes = FieldAccess<std::vector<std::byte>>;
  static constexpr const char* typeEncoding = binaryTypeCode;
  static Value get(const std::optional<Bytes::Bytes>& field) { return field ? Bytes::get(*field) : std::nullopt; }
  static void set(std::optional<Bytes::Bytes>& field, const Value& value) {
    if (!value) return field.reset();
    if (!field) field.emplace();
    Bytes::set(*field, value);
  }
};

// The object if its class is `wanted` or derives from it; otherwise null.
[[nodiscard]] KORVEX_EXPORT std::shared_ptr<ModelObject> objectOfClass(const std::shared_ptr<ModelObject>& object,
                                                                       const ModelClass& wanted);

template <ModelType T>
struct FieldAccess<std::shared_ptr<T>> {
  using Value = std::shared_ptr<ModelObject>;
  using Object = T;
  static constexpr const char* typeEncoding = objectTypeCode;
  static Value get(const std::shared_ptr<T>& field) { return field; }
  static void set(std::shared_ptr<T>& field, const Value& value) {
    field = std::static_pointer_cast<T>(objectOfClass(value, T::describedClass()));
  }
};

template <ModelType T>
struct FieldAccess<std::weak_ptr<T>> {
  using Value = std::shared_ptr<ModelObject>;
  using Object = T;
  static constexpr const char* typeEncoding = objectTypeCode;
  static Value get(const std::weak_ptr<T>& field) { return field.lock(); }
  static void set(std::weak_ptr<T>& field, const Value& value) {
    field = std::static_pointer_cast<T>(objectOfClass(value, T::describedClass()));
  }
};

template <ModelType T>
struct FieldAccess<T*> {
  using Value = std::shared_ptr<ModelObject>;
  using Object = T;
  static constexpr const char* typeEncoding = objectTypeCode;
  // Does not share ownership: the owner of the object keeps it alive.
  static Value get(T* const& field) { return Value(Value(), field); }
  static void set(T*& field, const Value& value) {
    field = static_cast<T*>(objectOfClass(value, T::describedClass()).get());
  }
};

// Passed to Described::describe, which fills it.
template <typename Described>
class ModelDescription {
 public:
  explicit ModelDescription(ModelClass& modelClass) : _class(modelClass) {}

  // The name of the class in definitions: in "result", <map> and <crypt>.
  void className(std::string name) { _class.name = std::move(name); }

  // A property backed by a field, which is a member of Described or of a base class. By default, the field is named "_"
  // followed by the property's name.
  template <typename Type, typename Owner>
  void property(const std::string& name, Type Owner::*member, std::string fieldName = {}) {
    static_assert(std::derived_from<Described, Owner>);
    if (fieldName.empty()) fieldName = "_" + name;
    addEntry(_class.properties, {name, attributesOf<Type>() + ",V" + fieldName, fieldName});
    addEntry(_class.fields, {std::move(fieldName), FieldAccess<Type>::typeEncoding, offsetOf(member),
                             operations<Type, OptionalStringView>(), operations<Type, OptionalNumber>(),
                             operations<Type, std::shared_ptr<ModelObject>>(), operations<Type, OptionalBinaryView>(),
                             scalarOperations<Type>(), objectClass<Type>()});
  }

  // A computed property.
  template <typename Type>
  void propertyWithoutField(const std::string& name) {
    addEntry(_class.properties, {name, attributesOf<Type>(), {}});
  }

 private:
  template <typename Type>
  static std::string attributesOf() {
    return std::string("T") + FieldAccess<Type>::typeEncoding + ",N";
  }
  template <typename Type, typename Value>
  static FieldOperations<Value> operations() {
    if constexpr (requires { requires std::same_as<typename FieldAccess<Type>::Value, Value>; }) {
      return {[](const void* field) { return FieldAccess<Type>::get(*static_cast<const Type*>(field)); },
              [](void* field, const Value& value) { FieldAccess<Type>::set(*static_cast<Type*>(field), value); }};
    }
    return {};
  }

  template <typename Type>
  static const ModelClass& (*objectClass())() {
    if constexpr (requires { typename FieldAccess<Type>::Object; }) {
      return []() -> const ModelClass& { return FieldAccess<Type>::Object::describedClass(); };
    }
    return nullptr;
  }

  template <typename Type>
  static ScalarOperations scalarOperations() {
    if constexpr (BoxableScalar<Type>) {
      return {[](const void* field) { return NumberObject(*static_cast<const Type*>(field)); },
              [](void* field, std::int64_t integer) { return store<Type>(field, convertedTo<Type>(integer)); },
              [](void* field, double real) { return store<Type>(field, convertedTo<Type>(real)); }};
    } else if constexpr (FixedEnumeration<Type>) {
      return enumerationOperations<Type, std::underlying_type_t<Type>>();
    }
    return {};
  }
  template <typename Type, typename Scalar>
  static ScalarOperations enumerationOperations() {
    return {[](const void* field) { return NumberObject(static_cast<Scalar>(*static_cast<const Type*>(field))); },
            [](void* field, std::int64_t integer) { return store<Type>(field, convertedTo<Scalar>(integer)); },
            [](void* field, double real) { return store<Type>(field, convertedTo<Scalar>(real)); }};
  }
  template <typename Type, typename Scalar>
  static bool store(void* field, std::optional<Scalar> scalar) {
    if (scalar) *static_cast<Type*>(field) = static_cast<Type>(*scalar);
    return scalar.has_value();
  }

  // Only computes addresses in the raw storage; no object is created or read.
  template <typename Type, typename Owner>
  static std::ptrdiff_t offsetOf(Type Owner::*member) {
    static_assert(
        requires(ModelObject * object, Owner * owner) {
          static_cast<Described*>(object);
          static_cast<Described*>(owner);
        },
        "a model class cannot derive from ModelObject or from a field's class virtually: its offsets would vary");
    alignas(Described) std::byte storage[sizeof(Described)];
    auto* object = reinterpret_cast<Described*>(storage);
    return reinterpret_cast<std::byte*>(&(object->*member)) -
           reinterpret_cast<std::byte*>(static_cast<ModelObject*>(object));
  }

  ModelClass& _class;
};

// The base of the model class Described, which derives from the model class Base if one is given. A class that derives
// from a model class directly, without Model, has no description of its own.
template <typename Described, typename Base = ModelObject>
class Model : public Base {
 public:
  using Base::Base;

  // The one description of Described.
  [[nodiscard]] static const ModelClass& describedClass() {
    static const ModelClass& description = *newDescription();
    return description;
  }
  [[nodiscard]] const ModelClass& modelClass() const override { return describedClass(); }

 private:
  static const ModelClass* newDescription() {
    auto modelClass = std::make_unique<ModelClass>();
    if constexpr (!std::is_same_v<Base, ModelObject>) modelClass->superclass = &Base::describedClass();
    ModelDescription<Described> description(*modelClass);
    Described::describe(description);
    if constexpr (std::default_initializable<Described>) {
      modelClass->create = []() -> std::shared_ptr<ModelObject> { return std::make_shared<Described>(); };
    }
    return modelClass.release();
  }
};

}  // namespace korvex
