// A boxed scalar that remembers its type.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>

#include "korvex/Export.h"
#include "korvex/ScalarTypes.h"

namespace korvex {

// The type code that a number object reports; it does not distinguish `long` from `long long`.
template <BoxableScalar Scalar>
inline constexpr char numberTypeCodeOf = numberCode(scalarEncode(scalarTypeCode<Scalar>));

// A value of one of eleven scalar types: boolean, signed and unsigned integers of 8 to 64 bits, single
// and double precision. Copies are independent. Two numbers are equal if their types and their values
// are; NaN is not equal to itself.
class NumberObject {
 public:
  template <BoxableScalar Scalar>
  explicit NumberObject(Scalar value) : _typeCode(numberTypeCodeOf<Scalar>) {
    std::memcpy(_bytes.data(), &value, sizeof value);
  }

  // A number with this type code and its value in the low bits. An unknown code is kept; such a number has no value()
  // and is never packed.
  static NumberObject fromBits(char typeCode, std::uint64_t bits) { return {typeCode, bits}; }

  [[nodiscard]] char typeCode() const { return _typeCode; }
  // The value if Scalar is its type, else absent; nothing is converted.
  template <BoxableScalar Scalar>
  [[nodiscard]] std::optional<Scalar> value() const {
    if (_typeCode != numberTypeCodeOf<Scalar>) return std::nullopt;
    Scalar value;
    std::memcpy(&value, _bytes.data(), sizeof value);
    return value;
  }
  // The bytes of the value in the byte order of the platform, followed by zeros up to eight bytes.
  [[nodiscard]] const std::byte* bytes() const { return _bytes.data(); }

  friend KORVEX_EXPORT bool operator==(const NumberObject& left, const NumberObject& right);

 private:
  NumberObject(char typeCode, std::uint64_t bits) : _typeCode(typeCode) {
    std::memcpy(_bytes.data(), &bits, sizeof bits);
  }

  alignas(std::uint64_t) std::array<std::byte, sizeof(std::uint64_t)> _bytes{};
  char _typeCode;
};

static_assert(sizeof(NumberObject) <= 16);

using OptionalNumber = std::optional<NumberObject>;

}  // namespace korvex
