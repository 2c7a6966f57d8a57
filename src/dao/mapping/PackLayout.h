// The layout of a class in a pack; private to packing and unpacking.
#pragma once

#include <cstddef>
#include <cstdint>

#include "korvex/Export.h"
#include "korvex/ModelClass.h"
#include "korvex/QXDAOPackEncode.h"

namespace korvex {

// One packed property of one class. The entry is empty, without field and name, if the class lacks the
// property or its field, or if either name is longer than 255 bytes and so does not fit into a record.
struct QXDAOPackPropertyInfo {
  const ModelField* field = nullptr;   // owned by the class
  std::int8_t encode_c = 0;            // a scalar's type code, -2 number object, -1 string, 0 other
  const char* name = nullptr;          // ends with a zero byte; owned by the class
  QXDAOPackNameLengthType length = 0;  // bytes of the name
  // Derived from the above, once for all objects.
  QXDAOPackEncode encode = QXDAOPackEncodeNone;  // String, Number, or the encode of a scalar
  std::ptrdiff_t offset = 0;                     // of the field, in bytes from the ModelObject
  const char* head = nullptr;                    // the first bytes of each record: name length, name, zero byte, encode
};

// The layout of one class: its packed properties in ascending byte order of their names, empty
// entries at the end.
struct QXDAOPackClassInfo {
  const ModelClass* cls = nullptr;
  std::int32_t count = 0;
  QXDAOPackPropertyInfo* properties = nullptr;  // `count` of them, owned
  char* heads = nullptr;                        // of all properties, owned
  std::size_t bytesWithoutTexts = 0;            // of a value in which all strings are empty, or more
  QXDAOPackClassInfo* next = nullptr;           // owned by the pack
};

// Negative, zero or positive as the first entry sorts before, equal to or after the second: names
// byte by byte, a name before a longer one that it begins, an entry without a name after all.
[[nodiscard]] KORVEX_EXPORT int property_info_cmp(const QXDAOPackPropertyInfo& first,
                                                  const QXDAOPackPropertyInfo& second);

}  // namespace korvex
