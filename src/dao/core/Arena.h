// The memory of the element trees of one load.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "korvex/Export.h"
#include "korvex/QXDAOContainerElement.h"

namespace korvex {

class Arena;

// A block of memory that stores trees one after the other. It is freed when neither a tree nor an arena uses it.
struct MemoryBlock {
  std::atomic<std::size_t> users{1};
  MemoryBlock* next = nullptr;  // the next block of the tree that continues there
};

// The memory of one tree: the list of its blocks. It has a count of its users, which are the root, elements that were
// taken out of the tree, and the code that builds it. Only the count is shared between threads.
class TreeMemory {
 public:
  explicit TreeMemory(Arena& arena, MemoryBlock& block) : _arena(&arena), _first(&block), _last(&block) {}

  void retain() { _users.fetch_add(1, std::memory_order_relaxed); }
  KORVEX_EXPORT void release();

  // The arena while the tree is built; null afterwards, when this memory no longer grows.
  [[nodiscard]] Arena* arena() const { return _arena; }

 private:
  friend class Arena;

  std::atomic<std::size_t> _users{1};
  Arena* _arena;
  MemoryBlock* _first;
  MemoryBlock* _last;
};

// Allocates from one block after the other. Trees are built one at a time, on one thread. Each tree keeps its blocks
// alive, even after the arena is destroyed.
class KORVEX_EXPORT Arena {
 public:
  // `firstBlock` is the size of the first block in bytes; later ones are larger, up to a limit.
  explicit Arena(std::size_t firstBlock) : _nextBlock(firstBlock) {}
  Arena(const Arena&) = delete;
  Arena& operator=(const Arena&) = delete;
  ~Arena();

  // Begins a tree, whose construction ends with endTree.
  [[nodiscard]] TreeMemory& beginTree();
  // Also clears what an aborted construction has left.
  void endTree(TreeMemory& tree);

  static constexpr std::size_t alignment = alignof(std::uint64_t);

  // For objects.
  [[nodiscard]] void* allocate(std::size_t bytes) {
    const std::size_t padding = (alignment - _used % alignment) % alignment;
    return allocateBehind(padding, bytes);
  }
  // For characters.
  [[nodiscard]] char* allocateCharacters(std::size_t count) { return static_cast<char*>(allocateBehind(0, count)); }

  // Children of the containers under construction, those of the innermost one last.
  QXDAOElementList pendingChildren;
  // For a text whose list references are being expanded.
  std::string expansion;

 private:
  [[nodiscard]] void* allocateBehind(std::size_t padding, std::size_t bytes) {
    if (padding + bytes > _size - _used) {
      addBlock(bytes);
      padding = 0;
    }
    char* const place = reinterpret_cast<char*>(_block) + _used + padding;
    _used += padding + bytes;
    return place;
  }
  void addBlock(std::size_t bytes);

  MemoryBlock* _block = nullptr;
  std::size_t _used = 0;  // bytes of the block, including its own head
  std::size_t _size = 0;
  std::size_t _nextBlock;
  TreeMemory* _tree = nullptr;  // the one under construction
};

}  // namespace korvex
