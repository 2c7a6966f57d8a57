// The scalar types: the C++ types of fields and number objects, their type codes, and how a packed value
// encodes them. Whatever else is known about scalars is derived from this table.
#pragma once

#include <concepts>
#include <tuple>

#include "korvex/QXDAOPackEncode.h"

namespace korvex {

template <typename Scalar>
struct ScalarType {
  using Type = Scalar;
  char code;
  QXDAOPackEncode encode;
};

// Several C++ types share an encode. The first of them is the one that a number object of that encode reports.
inline constexpr std::tuple scalarTypes{
    ScalarType<bool>{'B', QXDAOPackEncodeBOOL},
    ScalarType<signed char>{'c', QXDAOPackEncodeInt8},
    ScalarType<char>{'c', QXDAOPackEncodeInt8},
    ScalarType<unsigned char>{'C', QXDAOPackEncodeUInt8},
    ScalarType<short>{'s', QXDAOPackEncodeInt16},
    ScalarType<unsigned short>{'S', QXDAOPackEncodeUInt16},
    ScalarType<int>{'i', QXDAOPackEncodeInt32},
    ScalarType<unsigned int>{'I', QXDAOPackEncodeUInt32},
    ScalarType<long long>{'q', QXDAOPackEncodeInt64},
    ScalarType<long>{'l', QXDAOPackEncodeInt64},
    ScalarType<unsigned long long>{'Q', QXDAOPackEncodeUInt64},
    ScalarType<unsigned long>{'L', QXDAOPackEncodeUInt64},
    ScalarType<float>{'f', QXDAOPackEncodeFloat},
    ScalarType<double>{'d', QXDAOPackEncodeDouble},
};

// Calls visit(row) for each row of the table, up to the first for which it returns true; returns whether one did.
template <typename Visit>
constexpr bool anyScalarType(Visit visit) {
  return std::apply([&visit](const auto&... rows) { return (... || visit(rows)); }, scalarTypes);
}

// The encode of a type code; QXDAOPackEncodeNone if no scalar type has it.
[[nodiscard]] constexpr QXDAOPackEncode scalarEncode(char code) {
  QXDAOPackEncode encode = QXDAOPackEncodeNone;
  anyScalarType([&](const auto& row) {
    if (row.code == code) encode = row.encode;
    return row.code == code;
  });
  return encode;
}

// The type code that a number object of that encode reports; a zero byte if no scalar type has the encode.
[[nodiscard]] constexpr char numberCode(QXDAOPackEncode encode) {
  char code = '\0';
  anyScalarType([&](const auto& row) {
    if (row.encode == encode) code = row.code;
    return row.encode == encode;
  });
  return code;
}

// The type code of a C++ type; a zero byte if it is no scalar type.
template <typename T>
inline constexpr char scalarTypeCode = [] {
  char code = '\0';
  anyScalarType([&code]<typename Scalar>(const ScalarType<Scalar>& row) {
    if constexpr (std::same_as<Scalar, T>) code = row.code;
    return std::same_as<Scalar, T>;
  });
  return code;
}();

template <typename T>
concept BoxableScalar = scalarTypeCode<T>
!= '\0';

// The width of a scalar is the low half byte of its encode.
static_assert(!anyScalarType([]<typename Scalar>(const ScalarType<Scalar>& row) {
  return sizeof(Scalar) != (static_cast<unsigned>(row.encode) & 15U);
}),
              "a scalar type has another width on this platform than in packed values");

}  // namespace korvex
