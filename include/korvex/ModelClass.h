// Model classes at run time: which properties and fields a class declares, and how to reach the
// fields of an object whose class is not known when the code is compiled.
//
// A model class derives from Model and describes itself once, a line a property:
//
//   class Person : public Model<Person> {
//    public:
//     static void describe(ModelDescription<Person>& model) {
//       model.property("nickname", &Person::_nickname);    // backed by the field "_nickname"
//       model.property("age", &Person::_years, "_years");  // by a field of another name
//       model.propertyWithoutField<bool>("adult");         // computed
//     }
//
//    private:
//     OptionalString _nickname;
//     std::int32_t _years = 0;
//   };
//   class Employee : public Model<Employee, Person> { … };  // finds what Person declares, too
//
// What a field can be is decided by its C++ type when the description is compiled:
//
//   bool, the integers, float, double       scalar, type code "B", "c" … "d"
//   enumerations of fixed underlying type   scalar, as the underlying type
//   OptionalString, std::string             string; a std::string takes "absent" as empty
//   OptionalNumber                          number object
//   std::shared_ptr<T>, std::weak_ptr<T>,
//   T* with T a model class                 object, held strongly, weakly, or not at all
//   any other class                         object that can neither be read nor replaced
//
// A class is described when it is first asked for, once, whatever the threads; afterwards it is
// only read and lives until the program ends. Handles and names stay valid as long. Objects belong
// to the caller, who keeps others from changing one while its fields are read or replaced.
#pragma once

#include <concepts>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

#include "korvex/Export.h"
#include "korvex/NumberObject.h"
#include "korvex/OptionalString.h"
#include "platform/Strings.h"

namespace korvex {

struct ModelClass;

// The base of all model objects.
class KORVEX_EXPORT ModelObject {
 public:
  virtual ~ModelObject() = default;
  // The class of the object: the most derived one that derives from Model.
  [[nodiscard]] virtual const ModelClass& modelClass() const = 0;
};

// The value of an object-valued field: absent (monostate), a string (a view, valid until the field
// changes), a number, or another model object.
using ObjectValue = std::variant<std::monostate, std::string_view, NumberObject, std::shared_ptr<ModelObject>>;

// The type codes of the object types that are told apart, and of all others.
inline constexpr const char* stringTypeCode = "@\"String\"";
inline constexpr const char* numberTypeCode = "@\"Number\"";
inline constexpr const char* objectTypeCode = "@";

// How a field that holds a Value is read and replaced; both are null for a field that holds another.
template <typename Value>
struct FieldOperations {
  Value (*get)(const void* field) = nullptr;
  void (*set)(void* field, const Value& value) = nullptr;
};

struct ModelField {
  std::string name;
  const char* typeEncoding;
  std::ptrdiff_t offset;  // in bytes, from the ModelObject in every object of the class
  FieldOperations<OptionalStringView> text;
  FieldOperations<OptionalNumber> number;
  FieldOperations<std::shared_ptr<ModelObject>> object;
};

struct ModelProperty {
  std::string name;
  std::string attributes;
};

// The description of one class; built by Model, never changed afterwards.
struct ModelClass {
  const ModelClass* superclass = nullptr;  // null when no other model class is derived from
  std::vector<ModelProperty> properties;   // both in the order of their names
  std::vector<ModelField> fields;
};

// Puts an entry in its place of a class's list; of several of one name the first described counts.
KORVEX_EXPORT void addEntry(std::vector<ModelProperty>& properties, ModelProperty property);
KORVEX_EXPORT void addEntry(std::vector<ModelField>& fields, ModelField field);

// ---------------------------------------------------------------------------------------------
// Introspection. Names are compared exactly; a class is searched before its ancestors, and null
// means that none of them declares the name.

[[nodiscard]] KORVEX_EXPORT const ModelClass& getClass(const ModelObject& object);
[[nodiscard]] KORVEX_EXPORT const ModelProperty* getProperty(const ModelClass& modelClass, std::string_view name);
// Comma-separated: "T" and the type code, "N", then "V" and the name of the backing field if there
// is one, as in "TB,N,V_crypted".
[[nodiscard]] KORVEX_EXPORT const char* getPropertyAttributes(const ModelProperty& property);
[[nodiscard]] KORVEX_EXPORT const char* getPropertyName(const ModelProperty& property);
[[nodiscard]] KORVEX_EXPORT const ModelField* getField(const ModelClass& modelClass, std::string_view name);
[[nodiscard]] KORVEX_EXPORT const char* getFieldTypeEncoding(const ModelField& field);
// Where the field lies in every object of the class, in bytes from its ModelObject.
[[nodiscard]] KORVEX_EXPORT std::ptrdiff_t getFieldOffset(const ModelField& field);
// The value of an object-valued field; absent for a scalar field.
[[nodiscard]] KORVEX_EXPORT ObjectValue getObjectField(const ModelObject& object, const ModelField& field);
// Replaces the value of an object-valued field by the field's own ownership rule. A value of
// another kind than the field's counts as absent; a scalar field is left alone.
KORVEX_EXPORT void setObjectField(ModelObject& object, const ModelField& field, const ObjectValue& value);

// ---------------------------------------------------------------------------------------------
// Describing a class

template <typename T>
concept ModelType = std::derived_from<T, ModelObject>;

// Only such an enumeration can hold every value of its underlying type.
template <typename T>
concept FixedEnumeration = std::is_enum_v<T> && requires {
  T{0};
};

// What a field of type T is to the introspection operations. Where it can be read and replaced
// through them, `Value` says as what.
template <typename T>
struct FieldAccess {
  static_assert(std::is_class_v<T>, "a model cannot have a field of this type");
  static_assert(!std::is_same_v<T, NumberObject>, "a number can be absent: its field is an OptionalNumber");
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

// The object when it is a `wanted` or derives from it; null otherwise.
[[nodiscard]] KORVEX_EXPORT std::shared_ptr<ModelObject> objectOfClass(const std::shared_ptr<ModelObject>& object,
                                                                       const ModelClass& wanted);

template <ModelType T>
struct FieldAccess<std::shared_ptr<T>> {
  using Value = std::shared_ptr<ModelObject>;
  static constexpr const char* typeEncoding = objectTypeCode;
  static Value get(const std::shared_ptr<T>& field) { return field; }
  static void set(std::shared_ptr<T>& field, const Value& value) {
    field = std::static_pointer_cast<T>(objectOfClass(value, T::describedClass()));
  }
};

template <ModelType T>
struct FieldAccess<std::weak_ptr<T>> {
  using Value = std::shared_ptr<ModelObject>;
  static constexpr const char* typeEncoding = objectTypeCode;
  static Value get(const std::weak_ptr<T>& field) { return field.lock(); }
  static void set(std::weak_ptr<T>& field, const Value& value) {
    field = std::static_pointer_cast<T>(objectOfClass(value, T::describedClass()));
  }
};

template <ModelType T>
struct FieldAccess<T*> {
  using Value = std::shared_ptr<ModelObject>;
  static constexpr const char* typeEncoding = objectTypeCode;
  // Shares no ownership: the object is as alive as whoever owns it keeps it.
  static Value get(T* const& field) { return Value(Value(), field); }
  static void set(T*& field, const Value& value) {
    field = static_cast<T*>(objectOfClass(value, T::describedClass()).get());
  }
};

// What Described::describe fills.
template <typename Described>
class ModelDescription {
 public:
  explicit ModelDescription(ModelClass& modelClass) : _class(modelClass) {}

  // A property backed by a field, a member of Described or of a base of it. The field is named
  // "_" and the property's name unless it is given another name.
  template <typename Type, typename Owner>
  void property(const std::string& name, Type Owner::*member, std::string fieldName = {}) {
    static_assert(std::derived_from<Described, Owner>);
    if (fieldName.empty()) fieldName = "_" + name;
    addEntry(_class.properties, {name, attributesOf<Type>() + ",V" + fieldName});
    addEntry(_class.fields, {std::move(fieldName), FieldAccess<Type>::typeEncoding, offsetOf(member),
                             operations<Type, OptionalStringView>(), operations<Type, OptionalNumber>(),
                             operations<Type, std::shared_ptr<ModelObject>>()});
  }

  // A property that is computed.
  template <typename Type>
  void propertyWithoutField(const std::string& name) {
    addEntry(_class.properties, {name, attributesOf<Type>()});
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

  // Only addresses are worked out over the raw storage; no object is made or read.
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

// The base of a model class Described, below another model class Base if it has one. A class that
// derives from a model class without Model in between is no class of its own.
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
    return modelClass.release();
  }
};

}  // namespace korvex
