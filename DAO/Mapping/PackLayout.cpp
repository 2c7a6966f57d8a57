// The layouts of a pack: for each class it has met, the packed properties with their fields and
// type codes, sorted by name.
#include <algorithm>
#include <cstring>
#include <limits>
#include <mutex>
#include <new>
#include <span>

#include "DAO/QXDAOElement.h"

namespace korvex {

namespace {

constexpr std::size_t longestName = std::numeric_limits<QXDAOPackNameLengthType>::max();

// The name after ",V" in a property's attributes; absent when no field backs the property or when
// the name is too long.
OptionalStringView fieldNameIn(std::string_view attributes) {
  const std::size_t mark = attributes.find(",V");
  if (mark == std::string_view::npos) return std::nullopt;
  const std::string_view rest = attributes.substr(mark + 2);
  const std::string_view name = rest.substr(0, rest.find(','));
  return name.size() > longestName ? OptionalStringView() : name;
}

std::int8_t encodeOf(const ModelField& field) {
  const std::string_view typeEncoding = getFieldTypeEncoding(field);
  if (typeEncoding == numberTypeCode) return QXDAOPackEncodeNumber;
  if (typeEncoding == stringTypeCode) return QXDAOPackEncodeString;
  return typeEncoding.starts_with('@') ? std::int8_t{0} : static_cast<std::int8_t>(typeEncoding.front());
}

QXDAOPackPropertyInfo propertyInfo(const ModelClass& cls, const std::string& listedName) {
  const ModelProperty* property = getProperty(cls, listedName);
  if (!property) return {};
  const std::string_view name = getPropertyName(*property);
  const OptionalStringView fieldName = fieldNameIn(getPropertyAttributes(*property));
  if (!fieldName || name.size() > longestName) return {};
  const ModelField* field = getField(cls, *fieldName);
  if (!field) return {};
  return {field, encodeOf(*field), name.data(), static_cast<QXDAOPackNameLengthType>(name.size())};
}

void release(QXDAOPackClassInfo* info) {
  delete[] info->properties;
  delete info;
}

}  // namespace

int property_info_cmp(const QXDAOPackPropertyInfo& first, const QXDAOPackPropertyInfo& second) {
  if (!first.name || !second.name) return static_cast<int>(!first.name) - static_cast<int>(!second.name);
  const int order = std::memcmp(first.name, second.name, std::min(first.length, second.length));
  return order != 0 ? order : first.length - second.length;
}

QXDAOPack::~QXDAOPack() {
  for (QXDAOPackClassInfo* info = _head; info;) release(std::exchange(info, info->next));
}

const QXDAOPackClassInfo* QXDAOPack::getClassInfoWithObject(const ModelObject* object) const {
  if (!object) return nullptr;
  const ModelClass& cls = getClass(*object);
  for (const auto* info = _head.load(std::memory_order_acquire); info; info = info->next) {
    if (info->cls == &cls) return info;
  }
  QXDAOPackClassInfo* info = initializeWithClass(cls);
  if (!info) return nullptr;
  const std::lock_guard<SpinLock> guard(_lock);
  info->next = _head.load(std::memory_order_relaxed);
  _head.store(info, std::memory_order_release);
  return info;
}

QXDAOPackClassInfo* QXDAOPack::initializeWithClass(const ModelClass& cls) const {
  auto* info = new (std::nothrow) QXDAOPackClassInfo;
  if (!info) return nullptr;
  const std::span<const std::string> names = _propertyList ? std::span(*_propertyList) : std::span<const std::string>();
  info->cls = &cls;
  info->properties = new (std::nothrow) QXDAOPackPropertyInfo[names.size()];
  if (!info->properties) {
    delete info;
    return nullptr;
  }
  info->count = static_cast<std::int32_t>(names.size());
  std::transform(names.begin(), names.end(), info->properties,
                 [&cls](const std::string& name) { return propertyInfo(cls, name); });
  std::sort(info->properties, info->properties + info->count,
            [](const auto& first, const auto& second) { return property_info_cmp(first, second) < 0; });
  return info;
}

}  // namespace korvex
