// Arguments and results of methods.
//
//   Value       owned: an argument, a property, a cell of a row
//   Dictionary  values by name, in the order of insertion, such as the arguments of a call
//   ValueView   a view of a value, such as the values that a statement binds
//
// Nine kinds of C++ values become one of eight types:
//
//   nullptr, an empty std::optional                  Null
//   bool, the integers up to 64 bits, enumerations   Integer (a bool is 0 or 1)
//   float, double                                    Real
//   const char*, std::string_view, std::string       Text
//   Value::blob, std::vector<std::byte>              Blob
//   ValueList, a std::vector of what a Value can be  List
//   Dictionary                                       Dictionary
//   std::shared_ptr of a model class, Value::reference   Object
//
// SQL integers are signed, so an unsigned 64-bit integer needs an explicit cast or Value::ofUnsigned. Text may be any
// bytes, including zero bytes and invalid UTF-8; it is neither checked nor changed.
//
// A Value only changes by assignment. Copies share lists and dictionaries, and share or reference an Object. Several
// threads may read the same Value.
#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

#include "korvex/Export.h"
#include "korvex/ModelClass.h"

namespace korvex {

enum class ValueType : std::uint8_t { Null, Integer, Real, Text, Blob, List, Dictionary, Object };

// "a text", "an integer" and so on, for messages.
[[nodiscard]] KORVEX_EXPORT std::string_view nameOf(ValueType type);

class Value;
class Dictionary;
using ValueList = std::vector<Value>;

// A view of a value: cheap to copy, and valid while its source is alive and unchanged. Only the accessors of the
// value's own type may be called, unless they say otherwise.
class KORVEX_EXPORT ValueView {
 public:
  ValueView() = default;

  static ValueView ofInteger(std::int64_t integer) {
    ValueView view(ValueType::Integer);
    view._integer = integer;
    return view;
  }
  static ValueView ofReal(double real) {
    ValueView view(ValueType::Real);
    view._real = real;
    return view;
  }
  static ValueView ofText(std::string_view text) { return {ValueType::Text, text}; }
  static ValueView ofBlob(std::string_view bytes) { return {ValueType::Blob, bytes}; }
  static ValueView ofList(const ValueList& list) { return {ValueType::List, &list}; }
  static ValueView ofDictionary(const Dictionary& dictionary) { return {ValueType::Dictionary, &dictionary}; }
  static ValueView ofObject(const ModelObject& object) { return {ValueType::Object, &object}; }

  [[nodiscard]] ValueType type() const { return _type; }
  [[nodiscard]] bool isNull() const { return _type == ValueType::Null; }

  [[nodiscard]] std::int64_t integer() const { return _integer; }
  [[nodiscard]] double real() const { return _real; }
  // The bytes of a text or a blob.
  [[nodiscard]] std::string_view bytes() const { return {_bytes, _size}; }
  [[nodiscard]] const ValueList& list() const { return *static_cast<const ValueList*>(_pointer); }
  [[nodiscard]] const Dictionary& dictionary() const { return *static_cast<const Dictionary*>(_pointer); }
  [[nodiscard]] const ModelObject& object() const { return *static_cast<const ModelObject*>(_pointer); }

  // Equal type and content; NaN equals NaN, and objects are equal if they are the same object.
  [[nodiscard]] bool operator==(const ValueView& other) const;

 private:
  explicit ValueView(ValueType type) : _type(type) {}
  ValueView(ValueType type, std::string_view bytes) : _type(type), _size(bytes.size()), _bytes(bytes.data()) {}
  ValueView(ValueType type, const void* pointer) : _type(type), _pointer(pointer) {}

  ValueType _type = ValueType::Null;
  std::size_t _size = 0;
  union {
    std::int64_t _integer = 0;
    double _real;
    const char* _bytes;
    const void* _pointer;
  };
};

// All integer types that fit into 64 signed bits, including bool and characters.
template <typename T>
concept SignedInteger64 = std::integral<T> &&(sizeof(T) < sizeof(std::int64_t) || std::signed_integral<T>);

template <typename T>
concept UnsignedInteger64 = std::unsigned_integral<T> && sizeof(T) == sizeof(std::uint64_t);

class KORVEX_EXPORT Value {
 public:
  Value() = default;
  Value(std::nullptr_t) {}  // NOLINT(google-explicit-constructor): arguments are written as they are
  template <SignedInteger64 Integer>
  Value(Integer integer) : _content(static_cast<std::int64_t>(integer)) {}  // NOLINT(google-explicit-constructor)
  template <UnsignedInteger64 Integer>
  Value(Integer integer) = delete;
  template <FixedEnumeration Enumeration>
  Value(Enumeration enumeration)  // NOLINT(google-explicit-constructor)
      : Value(static_cast<std::underlying_type_t<Enumeration>>(enumeration)) {}
  template <std::floating_point Real>
  Value(Real real) : _content(static_cast<double>(real)) {}      // NOLINT(google-explicit-constructor)
  Value(const char* text) : _content(std::string(text)) {}       // NOLINT(google-explicit-constructor)
  Value(std::string_view text) : _content(std::string(text)) {}  // NOLINT(google-explicit-constructor)
  Value(std::string text) : _content(std::move(text)) {}         // NOLINT(google-explicit-constructor)
  Value(const std::vector<std::byte>& bytes)                     // NOLINT(google-explicit-constructor)
      : _content(Bytes{std::string(reinterpret_cast<const char*>(bytes.data()), bytes.size())}) {}
  Value(ValueList list)  // NOLINT(google-explicit-constructor)
      : _content(std::make_shared<const ValueList>(std::move(list))) {}
  Value(Dictionary dictionary);  // NOLINT(google-explicit-constructor)
  template <typename Element>
  requires std::convertible_to<const Element&, Value> &&
      (!std::same_as<Element, std::byte>)Value(const std::vector<Element>& list)  // NOLINT(google-explicit-constructor)
      : Value(ValueList(list.begin(), list.end())) {}
  template <typename Element>
  requires std::convertible_to<const Element&, Value> Value(
      const std::optional<Element>& value) {  // NOLINT(google-explicit-constructor)
    if (value) *this = Value(*value);
  }
  // A null pointer is Null.
  template <ModelType Object>
  Value(const std::shared_ptr<Object>& object) {  // NOLINT(google-explicit-constructor)
    if (object) _content = std::shared_ptr<const ModelObject>(object);
  }

  [[nodiscard]] static Value blob(std::string bytes) {
    Value value;
    value._content = Bytes{std::move(bytes)};
    return value;
  }
  // Absent if the integer exceeds SQL's integers.
  [[nodiscard]] static std::optional<Value> ofUnsigned(std::uint64_t integer);
  // A reference to an object, which must live and stay unchanged while this value or a copy is used.
  [[nodiscard]] static Value reference(const ModelObject& object) {
    Value value;
    value._content = std::shared_ptr<const ModelObject>(std::shared_ptr<const ModelObject>(), &object);
    return value;
  }
  // A copy of the viewed value. An object is only referenced.
  [[nodiscard]] static Value copyOf(const ValueView& view);

  [[nodiscard]] ValueType type() const { return static_cast<ValueType>(_content.index()); }
  [[nodiscard]] bool isNull() const { return type() == ValueType::Null; }
  [[nodiscard]] ValueView view() const;

  // The content if it has that type; otherwise absent or null. Nothing is converted.
  [[nodiscard]] std::optional<std::int64_t> integer() const { return contentAs<std::int64_t>(); }
  [[nodiscard]] std::optional<double> real() const { return contentAs<double>(); }
  [[nodiscard]] OptionalStringView text() const {
    const auto* text = std::get_if<std::string>(&_content);
    return text ? OptionalStringView(*text) : std::nullopt;
  }
  [[nodiscard]] OptionalStringView blob() const {
    const auto* bytes = std::get_if<Bytes>(&_content);
    return bytes ? OptionalStringView(bytes->bytes) : std::nullopt;
  }
  [[nodiscard]] const ValueList* list() const { return pointee<ValueList>(); }
  [[nodiscard]] const Dictionary* dictionary() const { return pointee<Dictionary>(); }
  [[nodiscard]] const ModelObject* object() const { return pointee<ModelObject>(); }

  [[nodiscard]] bool operator==(const Value& other) const { return view() == other.view(); }

 private:
  struct Bytes {
    std::string bytes;
  };

  template <typename T>
  [[nodiscard]] std::optional<T> contentAs() const {
    const auto* content = std::get_if<T>(&_content);
    return content ? std::optional<T>(*content) : std::nullopt;
  }
  template <typename T>
  [[nodiscard]] const T* pointee() const {
    const auto* pointer = std::get_if<std::shared_ptr<const T>>(&_content);
    return pointer ? pointer->get() : nullptr;
  }

  // In the order of ValueType.
  std::variant<std::monostate, std::int64_t, double, std::string, Bytes, std::shared_ptr<const ValueList>,
               std::shared_ptr<const Dictionary>, std::shared_ptr<const ModelObject>>
      _content;
};

// Values by name. Names are unique, compared exactly, and kept in the order of insertion.
class KORVEX_EXPORT Dictionary {
 public:
  struct Entry {
    std::string name;
    Value value;
  };

  Dictionary() = default;
  // {{"minAge", 18}, {"name", "Ada"}}; the last of several entries with the same name counts.
  Dictionary(std::initializer_list<Entry> entries);

  // Inserts a value, or replaces the value of that name. Constant time.
  void set(std::string name, Value value);
  // Null if there is none. Constant time. The pointer is valid until the dictionary changes.
  [[nodiscard]] const Value* find(std::string_view name) const;

  [[nodiscard]] std::size_t size() const { return _entries.size(); }
  [[nodiscard]] bool empty() const { return _entries.empty(); }
  [[nodiscard]] const std::vector<Entry>& entries() const { return _entries; }
  [[nodiscard]] auto begin() const { return _entries.begin(); }
  [[nodiscard]] auto end() const { return _entries.end(); }

 private:
  [[nodiscard]] std::size_t indexOf(std::string_view name) const;
  void remember(std::size_t index);
  void rebuildSlots();

  std::vector<Entry> _entries;
  std::vector<std::uint32_t> _slots;  // a hash table of indices + 1; empty while linear search is as fast
};

// The arguments of a call, by the names that the method declares.
using Arguments = Dictionary;

}  // namespace korvex
