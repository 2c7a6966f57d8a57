#pragma once

#include <cstdint>

#include "korvex/Export.h"

namespace korvex {

// The mapping sequence: one process-wide counter for the engine, starting at 0. Nothing in the
// mapping layer calls these. Safe on any thread; past the largest value it wraps around.

[[nodiscard]] KORVEX_EXPORT std::int32_t GetQXDAOMappingSequence();

KORVEX_EXPORT void IncreaseQXDAOMappingSequence();

}  // namespace korvex
