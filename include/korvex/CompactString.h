// An owned string that may be absent, in the space of one pointer.
#pragma once

#include <cstddef>
#include <cstring>
#include <memory>
#include <string_view>

#include "korvex/OptionalString.h"

namespace korvex {

// Element trees hold many strings, most of them absent or set once and then only read. An optional
// std::string takes 40 bytes even where it is absent; this takes 8, and one block of memory of the
// exact length where it is present. Moving one keeps the views that were taken from it valid.
class CompactString {
 public:
  CompactString() = default;
  explicit CompactString(OptionalStringView text) {
    if (text) text->copy(allocate(text->size()), text->size());
  }

  // A string of that length whose characters `fill` writes.
  template <typename Fill>
  static CompactString filled(std::size_t length, Fill fill) {
    CompactString string;
    fill(string.allocate(length));
    return string;
  }

  // Valid until this string is assigned to or destroyed.
  [[nodiscard]] OptionalStringView view() const {
    if (!_block) return std::nullopt;
    std::size_t length = 0;
    std::memcpy(&length, _block.get(), sizeof length);
    return std::string_view(_block.get() + sizeof length, length);
  }

 private:
  char* allocate(std::size_t length) {
    _block = std::make_unique_for_overwrite<char[]>(sizeof length + length);
    std::memcpy(_block.get(), &length, sizeof length);
    return _block.get() + sizeof length;
  }

  std::unique_ptr<char[]> _block;  // the length, then the characters
};

}  // namespace korvex
