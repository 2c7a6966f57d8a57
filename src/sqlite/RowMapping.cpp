#include "sqlite/RowMapping.h"

#include <optional>
#include <utility>

#include "sqlite/NumberText.h"

namespace korvex {
namespace {

// given_name → givenName
std::string inCamelCase(std::string_view column) {
  std::string name;
  bool raises = false;
  for (const char character : column) {
    if (character == '_' && !name.empty()) {
      raises = true;
    } else {
      name += raises && character >= 'a' && character <= 'z' ? static_cast<char>(character - 'a' + 'A') : character;
      raises = false;
    }
  }
  return name;
}

struct PropertyOfColumn {
  std::string name;
  const ModelField* field;
};

PropertyOfColumn propertyOf(const ModelClass& modelClass, std::string name) {
  const ModelField* field = fieldOfProperty(modelClass, name);
  return {std::move(name), field};
}

// By the map, or else by the column's name.
PropertyOfColumn propertyOfColumn(const ModelClass& modelClass, const QXDAOMap* map, std::string_view column) {
  if (map) {
    if (const OptionalStringView mapped = map->propertyOfColumn(column))
      return propertyOf(modelClass, std::string(*mapped));
  }
  PropertyOfColumn property = propertyOf(modelClass, std::string(column));
  return property.field ? property : propertyOf(modelClass, inCamelCase(column));
}

ColumnTarget targetOf(int column, std::string_view name, const DefinitionSet& set, const ModelClass& modelClass,
                      const QXDAOMap* map) {
  const PropertyOfColumn property = propertyOfColumn(modelClass, map, name);
  if (property.field) return {column, set.encrypts(modelClass, property.name), property.field, nullptr};
  const QXDAOPack* pack = set.pack(name);
  return {column, pack && pack->crypted(), nullptr, pack};
}

std::string missingPropertyOf(const QXDAOMap& map, const ModelClass& modelClass) {
  for (const auto& [column, property] : *map.columnPropertyMap()) {
    if (!fieldOfProperty(modelClass, property)) return std::string(property);
  }
  return {};
}

bool storeText(void* address, const ModelField& field, const ValueView& value) {
  switch (value.type()) {
    case ValueType::Null:
      field.text.set(address, std::nullopt);
      return true;
    case ValueType::Text:
      field.text.set(address, value.bytes());
      return true;
    case ValueType::Integer:
    case ValueType::Real:
      field.text.set(address, std::string_view(textOfNumber(value)));
      return true;
    default:
      return false;
  }
}

bool storeNumber(void* address, const ModelField& field, const ValueView& value) {
  switch (value.type()) {
    case ValueType::Null:
      field.number.set(address, std::nullopt);
      return true;
    case ValueType::Integer:
      field.number.set(address, NumberObject(value.integer()));
      return true;
    case ValueType::Real:
      field.number.set(address, NumberObject(value.real()));
      return true;
    default:
      return false;
  }
}

bool storeBinary(void* address, const ModelField& field, const ValueView& value) {
  const bool bytes = value.type() == ValueType::Blob || value.type() == ValueType::Text;
  if (!bytes && !value.isNull()) return false;
  field.binary.set(address, bytes ? OptionalBinaryView(BinaryView{value.bytes()}) : std::nullopt);
  return true;
}

bool storeInScalar(void* address, const ModelField& field, const ValueView& value) {
  switch (value.type()) {
    case ValueType::Null:
      return field.scalar.setInteger(address, 0);
    case ValueType::Integer:
      return field.scalar.setInteger(address, value.integer());
    case ValueType::Real:
      return field.scalar.setReal(address, value.real());
    default:
      return false;
  }
}

}  // namespace

std::string_view resultClassOf(const QXDAOMethod& method, const DefinitionSet& set) {
  const std::string_view name = method.resultTypeName().value_or(std::string_view());
  if (method.resultType() == QXDAOSelectResultTypeObject) return name;
  const QXDAOMap* map = method.resultType() == QXDAOSelectResultTypeMappedObject ? set.map(name) : nullptr;
  return map ? map->resultClass().value_or(std::string_view()) : std::string_view();
}

const std::vector<ColumnTarget>& RowMapping::targets(sqlite3_stmt* statement, const QXDAOMethod& method,
                                                     const DefinitionSet& set, const ModelClass& modelClass) {
  const int preparations = sqlite3_stmt_status(statement, SQLITE_STMTSTATUS_REPREPARE, 0);
  if (_class == &modelClass && _preparations == preparations) return _targets;
  _class = &modelClass;
  _preparations = preparations;
  _targets.clear();
  _missingProperty.clear();
  const QXDAOMap* map = method.resultType() == QXDAOSelectResultTypeMappedObject
                            ? set.map(method.resultTypeName().value_or(std::string_view()))
                            : nullptr;
  for (int column = 0; column < sqlite3_column_count(statement); ++column) {
    const ColumnTarget target = targetOf(column, sqlite3_column_name(statement, column), set, modelClass, map);
    if (target.field || target.pack) _targets.push_back(target);
  }
  if (map) _missingProperty = missingPropertyOf(*map, modelClass);
  return _targets;
}

ValueView columnView(sqlite3_stmt* statement, int column) {
  switch (sqlite3_column_type(statement, column)) {
    case SQLITE_INTEGER:
      return ValueView::ofInteger(sqlite3_column_int64(statement, column));
    case SQLITE_FLOAT:
      return ValueView::ofReal(sqlite3_column_double(statement, column));
    case SQLITE_TEXT: {
      const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement, column));
      return ValueView::ofText({text, static_cast<std::size_t>(sqlite3_column_bytes(statement, column))});
    }
    case SQLITE_BLOB: {
      const auto* bytes = static_cast<const char*>(sqlite3_column_blob(statement, column));  // null when empty
      const auto size = static_cast<std::size_t>(sqlite3_column_bytes(statement, column));
      return ValueView::ofBlob({bytes ? bytes : "", size});
    }
    default:
      return {};
  }
}

bool storeInField(ModelObject& object, const ModelField& field, const ValueView& value) {
  void* address = reinterpret_cast<std::byte*>(&object) + field.offset;
  if (field.text.set) return storeText(address, field, value);
  if (field.scalar.setInteger) return storeInScalar(address, field, value);
  if (field.number.set) return storeNumber(address, field, value);
  if (field.binary.set) return storeBinary(address, field, value);
  return false;
}

}  // namespace korvex
