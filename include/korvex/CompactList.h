// A list that may be absent and does not grow.
#pragma once

#include <cstddef>
#include <memory>
#include <new>
#include <optional>
#include <span>
#include <utility>

namespace korvex {

// Owns its items. Their memory is its own, too, or belongs to the element tree of which the list is a
// part, and then outlives it.
template <typename T>
class CompactList {
 public:
  using View = std::optional<std::span<const T>>;

  CompactList() = default;
  // Takes over constructed items, and their memory if `ownsMemory`: it then comes from operator new.
  CompactList(std::span<const T> items, bool ownsMemory) : _view(items), _ownsMemory(ownsMemory) {}
  CompactList(CompactList&& other) noexcept
      : _view(std::exchange(other._view, std::nullopt)), _ownsMemory(std::exchange(other._ownsMemory, false)) {}
  CompactList& operator=(CompactList&& other) noexcept {
    CompactList old(std::move(*this));
    std::swap(_view, other._view);
    std::swap(_ownsMemory, other._ownsMemory);
    return *this;
  }
  ~CompactList() {
    const std::span<T> all = items();
    std::destroy(all.begin(), all.end());
    if (_ownsMemory) ::operator delete(all.data());
  }

  // Refers to this list; the items are valid until it is assigned to or destroyed.
  [[nodiscard]] const View& view() const { return _view; }
  // None if the list is absent.
  [[nodiscard]] std::span<T> items() {
    return _view ? std::span<T>(const_cast<T*>(_view->data()), _view->size()) : std::span<T>();
  }

 private:
  View _view;
  bool _ownsMemory = false;
};

}  // namespace korvex
