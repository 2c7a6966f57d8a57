// The layouts of a pack: for each class used so far, the packed properties with their fields and type codes, sorted by
// name.
#include "dao/mapping/PackLayout.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <mutex>
#include <new>
#include <span>

#include "dao/mapping/PackEncode.h"
#include "korvex/OptionalString.h"
#include "korvex/QXDAOElement.h"
#include "korvex/QXDAOPack.h"
#include "korvex/QXDAOPackEncode.h"
#include "korvex/SpinLock.h"

namespace korvex {

namespace {

constexpr std::size_t maxNameLength = std::numeric_limits<QXDAOPackNameLengthType>::max();

std::int8_t encodeOf(const ModelField& field) {
  const std::string_view typeEncoding = getFieldTypeEncoding(field);
  if (typeEncoding == numberTypeCode) return QXDAOPackEncodeNumber;
  if (typeEncoding == stringTypeCode) return QXDAOPackEncodeString;
  return typeEncoding.starts_with('@') ? std::int8_t{0} : static_cast<std::int8_t>(typeEncoding.front());
}

QXDAOPackEncode recordEncodeOf(std::int8_t encode_c) {
  return encode_c < 0 ? static_cast<QXDAOPackEncode>(encode_c) : convertEncode(encode_c);
}

QXDAOPackPropertyInfo propertyInfo(const ModelClass& cls, std::string_view listedName) {
  const ModelProperty* property = getProperty(cls, listedName);
  if (!property) return {};
  const std::string_view name = getPropertyName(*property);
  const ModelField* field = getPropertyField(cls, *property);
  if (!field || std::max(name.size(), field->name.size()) > maxNameLength) return {};
  const std::int8_t encode_c = encodeOf(*field);
  return {.field = field,
          .encode_c = encode_c,
          .name = name.data(),
          .length = static_cast<QXDAOPackNameLengthType>(name.size()),
          .encode = recordEncodeOf(encode_c),
          .offset = getFieldOffset(*field)};
}

// The maximum length of the value in a record, for a string without its text.
std::size_t maxValueBytes(const QXDAOPackPropertyInfo& entry) {
  return entry.encode == QXDAOPackEncodeString ? sizeof(QXDAOPackStringLengthType) : sizeof(std::uint64_t);
}

// A number object has the encode of its value, so its head only reserves space for the encode.
void writeHead(const QXDAOPackPropertyInfo& entry, char* head) {
  *head = static_cast<char>(entry.length);
  std::memcpy(head + 1, entry.name, std::size_t{entry.length} + 1);
  std::memcpy(head + headBytes(entry.length) - sizeof entry.encode, &entry.encode, sizeof entry.encode);
}

// Writes the heads of all entries that have a field; false if their memory cannot be allocated.
bool prepareHeads(QXDAOPackClassInfo& info) {
  const std::span<QXDAOPackPropertyInfo> entries(info.properties, static_cast<std::size_t>(info.count));
  std::size_t bytes = 0;
  for (const QXDAOPackPropertyInfo& entry : entries) {
    bytes += headBlocksBytes(entry.length);
    info.bytesWithoutTexts += headBytes(entry.length) + maxValueBytes(entry);
  }
  char* place = info.heads = new (std::nothrow) char[bytes]();
  if (!place) return false;
  for (QXDAOPackPropertyInfo& entry : entries) {
    if (!entry.field) continue;
    writeHead(entry, place);
    entry.head = place;
    place += headBlocksBytes(entry.length);
  }
  return true;
}

void release(QXDAOPackClassInfo* info) {
  delete[] info->heads;
  delete[] info->properties;
  delete info;
}

}  // namespace

int property_info_cmp(const QXDAOPackPropertyInfo& first, const QXDAOPackPropertyInfo& second) {
  if (!first.name || !second.name) return static_cast<int>(!first.name) - static_cast<int>(!second.name);
  const int order = std::memcmp(first.name, second.name, std::min(first.length, second.length));
  return order != 0 ? order : first.length - second.length;
}

void QXDAOPack::releaseLayouts() {
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
  const auto names = propertyList().value_or(std::span<const std::string_view>());
  info->cls = &cls;
  info->properties = new (std::nothrow) QXDAOPackPropertyInfo[names.size()];
  if (!info->properties) {
    release(info);
    return nullptr;
  }
  info->count = static_cast<std::int32_t>(names.size());
  std::transform(names.begin(), names.end(), info->properties,
                 [&cls](std::string_view name) { return propertyInfo(cls, name); });
  std::sort(info->properties, info->properties + info->count,
            [](const auto& first, const auto& second) { return property_info_cmp(first, second) < 0; });
  if (!prepareHeads(*info)) {
    release(info);
    return nullptr;
  }
  return info;
}

}  // namespace korvex
