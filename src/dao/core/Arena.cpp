#include "dao/core/Arena.h"

#include <algorithm>
#include <new>
#include <utility>

#include "korvex/QXDAOElement.h"

namespace korvex {

namespace {

constexpr std::size_t largestBlock = std::size_t{64} * 1024 - 64;  // less than 64 KiB, including malloc's header

static_assert(sizeof(MemoryBlock) % Arena::alignment == 0);

bool isLastUser(std::atomic<std::size_t>& users) { return users.fetch_sub(1, std::memory_order_acq_rel) == 1; }

void releaseBlock(MemoryBlock* block) {
  if (isLastUser(block->users)) ::operator delete(block);
}

}  // namespace

// The object is stored in its own first block.
void TreeMemory::release() {
  if (!isLastUser(_users)) return;
  MemoryBlock* const last = _last;
  MemoryBlock* block = _first;
  while (block != last) releaseBlock(std::exchange(block, block->next));
  releaseBlock(last);
}

Arena::~Arena() {
  if (_block) releaseBlock(_block);
}

TreeMemory& Arena::beginTree() {
  void* const place = allocate(sizeof(TreeMemory));
  _block->users.fetch_add(1, std::memory_order_relaxed);
  _tree = new (place) TreeMemory(*this, *_block);
  return *_tree;
}

void Arena::endTree(TreeMemory& tree) {
  pendingChildren.clear();
  _tree = nullptr;
  tree._arena = nullptr;
  tree.release();
}

void Arena::addBlock(std::size_t bytes) {
  const std::size_t size = std::max(_nextBlock, sizeof(MemoryBlock) + bytes);
  auto* const block = new (::operator new(size)) MemoryBlock;
  if (_tree) {
    block->users.fetch_add(1, std::memory_order_relaxed);
    _tree->_last->next = block;
    _tree->_last = block;
  }
  if (_block) releaseBlock(_block);
  _block = block;
  _used = sizeof(MemoryBlock);
  _size = size;
  _nextBlock = std::min(std::max(_nextBlock, size) * 2, largestBlock);
}

}  // namespace korvex
