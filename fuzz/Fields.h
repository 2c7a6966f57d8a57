// The fields of an object in a form that can be compared and told.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "korvex/NumberObject.h"
#include "korvex/OptionalString.h"
#include "tests/support/Models.h"
#include "tool/Hex.h"

namespace korvex {

template <typename Scalar>
std::string bytesOf(const Scalar& scalar) {
  return hexText({reinterpret_cast<const char*>(&scalar), sizeof scalar});
}

inline std::string textOrAbsent(const OptionalString& text) {
  return text ? '"' + hexText(*text) + '"' : std::string("absent");
}

// The type code, then the value's bytes.
inline std::string numberOrAbsent(const OptionalNumber& number) {
  if (!number) return "absent";
  return number->typeCode() + hexText({reinterpret_cast<const char*>(number->bytes()), sizeof(std::uint64_t)});
}

// A line a field, its bytes in hexadecimal digits: two that are equal by it are so to the last bit.
inline std::vector<std::string> fieldsOf(const AllTypes& object) {
  return {
      "flag " + bytesOf(object.flag),
      "c " + bytesOf(object.c),
      "C " + bytesOf(object.C),
      "s " + bytesOf(object.s),
      "S " + bytesOf(object.S),
      "i " + bytesOf(object.i),
      "I " + bytesOf(object.I),
      "l " + bytesOf(object.l),
      "L " + bytesOf(object.L),
      "q " + bytesOf(object.q),
      "Q " + bytesOf(object.Q),
      "f " + bytesOf(object.f),
      "d " + bytesOf(object.d),
      "color " + bytesOf(object.color),
      "text " + textOrAbsent(object.text),
      "plain " + textOrAbsent(object.plain),
      "number " + numberOrAbsent(object.number),
  };
}

}  // namespace korvex
