// Unpacks column values into objects. Fields are set through the operations of their ModelField; see Packing.cpp.
#include <algorithm>
#include <cstring>
#include <span>

#include "dao/mapping/PackEncode.h"
#include "dao/mapping/PackLayout.h"
#include "korvex/ModelClass.h"
#include "korvex/NumberObject.h"
#include "korvex/OptionalString.h"
#include "korvex/QXDAOElement.h"
#include "korvex/QXDAOPack.h"
#include "korvex/QXDAOPackEncode.h"
#include "korvex/QXDAOPackReader.h"
#include "korvex/ScalarTypes.h"
#include "platform/Strings.h"

namespace korvex {

namespace {

// Finds the entries that records belong to.
class EntryFinder {
 public:
  explicit EntryFinder(const QXDAOPackClassInfo& layout)
      : _entries(layout.properties, static_cast<std::size_t>(layout.count)) {}

  // Records are written in the order of the entries. Returns the entry after the last one found, or null if the head of
  // its record is unknown: the record of a number object has the encode of its value.
  [[nodiscard]] const QXDAOPackPropertyInfo* expected() const {
    if (_next == _entries.size()) return nullptr;
    const QXDAOPackPropertyInfo& entry = _entries[_next];
    return entry.encode > 0 || entry.encode == QXDAOPackEncodeString ? &entry : nullptr;
  }
  void expectedWasFound() { ++_next; }

  // The entry with that name and a field; null if the layout has none.
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

// The scalar's bytes in the low bytes, zeros above; of more than eight bytes, the first eight. Scalars are read with
// their own width and widened in a register. Copying them into a wider variable would cause a store-forwarding stall.
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

// For a bool, any byte except 0 is true. A longer value is truncated to its low bytes.
std::uint64_t bitsFor(QXDAOPackEncode encode, std::uint64_t bits) {
  const std::uint64_t kept = bits & (~std::uint64_t{0} >> (64 - 8 * valueBytes(encode)));
  return encode == QXDAOPackEncodeBOOL && kept != 0 ? 1 : kept;
}

// The number of a record; absent for an unknown encode.
OptionalNumber numberOf(QXDAOPackEncode encode, std::uint64_t bits) {
  const char code = numberCode(encode);
  return code ? OptionalNumber(NumberObject::fromBits(code, bitsFor(encode, bits))) : std::nullopt;
}

// The field's width decides: a shorter value is extended with zeros.
void storeScalar(char* field, QXDAOPackEncode encode, std::uint64_t bits) {
  bits = bitsFor(encode, bits);
  copyScalar(field, &bits, valueBytes(encode));
}

char* fieldOf(ModelObject& object, const QXDAOPackPropertyInfo& entry) {
  return reinterpret_cast<char*>(&object) + entry.offset;
}

void storeText(void* field, const QXDAOPackPropertyInfo& entry, std::string_view bytes) {
  entry.field->text.set(field, isValidUTF8(bytes) ? OptionalStringView(bytes) : std::nullopt);
}

// For a record with the entry's encode, which has the width of the field.
void storeValue(ModelObject& object, const QXDAOPackPropertyInfo& entry, std::string_view bytes) {
  char* field = fieldOf(object, entry);
  if (entry.encode == QXDAOPackEncodeString) {
    storeText(field, entry, bytes);
  } else if (entry.encode == QXDAOPackEncodeBOOL) {
    *field = static_cast<char>(bytes.front() != 0);
  } else {
    copyScalar(field, bytes.data(), bytes.size());
  }
}

// For a record with any encode. Strings and other values do not replace each other.
void storeRecord(ModelObject& object, const QXDAOPackPropertyInfo& entry, const QXDAOPackRecord& record) {
  char* field = fieldOf(object, entry);
  if (record.encode == QXDAOPackEncodeString) {
    if (entry.encode == QXDAOPackEncodeString) storeText(field, entry, record.bytes);
  } else if (entry.encode == QXDAOPackEncodeNumber) {
    entry.field->number.set(field, numberOf(record.encode, scalarBits(record.bytes)));
  } else if (entry.encode > 0) {
    storeScalar(field, entry.encode, scalarBits(record.bytes));
  }
}

// Unpacks the next record if it has the head of the expected entry, which takes a single comparison.
bool unpackExpected(ModelObject& object, EntryFinder& finder, QXDAOPackReader& reader) {
  const QXDAOPackPropertyInfo* entry = finder.expected();
  std::string_view bytes;
  if (!entry || !reader.nextWithHead({entry->head, headBytes(entry->length)}, entry->encode, bytes)) return false;
  storeValue(object, *entry, bytes);
  finder.expectedWasFound();
  return true;
}

// Unpacks the next record, whatever it is; false when there is none.
bool unpackNext(ModelObject& object, EntryFinder& finder, QXDAOPackReader& reader) {
  QXDAOPackRecord record;
  if (reader.next(record) != QXDAOPackReadStatus::Record) return false;
  if (const auto* entry = finder.entryNamed(record.name)) storeRecord(object, *entry, record);
  return true;
}

}  // namespace

void QXDAOPack::unpackWithObject(ModelObject* object, std::string_view data) const {
  if (data.empty()) return;
  const QXDAOPackClassInfo* layout = getClassInfoWithObject(object);
  if (!layout) return;
  EntryFinder finder(*layout);
  QXDAOPackReader reader(data);
  while (unpackExpected(*object, finder, reader) || unpackNext(*object, finder, reader)) {
  }
}

}  // namespace korvex
