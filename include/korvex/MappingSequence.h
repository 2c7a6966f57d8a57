#pragma once

#include <cstdint>

#include "korvex/Export.h"

namespace korvex {

// The mapping sequence: one counter per process, which starts at 0 and wraps around after its largest
// value. It belongs to the engine; the mapping layer does not use it. May be used on any thread.

[[nodiscard]] KORVEX_EXPORT std::int32_t GetQXDAOMappingSequence();

KORVEX_EXPORT void IncreaseQXDAOMappingSequence();

}  // namespace korvex
