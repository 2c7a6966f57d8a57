#include "korvex/MappingSequence.h"

#include <atomic>

#include "korvex/QXDAOElement.h"

namespace korvex {

namespace {

// Atomic only to allow calls from several threads; it orders nothing.
// NOLINTNEXTLINE(cppcoreguidelines-avoid-non-const-global-variables): the counter is process-wide on purpose
constinit std::atomic<std::int32_t> QXDAOMappingSequence{0};

}  // namespace

std::int32_t GetQXDAOMappingSequence() { return QXDAOMappingSequence.load(std::memory_order_relaxed); }

void IncreaseQXDAOMappingSequence() { QXDAOMappingSequence.fetch_add(1, std::memory_order_relaxed); }

}  // namespace korvex
