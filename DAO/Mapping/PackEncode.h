// The scalar types of packed values: type codes and encodes, both ways.
#pragma once

#include <array>
#include <cstddef>

#include "DAO/QXDAOElement.h"

namespace korvex {

struct PackScalar {
  char typeCode;
  QXDAOPackEncode encode;
};

inline constexpr std::array<PackScalar, 13> packScalars = {{
    {'B', QXDAOPackEncodeBOOL},
    {'c', QXDAOPackEncodeInt8},
    {'C', QXDAOPackEncodeUInt8},
    {'s', QXDAOPackEncodeInt16},
    {'S', QXDAOPackEncodeUInt16},
    {'i', QXDAOPackEncodeInt32},
    {'I', QXDAOPackEncodeUInt32},
    {'l', QXDAOPackEncodeInt64},
    {'q', QXDAOPackEncodeInt64},
    {'L', QXDAOPackEncodeUInt64},
    {'Q', QXDAOPackEncodeUInt64},
    {'f', QXDAOPackEncodeFloat},
    {'d', QXDAOPackEncodeDouble},
}};

// The encode of a scalar type code; QXDAOPackEncodeNone for any other code.
[[nodiscard]] constexpr QXDAOPackEncode convertEncode(int typeCode) {
  for (const PackScalar& scalar : packScalars) {
    if (scalar.typeCode == typeCode) return scalar.encode;
  }
  return QXDAOPackEncodeNone;
}

// How many bytes a value of that encode takes; for positive encodes, known or not.
[[nodiscard]] constexpr std::size_t valueBytes(QXDAOPackEncode encode) {
  return static_cast<std::size_t>(encode) & 15U;
}

}  // namespace korvex
