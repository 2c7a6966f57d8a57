// How scalars are packed: encodes by type code, widths, and copies.
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "korvex/QXDAOElement.h"
#include "korvex/QXDAOPackEncode.h"
#include "korvex/ScalarTypes.h"

namespace korvex {

static_assert(std::endian::native == std::endian::little, "numbers are packed as they stand in memory: little-endian");

// The encodes by type code, which is ASCII.
inline constexpr auto encodesByTypeCode = [] {
  std::array<QXDAOPackEncode, 128> table{};
  for (std::size_t code = 0; code < table.size(); ++code) table[code] = scalarEncode(static_cast<char>(code));
  return table;
}();

// The encode of a scalar type code; QXDAOPackEncodeNone for any other code.
[[nodiscard]] constexpr QXDAOPackEncode convertEncode(int typeCode) {
  const auto index = static_cast<std::size_t>(typeCode);
  return index < encodesByTypeCode.size() ? encodesByTypeCode[index] : QXDAOPackEncodeNone;
}

// How many bytes a value of that encode takes; for positive encodes, known or not.
[[nodiscard]] constexpr std::size_t valueBytes(QXDAOPackEncode encode) {
  return static_cast<std::size_t>(encode) & 15U;
}

// Copies a scalar of that many bytes, without a function call for the usual widths.
inline void copyScalar(void* target, const void* source, std::size_t width) {
  switch (width) {
    case sizeof(std::uint8_t):
      std::memcpy(target, source, sizeof(std::uint8_t));
      return;
    case sizeof(std::uint16_t):
      std::memcpy(target, source, sizeof(std::uint16_t));
      return;
    case sizeof(std::uint32_t):
      std::memcpy(target, source, sizeof(std::uint32_t));
      return;
    case sizeof(std::uint64_t):
      std::memcpy(target, source, sizeof(std::uint64_t));
      return;
    default:
      std::memcpy(target, source, width);
  }
}

// Compares two names of equal length in words, the last of which may overlap the one before.
template <typename Word>
[[nodiscard]] bool sameWords(const char* first, const char* second, std::size_t count) {
  for (std::size_t at = 0; at < count; at += sizeof(Word)) {
    at = std::min(at, count - sizeof(Word));
    Word left;
    Word right;
    std::memcpy(&left, first + at, sizeof left);
    std::memcpy(&right, second + at, sizeof right);
    if (left != right) return false;
  }
  return true;
}

[[nodiscard]] inline bool sameBytes(const char* first, const char* second, std::size_t count) {
  if (count >= sizeof(std::uint64_t)) return sameWords<std::uint64_t>(first, second, count);
  if (count >= sizeof(std::uint32_t)) return sameWords<std::uint32_t>(first, second, count);
  return sameWords<std::uint8_t>(first, second, count);
}

// The bytes of a record before its value: the name's length, the name, a zero byte, the encode.
[[nodiscard]] constexpr std::size_t headBytes(QXDAOPackNameLengthType nameLength) {
  return sizeof nameLength + nameLength + 1 + sizeof(QXDAOPackEncode);
}

// Heads are stored and copied in blocks of this size, because copies of a fixed size need no function call. Both the
// stored head and its destination are therefore padded to a multiple of it.
inline constexpr std::size_t headBlock = 16;

[[nodiscard]] constexpr std::size_t headBlocksBytes(QXDAOPackNameLengthType nameLength) {
  return (headBytes(nameLength) + headBlock - 1) / headBlock * headBlock;
}

}  // namespace korvex
