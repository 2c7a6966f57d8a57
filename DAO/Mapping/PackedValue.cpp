// Objects to packed column values and back; docs/packed-format.md gives the bytes.
#include <algorithm>
#include <cstring>
#include <limits>
#include <span>

#include "DAO/Mapping/PackEncode.h"
#include "DAO/Mapping/QXDAOPackReader.h"
#include "DAO/QXDAOElement.h"
#include "Platform/Tables.h"

namespace korvex {

namespace {

constexpr std::size_t usualValueSize = 1024;

std::span<const QXDAOPackPropertyInfo> entriesOf(const QXDAOPackClassInfo& layout) {
  return {layout.properties, static_cast<std::size_t>(layout.count)};
}

template <typename Integer>
void append(std::string& value, Integer integer) {
  value.append(reinterpret_cast<const char*>(&integer), sizeof integer);
}

void writePropertyName(std::string& value, const QXDAOPackPropertyInfo& entry) {
  append(value, entry.length);
  value.append(entry.name, std::size_t{entry.length} + 1);
}

// What of a string goes into a record: up to its first zero byte, and nothing of what is not UTF-8
// or longer than a record can say.
std::string_view packedForm(std::string_view text) {
  const std::string_view form = text.substr(0, text.find('\0'));
  const bool fits = form.size() <= std::numeric_limits<QXDAOPackStringLengthType>::max();
  return fits && isValidUTF8(text) ? form : std::string_view();
}

void writeString(std::string& value, const QXDAOPackPropertyInfo& entry, const ModelObject& object) {
  const ObjectValue field = getObjectField(object, *entry.field);
  const auto* text = std::get_if<std::string_view>(&field);
  if (!text) return;
  const std::string_view form = packedForm(*text);
  writePropertyName(value, entry);
  append(value, QXDAOPackEncodeString);
  append(value, static_cast<QXDAOPackStringLengthType>(form.size()));
  value.append(form);
}

void writeScalar(std::string& value, const QXDAOPackPropertyInfo& entry, int typeCode, const void* bytes) {
  const QXDAOPackEncode encode = convertEncode(typeCode);
  if (encode == QXDAOPackEncodeNone) return;
  writePropertyName(value, entry);
  append(value, encode);
  value.append(static_cast<const char*>(bytes), valueBytes(encode));
}

void writeNumber(std::string& value, const QXDAOPackPropertyInfo& entry, const ModelObject& object) {
  const ObjectValue field = getObjectField(object, *entry.field);
  if (const auto* number = std::get_if<NumberObject>(&field)) {
    writeScalar(value, entry, number->typeCode(), number->bytes());
  }
}

void writeRecord(std::string& value, const QXDAOPackPropertyInfo& entry, const ModelObject& object) {
  if (!entry.field) return;
  switch (entry.encode_c) {
    case QXDAOPackEncodeString:
      return writeString(value, entry, object);
    case QXDAOPackEncodeNumber:
      return writeNumber(value, entry, object);
    default:
      const char* field = reinterpret_cast<const char*>(&object) + getFieldOffset(*entry.field);
      return writeScalar(value, entry, entry.encode_c, field);
  }
}

// The entry with that name and a field; null when the layout has none.
const QXDAOPackPropertyInfo* entryNamed(const QXDAOPackClassInfo& layout, std::string_view name) {
  const QXDAOPackPropertyInfo pseudoInfo{.name = name.data(),
                                         .length = static_cast<QXDAOPackNameLengthType>(name.size())};
  const auto entries = entriesOf(layout);
  const auto found =
      std::lower_bound(entries.begin(), entries.end(), pseudoInfo,
                       [](const auto& entry, const auto& wanted) { return property_info_cmp(entry, wanted) < 0; });
  if (found == entries.end() || property_info_cmp(*found, pseudoInfo) != 0) return nullptr;
  return &*found;
}

// A scalar's bytes with zeros up to the width of the widest one.
using ScalarBytes = std::array<char, 16>;

template <typename Scalar>
ObjectValue boxed(const ScalarBytes& bytes) {
  Scalar value;
  std::memcpy(&value, bytes.data(), sizeof value);
  return NumberObject(value);
}

template <>
ObjectValue boxed<bool>(const ScalarBytes& bytes) {
  return NumberObject(bytes[0] != 0);
}

struct NumberMaker {
  QXDAOPackEncode encode;
  ObjectValue (*box)(const ScalarBytes& bytes);
};

constexpr std::array<NumberMaker, 11> numberMakers = {{
    {QXDAOPackEncodeBOOL, boxed<bool>},
    {QXDAOPackEncodeInt8, boxed<std::int8_t>},
    {QXDAOPackEncodeUInt8, boxed<std::uint8_t>},
    {QXDAOPackEncodeInt16, boxed<std::int16_t>},
    {QXDAOPackEncodeUInt16, boxed<std::uint16_t>},
    {QXDAOPackEncodeInt32, boxed<std::int32_t>},
    {QXDAOPackEncodeUInt32, boxed<std::uint32_t>},
    {QXDAOPackEncodeInt64, boxed<long long>},
    {QXDAOPackEncodeUInt64, boxed<unsigned long long>},
    {QXDAOPackEncodeFloat, boxed<float>},
    {QXDAOPackEncodeDouble, boxed<double>},
}};

// The number of a record; absent for an encode that is none of the known scalars.
ObjectValue numberOf(QXDAOPackEncode encode, const ScalarBytes& bytes) {
  const NumberMaker* maker = rowWith(numberMakers, &NumberMaker::encode, encode);
  return maker ? maker->box(bytes) : ObjectValue();
}

// The field's own width decides: a shorter value is extended by zeros, of a longer one the low
// bytes are taken. A bool takes any byte but 0 as true, since it can hold nothing else.
void storeScalar(ModelObject& object, const QXDAOPackPropertyInfo& entry, const ScalarBytes& bytes) {
  const QXDAOPackEncode encode = convertEncode(entry.encode_c);
  char* field = reinterpret_cast<char*>(&object) + getFieldOffset(*entry.field);
  if (encode == QXDAOPackEncodeBOOL) {
    *field = bytes[0] != 0;
  } else if (encode != QXDAOPackEncodeNone) {
    std::memcpy(field, bytes.data(), valueBytes(encode));
  }
}

void storeString(ModelObject& object, const QXDAOPackPropertyInfo& entry, std::string_view text) {
  if (entry.encode_c != QXDAOPackEncodeString) return;
  setObjectField(object, *entry.field, isValidUTF8(text) ? ObjectValue(text) : ObjectValue());
}

void storeRecord(ModelObject& object, const QXDAOPackPropertyInfo& entry, const QXDAOPackRecord& record) {
  if (record.encode == QXDAOPackEncodeString) return storeString(object, entry, record.bytes);
  ScalarBytes bytes{};
  std::copy(record.bytes.begin(), record.bytes.end(), bytes.begin());
  if (entry.encode_c == QXDAOPackEncodeNumber) {
    setObjectField(object, *entry.field, numberOf(record.encode, bytes));
  } else {
    storeScalar(object, entry, bytes);
  }
}

}  // namespace

std::optional<std::string> QXDAOPack::packWithObject(const ModelObject* object) const {
  const QXDAOPackClassInfo* layout = getClassInfoWithObject(object);
  if (!layout) return std::nullopt;
  std::string value;
  value.reserve(usualValueSize);
  for (const QXDAOPackPropertyInfo& entry : entriesOf(*layout)) writeRecord(value, entry, *object);
  return value;
}

void QXDAOPack::unpackWithObject(ModelObject* object, std::string_view data) const {
  if (data.empty()) return;
  const QXDAOPackClassInfo* layout = getClassInfoWithObject(object);
  if (!layout) return;
  QXDAOPackReader reader(data);
  for (QXDAOPackRecord record; reader.next(record) == QXDAOPackReadStatus::Record;) {
    if (const QXDAOPackPropertyInfo* entry = entryNamed(*layout, record.name)) storeRecord(*object, *entry, record);
  }
}

}  // namespace korvex
