#include "korvex/NumberObject.h"

namespace korvex {

bool operator==(const NumberObject& left, const NumberObject& right) {
  if (left._typeCode != right._typeCode) return false;
  if (const auto value = left.value<float>()) return *value == right.value<float>();
  if (const auto value = left.value<double>()) return *value == right.value<double>();
  return left._bytes == right._bytes;
}

}  // namespace korvex
