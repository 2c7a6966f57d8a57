// A string that may be absent, in two words.
#pragma once

#include <cstddef>
#include <limits>
#include <string_view>
#include <utility>

#include "korvex/OptionalString.h"

namespace korvex {

// Owns its characters, or borrows them from the memory of its element tree, which outlives the string. A copy always
// owns its characters.
class CompactString {
 public:
  CompactString() = default;
  explicit CompactString(OptionalStringView text) {
    if (!text) return;
    char* const characters = new char[text->size()];
    _size = text->copy(characters, text->size()) | ownerBit;
    _characters = characters;
  }
  CompactString(const CompactString& other) : CompactString(other.view()) {}
  CompactString(CompactString&& other) noexcept { swap(other); }
  CompactString& operator=(CompactString other) noexcept {
    swap(other);
    return *this;
  }
  ~CompactString() {
    if ((_size & ownerBit) != 0) delete[] _characters;
  }

  // A string that does not own its characters.
  [[nodiscard]] static CompactString borrowed(std::string_view text) {
    CompactString string;
    string._characters = text.data();
    string._size = text.size();
    return string;
  }

  // Valid until this string is assigned to or destroyed; for a borrowed string, while its characters live.
  [[nodiscard]] OptionalStringView view() const {
    return _characters ? OptionalStringView(std::in_place, _characters, _size & ~ownerBit) : std::nullopt;
  }

 private:
  void swap(CompactString& other) noexcept {
    std::swap(_characters, other._characters);
    std::swap(_size, other._size);
  }

  static constexpr std::size_t ownerBit = std::numeric_limits<std::size_t>::max() / 2 + 1;

  const char* _characters = nullptr;  // null if the string is absent
  std::size_t _size = 0;              // the number of characters, and a bit that is set if the string owns them
};

}  // namespace korvex
