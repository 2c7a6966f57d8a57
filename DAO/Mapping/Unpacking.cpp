// Packed column values back into objects; docs/packed-format.md gives the bytes.
#include <algorithm>
#include <cstring>
#include <span>

#include "DAO/Mapping/PackEncode.h"
#include "DAO/Mapping/QXDAOPackReader.h"
#include "DAO/QXDAOElement.h"

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
    return place < _entries.size() && _entries[place].name && _entries[place].length == name.size() &&
           sameBytes(_entries[place].name, name.data(), name.size());
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

template <typename Bytes>
std::uint64_t readAs(const char* bytes) {
  Bytes read;
  std::memcpy(&read, bytes, sizeof read);
  return read;
}

std::uint64_t unusualBits(std::string_view bytes) {
  std::uint64_t bits = 0;
  std::memcpy(&bits, bytes.data(), std::min(bytes.size(), sizeof bits));
  return bits;
}

// A scalar's bytes in the low bytes, zeros above; of more than eight bytes the first eight. Read by
// its own width and widened in a register: written into a wider variable it would be read back from
// two stores, which the processor waits for.
std::uint64_t scalarBits(std::string_view bytes) {
  switch (bytes.size()) {
    case sizeof(std::uint8_t):
      return readAs<std::uint8_t>(bytes.data());
    case sizeof(std::uint16_t):
      return readAs<std::uint16_t>(bytes.data());
    case sizeof(std::uint32_t):
      return readAs<std::uint32_t>(bytes.data());
    case sizeof(std::uint64_t):
      return readAs<std::uint64_t>(bytes.data());
    default:
      return unusualBits(bytes);
  }
}

// The type codes of numbers in the order of the encodes' type indexes.
constexpr std::string_view numberTypeCodes = "BcCsSiIqQfd";

// A bool takes any byte but 0 as true, since it can hold nothing else; of a longer value the low
// bytes are taken.
std::uint64_t bitsFor(QXDAOPackEncode encode, std::uint64_t bits) {
  const std::uint64_t kept = bits & (~std::uint64_t{0} >> (64 - 8 * valueBytes(encode)));
  return encode == QXDAOPackEncodeBOOL && kept != 0 ? 1 : kept;
}

// The number of a record; absent for an encode that is none of the known scalars.
OptionalNumber numberOf(QXDAOPackEncode encode, std::uint64_t bits) {
  const auto index = static_cast<std::size_t>(encode) >> 4U;
  if (index >= numberTypeCodes.size() || convertEncode(numberTypeCodes[index]) != encode) return std::nullopt;
  return NumberObject::fromBits(numberTypeCodes[index], bitsFor(encode, bits));
}

// The field's own width decides: a shorter value is extended by zeros.
void storeScalar(char* field, QXDAOPackEncode encode, std::uint64_t bits) {
  bits = bitsFor(encode, bits);
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
