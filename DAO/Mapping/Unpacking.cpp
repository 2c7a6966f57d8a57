// Packed column values back into objects; docs/packed-format.md gives the bytes.
#include <algorithm>
#include <cstring>
#include <span>

#include "DAO/Mapping/PackEncode.h"
#include "DAO/Mapping/QXDAOPackReader.h"
#include "DAO/QXDAOElement.h"
#include "Platform/Tables.h"

namespace korvex {

namespace {

// Finds the entries that records belong to.
class EntryFinder {
 public:
  explicit EntryFinder(const QXDAOPackClassInfo& layout)
      : _entries(layout.properties, static_cast<std::size_t>(layout.count)) {}

  // The entry with that name and a field; null when the layout has none. Records are written in the
  // order of the entries, so the one after the last found comes first.
  const QXDAOPackPropertyInfo* entryNamed(std::string_view name) {
    if (!isAt(_next, name)) {
      _next = placeOf(name);
      if (!isAt(_next, name)) return nullptr;
    }
    return &_entries[_next++];
  }

 private:
  [[nodiscard]] bool isAt(std::size_t place, std::string_view name) const {
    return place < _entries.size() && _entries[place].name &&
           std::string_view(_entries[place].name, _entries[place].length) == name;
  }

  // Where the name is or would be.
  [[nodiscard]] std::size_t placeOf(std::string_view name) const {
    const QXDAOPackPropertyInfo pseudoInfo{.name = name.data(),
                                           .length = static_cast<QXDAOPackNameLengthType>(name.size())};
    const auto found =
        std::lower_bound(_entries.begin(), _entries.end(), pseudoInfo,
                         [](const auto& entry, const auto& wanted) { return property_info_cmp(entry, wanted) < 0; });
    return static_cast<std::size_t>(found - _entries.begin());
  }

  std::span<const QXDAOPackPropertyInfo> _entries;
  std::size_t _next = 0;
};

// A scalar's bytes in the low bytes, zeros above: no scalar is wider.
std::uint64_t scalarBits(std::string_view bytes) {
  std::uint64_t bits = 0;
  copyScalar(&bits, bytes.data(), std::min(bytes.size(), sizeof bits));
  return bits;
}

template <typename Scalar>
OptionalNumber boxed(std::uint64_t bits) {
  Scalar value;
  std::memcpy(&value, &bits, sizeof value);
  return NumberObject(value);
}

template <>
OptionalNumber boxed<bool>(std::uint64_t bits) {
  return NumberObject(bits != 0);
}

struct NumberMaker {
  QXDAOPackEncode encode;
  OptionalNumber (*box)(std::uint64_t bits);
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
OptionalNumber numberOf(QXDAOPackEncode encode, std::uint64_t bits) {
  const NumberMaker* maker = rowWith(numberMakers, &NumberMaker::encode, encode);
  return maker ? maker->box(bits) : std::nullopt;
}

// The field's own width decides: a shorter value is extended by zeros, of a longer one the low
// bytes are taken. A bool takes any byte but 0 as true, since it can hold nothing else.
void storeScalar(char* field, QXDAOPackEncode encode, std::uint64_t bits) {
  if (encode == QXDAOPackEncodeBOOL) bits = (bits & 0xFFU) != 0 ? 1 : 0;
  copyScalar(field, &bits, valueBytes(encode));
}

void storeRecord(ModelObject& object, const QXDAOPackPropertyInfo& entry, const QXDAOPackRecord& record) {
  char* field = reinterpret_cast<char*>(&object) + entry.offset;
  if (record.encode == QXDAOPackEncodeString) {
    if (entry.encode != QXDAOPackEncodeString) return;
    entry.field->text.set(field, isValidUTF8(record.bytes) ? OptionalStringView(record.bytes) : std::nullopt);
  } else if (entry.encode == QXDAOPackEncodeNumber) {
    entry.field->number.set(field, numberOf(record.encode, scalarBits(record.bytes)));
  } else if (entry.encode > 0) {
    storeScalar(field, entry.encode, scalarBits(record.bytes));
  }
}

}  // namespace

void QXDAOPack::unpackWithObject(ModelObject* object, std::string_view data) const {
  if (data.empty()) return;
  const QXDAOPackClassInfo* layout = getClassInfoWithObject(object);
  if (!layout) return;
  EntryFinder finder(*layout);
  QXDAOPackReader reader(data);
  for (QXDAOPackRecord record; reader.next(record) == QXDAOPackReadStatus::Record;) {
    if (const QXDAOPackPropertyInfo* entry = finder.entryNamed(record.name)) storeRecord(*object, *entry, record);
  }
}

}  // namespace korvex
