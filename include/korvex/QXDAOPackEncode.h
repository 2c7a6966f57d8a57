#pragma once

#include <cstdint>

namespace korvex {

// How a value stands in a packed column, written into every record. A positive value is 16 × type
// index + bytes of the value.
enum QXDAOPackEncode : std::int16_t {
  QXDAOPackEncodeNumber = -2,  // a number object's field in a layout; never in a record
  QXDAOPackEncodeString = -1,
  QXDAOPackEncodeNone = 0,
  QXDAOPackEncodeBOOL = 1,
  QXDAOPackEncodeInt8 = 17,
  QXDAOPackEncodeUInt8 = 33,
  QXDAOPackEncodeInt16 = 50,
  QXDAOPackEncodeUInt16 = 66,
  QXDAOPackEncodeInt32 = 84,
  QXDAOPackEncodeUInt32 = 100,
  QXDAOPackEncodeInt64 = 120,
  QXDAOPackEncodeUInt64 = 136,
  QXDAOPackEncodeFloat = 148,
  QXDAOPackEncodeDouble = 168,
};

// The widths of a record's name length and string length.
using QXDAOPackNameLengthType = std::uint8_t;

using QXDAOPackStringLengthType = std::uint32_t;

}  // namespace korvex
