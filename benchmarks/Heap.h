// What the program asks the heap for.
#pragma once
#include <cstdint>

#include "korvex/QXDAOPackReader.h"

namespace korvex::benchmarks {

struct HeapUse {
  std::int64_t allocations = 0;  // calls of malloc, calloc, realloc and aligned_alloc, whoever makes them
  std::int64_t bytes = 0;        // held at the end, as malloc_usable_size counts
};

// Counts from its making on; what was held before and is freed counts as less than nothing. One at a
// time, and only while the program has one thread.
class HeapMeter {
 public:
  HeapMeter();
  HeapMeter(const HeapMeter&) = delete;
  HeapMeter& operator=(const HeapMeter&) = delete;
  ~HeapMeter();

  [[nodiscard]] HeapUse use() const;
};

}  // namespace korvex::benchmarks
