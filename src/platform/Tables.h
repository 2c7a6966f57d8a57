// Lookups in small constant tables.
#pragma once

#include <array>
#include <cstddef>

namespace korvex {

// The first row whose `key` equals `value`, or null. Rows are compared one by one: the tables are
// short, and their keys differ early.
template <typename Row, std::size_t count, typename Key, typename Value>
[[nodiscard]] constexpr const Row* rowWith(const std::array<Row, count>& table, Key Row::*key, const Value& value) {
  for (const Row& row : table) {
    if (value == row.*key) return &row;
  }
  return nullptr;
}

}  // namespace korvex
