// Allocates elements, their strings and their lists: in the memory of their tree while it is built, otherwise each in
// memory of its own.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <memory>
#include <new>
#include <optional>
#include <span>
#include <string_view>
#include <type_traits>

#include "dao/core/Arena.h"
#include "korvex/CompactList.h"
#include "korvex/CompactString.h"
#include "korvex/Export.h"
#include "korvex/QXDAOElement.h"
#include "korvex/QXDAOError.h"
#include "korvex/QXDAOEvaluator.h"
#include "korvex/QXDAOMap.h"
#include "korvex/QXDAOText.h"
#include "platform/Strings.h"

namespace korvex {

struct Building {
  // The memory of an element's tree while the tree is built; null after that, and for an element that is built alone.
  [[nodiscard]] static TreeMemory* memoryOf(const QXDAOElement& element) {
    TreeMemory* const memory = element._memory;
    return memory && memory->arena() ? memory : nullptr;
  }

  template <typename T>
  [[nodiscard]] static std::unique_ptr<T> element(TreeMemory* memory) {
    static_assert(alignof(T) <= Arena::alignment);
    if (!memory) return std::make_unique<T>();
    std::unique_ptr<T> element(new (memory->arena()->allocate(sizeof(T))) T);
    static_cast<QXDAOElement&>(*element)._memory = memory;
    return element;
  }
  [[nodiscard]] static std::unique_ptr<QXDAOText> text(TreeMemory* memory, OptionalStringView text);

  // Builds one definition like QXDAOElement::elementWithXML, but in the memory of an arena.
  [[nodiscard]] KORVEX_EXPORT static std::unique_ptr<QXDAOElement> tree(Arena& arena, const XMLNode& xml,
                                                                        std::optional<QXDAOError>* error);

  [[nodiscard]] static void* allocate(TreeMemory* memory, std::size_t bytes) {
    return memory ? memory->arena()->allocate(bytes) : ::operator new(bytes);
  }
  [[nodiscard]] static CompactString string(TreeMemory* memory, OptionalStringView text);

  // A list with the items moved into it.
  template <typename T>
  [[nodiscard]] static CompactList<T> list(TreeMemory* memory, std::span<T> items) {
    T* const place = static_cast<T*>(allocate(memory, items.size_bytes()));
    std::uninitialized_move(items.begin(), items.end(), place);
    return {{place, items.size()}, !memory};
  }
  // A list of blank items.
  template <typename T>
  [[nodiscard]] static CompactList<T> list(TreeMemory* memory, std::size_t count) {
    T* const place = static_cast<T*>(allocate(memory, count * sizeof(T)));
    std::uninitialized_value_construct_n(place, count);
    return {{place, count}, !memory};
  }
  // A list of items that consist of texts, which are copied, too.
  template <typename T>
  [[nodiscard]] static CompactList<T> texts(TreeMemory* memory, std::optional<std::span<const T>> items);
  // The pieces of a text between separators, passed through `trim`; absent if the text is.
  template <typename Trim>
  [[nodiscard]] static CompactList<std::string_view> pieces(TreeMemory* memory, OptionalStringView text, char separator,
                                                            Trim trim);

 private:
  // The texts of an item.
  static std::array<std::string_view*, 1> textsOf(std::string_view& item) { return {&item}; }
  static std::array<std::string_view*, 1> textsOf(QXDAOToken& item) { return {&item.text}; }
  static std::array<std::string_view*, 2> textsOf(QXDAOColumn& item) { return {&item.column, &item.property}; }
};

template <typename T>
CompactList<T> Building::texts(TreeMemory* memory, std::optional<std::span<const T>> items) {
  static_assert(std::is_trivially_copyable_v<T>);
  if (!items) return {};
  std::size_t length = 0;
  for (T item : *items) {
    for (const std::string_view* text : textsOf(item)) length += text->size();
  }
  T* const place = static_cast<T*>(allocate(memory, items->size_bytes() + length));
  char* characters = reinterpret_cast<char*>(place + items->size());
  std::uninitialized_copy(items->begin(), items->end(), place);
  for (T& item : std::span(place, items->size())) {
    for (std::string_view* text : textsOf(item)) {
      *text = {characters, text->copy(characters, text->size())};
      characters += text->size();
    }
  }
  return {{place, items->size()}, !memory};
}

template <typename Trim>
CompactList<std::string_view> Building::pieces(TreeMemory* memory, OptionalStringView text, char separator, Trim trim) {
  if (!text) return {};
  const auto count = 1 + static_cast<std::size_t>(std::count(text->begin(), text->end(), separator));
  auto* const place = static_cast<std::string_view*>(allocate(memory, count * sizeof(std::string_view) + text->size()));
  auto* const characters = reinterpret_cast<char*>(place + count);
  OptionalStringView rest = std::string_view(characters, text->copy(characters, text->size()));
  for (std::size_t at = 0; at < count; ++at) new (place + at) std::string_view(trim(takePiece(rest, separator)));
  return {{place, count}, !memory};
}

}  // namespace korvex
