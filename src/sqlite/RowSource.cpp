#include "sqlite/RowSource.h"

#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>
#include <utility>

#include "sqlite/Errors.h"
#include "sqlite/NumberText.h"
#include "sqlite/Sealing.h"

namespace korvex {
namespace {

constexpr double integersEnd = 9223372036854775808.0;  // 2^63

// A number as an integer, when it is one.
std::optional<std::int64_t> integerOf(const ValueView& value) {
  if (value.type() == ValueType::Integer) return value.integer();
  if (value.type() != ValueType::Real) return std::nullopt;
  const double real = value.real();
  const bool inside = real >= -integersEnd && real < integersEnd && std::trunc(real) == real;
  return inside ? std::optional(static_cast<std::int64_t>(real)) : std::nullopt;
}

// Each takes the first column as a "result" says; absent when it does not fit. What is null fits any.
using Conversion = std::optional<ValueView> (*)(const ValueView& value, std::string& number);

std::optional<ValueView> asLongLong(const ValueView& value, std::string& /*number*/) {
  const std::optional<std::int64_t> integer = integerOf(value);
  return integer ? std::optional(ValueView::ofInteger(*integer)) : std::nullopt;
}

std::optional<ValueView> asInt(const ValueView& value, std::string& /*number*/) {
  const std::optional<std::int64_t> integer = integerOf(value);
  return integer && std::in_range<std::int32_t>(*integer) ? std::optional(ValueView::ofInteger(*integer))
                                                          : std::nullopt;
}

std::optional<ValueView> asBool(const ValueView& value, std::string& /*number*/) {
  if (value.type() == ValueType::Integer) return ValueView::ofInteger(value.integer() != 0 ? 1 : 0);
  return value.type() == ValueType::Real ? std::optional(ValueView::ofInteger(value.real() != 0 ? 1 : 0))
                                         : std::nullopt;
}

std::optional<ValueView> asDouble(const ValueView& value, std::string& /*number*/) {
  if (value.type() == ValueType::Real) return value;
  if (value.type() != ValueType::Integer) return std::nullopt;
  return ValueView::ofReal(static_cast<double>(value.integer()));
}

std::optional<ValueView> asString(const ValueView& value, std::string& number) {
  if (value.type() == ValueType::Text) return value;
  if (value.type() == ValueType::Blob) return std::nullopt;
  number = textOfNumber(value);
  return ValueView::ofText(number);
}

std::optional<ValueView> asBinary(const ValueView& value, std::string& /*number*/) {
  const bool bytes = value.type() == ValueType::Blob || value.type() == ValueType::Text;
  return bytes ? std::optional(ValueView::ofBlob(value.bytes())) : std::nullopt;
}

// By QXDAOSelectResultType; what is behind it is no scalar.
constexpr std::array<Conversion, 6> conversions{asInt, asLongLong, asBool, asDouble, asString, asBinary};

std::string inQuotes(std::string_view text) { return "'" + std::string(text) + "'"; }

// Whether a class, or one that it derives from, has the name.
bool isNamed(const ModelClass& modelClass, std::string_view name) {
  const ModelClass* level = &modelClass;
  while (level && level->name != name) level = level->superclass;
  return level != nullptr;
}

}  // namespace

Outcome<Value> Row::value() const { return _source->value(); }
Outcome<ValueView> Row::scalar() const { return _source->scalar(); }
Dictionary Row::dictionary() const { return _source->dictionary(); }
Failure Row::fill(ModelObject& object) const { return _source->fill(object); }
DatabaseError Row::failure(std::string message) const { return _source->failure(std::move(message)); }

DatabaseError Row::Source::failure(std::string message) const {
  DatabaseError error = located(databaseError(DatabaseErrorKind::Result, std::move(message)), _plan, _plan.place());
  error.sql = sqlite3_sql(_statement);
  return error;
}

bool Row::Source::givesObjects() const { return _plan.method().resultType() >= QXDAOSelectResultTypeObject; }

Outcome<Value> Row::Source::value() {
  if (givesObjects()) return object();
  if (_plan.method().resultType() == QXDAOSelectResultTypeColumnMap) return Value(dictionary());
  const Outcome<ValueView> view = scalar();
  if (!view) return view.error();
  return Value::copyOf(*view);
}

Outcome<ValueView> Row::Source::scalar() {
  const auto type = static_cast<std::size_t>(_plan.method().resultType());
  if (type >= conversions.size()) return failure("the result is no scalar, which the caller wants");
  if (sqlite3_column_count(_statement) == 0) return failure("the statement gives no column");
  const ValueView view = columnView(_statement, 0);
  if (view.isNull()) return view;
  const std::optional<ValueView> converted = conversions.at(type)(view, _number);
  if (converted) return *converted;
  return failure("column " + inQuotes(sqlite3_column_name(_statement, 0)) + " holds " +
                 std::string(nameOf(view.type())) + " that is no " +
                 std::string(_plan.method().resultTypeName().value_or("")));
}

Dictionary Row::Source::dictionary() {
  Dictionary dictionary;
  for (int column = 0; column < sqlite3_column_count(_statement); ++column) {
    dictionary.set(sqlite3_column_name(_statement, column), Value::copyOf(columnView(_statement, column)));
  }
  return dictionary;
}

Outcome<Value> Row::Source::object() {
  const std::string_view name = resultClassOf(_plan.method(), *_loaded.set);
  const ModelClass* modelClass = _loaded.models.find(name);
  if (!modelClass || !modelClass->create) return failure("objects of " + inQuotes(name) + " cannot be made");
  const std::shared_ptr<ModelObject> object = modelClass->create();
  if (Failure wrong = fill(*object)) return std::move(*wrong);
  return Value(object);
}

Failure Row::Source::fill(ModelObject& object) {
  const ModelClass& modelClass = getClass(object);
  if (_filled != &modelClass) {
    if (!givesObjects()) return failure("the result is no object, which the caller wants");
    const std::string_view name = resultClassOf(_plan.method(), *_loaded.set);
    if (!isNamed(modelClass, name)) {
      return failure("the result is a " + inQuotes(name) + ", and the caller wants a " + inQuotes(modelClass.name));
    }
    _filled = &modelClass;
  }
  const auto& targets = _mapping.targets(_statement, _plan.method(), *_loaded.set, modelClass);
  if (!_mapping.missingProperty().empty()) return failure(noProperty(modelClass));
  for (const ColumnTarget& target : targets) {
    Failure wrong = target.encrypted ? storeEncrypted(object, target)
                                     : store(object, target, columnView(_statement, target.column));
    if (wrong) return wrong;
  }
  return std::nullopt;
}

std::string Row::Source::noProperty(const ModelClass& modelClass) const {
  return "the map " + inQuotes(_plan.method().resultTypeName().value_or("")) + " names a property " +
         inQuotes(_mapping.missingProperty()) + " that " + inQuotes(modelClass.name) + " does not have";
}

Failure Row::Source::storeEncrypted(ModelObject& object, const ColumnTarget& target) {
  Outcome<Value> plain = unsealed(_loaded.cipher.get(), columnView(_statement, target.column));
  if (plain) return store(object, target, plain->view());
  DatabaseError error = failure(std::move(plain.error().message));
  error.kind = DatabaseErrorKind::Cipher;
  return error;
}

Failure Row::Source::store(ModelObject& object, const ColumnTarget& target, const ValueView& value) {
  if (target.field) {
    if (storeInField(object, *target.field, value)) return std::nullopt;
    return misfit(target, value);
  }
  if (value.isNull()) return std::nullopt;
  if (value.type() != ValueType::Blob) return misfit(target, value);
  target.pack->unpackWithObject(&object, value.bytes());
  return std::nullopt;
}

DatabaseError Row::Source::misfit(const ColumnTarget& target, const ValueView& value) const {
  const std::string column = "column " + inQuotes(sqlite3_column_name(_statement, target.column));
  const std::string holds = " holds " + std::string(nameOf(value.type()));
  if (target.pack) return failure(column + holds + ", and a pack is a BLOB");
  return failure(column + holds + " that does not fit the field " + inQuotes(target.field->name));
}

}  // namespace korvex
