// A list that may be absent and does not grow.
#pragma once

#include <cstddef>
#include <memory>
#include <new>
#include <optional>
#include <span>
#include <utility>

namespace korvex {

// Owns its items. Their memory belongs to the list, or to the list's element tree, which then outlives the list.
template <typename T>
class CompactList {
 public:
  using View = std::optional<std::span<const T>>;

  CompactList() = default;
  // Takes ownership of constructed items and, if `ownsMemory`, of their memory, which must come from operator new.
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

  // A view of the list, valid until the list is assigned to or destroyed.
  [[nodiscard]] const View& view() const { return _view; }
  // Empty if the list is absent.
  [[nodiscard]] std::span<T> items() {
    return _view ? std::span<T>(const_cast<T*>(_view->data()), _view->size()) : std::span<T>();
  }

 private:
  View _view;
  bool _ownsMemory = false;
};

}  // namespace korvex
