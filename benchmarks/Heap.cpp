// Stands in for the C library's allocation functions, for the peers' libraries as well, and hands on
// to its real ones. operator new and delete come here, too. Nothing here uses other functions that
// allocate, such as posix_memalign.
#include "benchmarks/Heap.h"

#include <malloc.h>

#include <cstddef>

extern "C" {
void* __libc_malloc(std::size_t size);                           // NOLINT(*-reserved-identifier)
void* __libc_calloc(std::size_t count, std::size_t size);        // NOLINT(*-reserved-identifier)
void* __libc_realloc(void* block, std::size_t size);             // NOLINT(*-reserved-identifier)
void* __libc_memalign(std::size_t alignment, std::size_t size);  // NOLINT(*-reserved-identifier)
void __libc_free(void* block);                                   // NOLINT(*-reserved-identifier)
}

namespace {

bool counting = false;
korvex::benchmarks::HeapUse counted;

std::int64_t bytesOf(void* block) { return static_cast<std::int64_t>(malloc_usable_size(block)); }

void* taken(void* block) {
  if (counting) {
    ++counted.allocations;
    counted.bytes += bytesOf(block);
  }
  return block;
}

void giveUp(void* block) {
  if (counting) counted.bytes -= bytesOf(block);
}

}  // namespace

extern "C" {

void* malloc(std::size_t size) { return taken(__libc_malloc(size)); }

void* calloc(std::size_t count, std::size_t size) { return taken(__libc_calloc(count, size)); }

void* realloc(void* block, std::size_t size) {
  giveUp(block);
  return taken(__libc_realloc(block, size));
}

void* aligned_alloc(std::size_t alignment, std::size_t size) { return taken(__libc_memalign(alignment, size)); }

void free(void* block) {
  giveUp(block);
  __libc_free(block);
}
}

namespace korvex::benchmarks {

HeapMeter::HeapMeter() {
  counted = {};
  counting = true;
}

HeapMeter::~HeapMeter() { counting = false; }

HeapUse HeapMeter::use() const { return counted; }

}  // namespace korvex::benchmarks
