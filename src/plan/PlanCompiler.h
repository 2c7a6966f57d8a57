// Compiles a method to its plan.
#pragma once

#include <cstdint>

#include "korvex/QXDAOMethod.h"
#include "plan/SetCompilation.h"
#include "plan/SourcePlaces.h"

namespace korvex {

// Fills a plan of the contents. The texts that references insert have been checked.
void compileMethod(SetCompilation& compilation, std::uint32_t document, PlaceCursor& cursor, Plan& plan,
                   QXDAOMethod& method, const XMLNode& xml);

}  // namespace korvex
