// Database errors in readable form.
#pragma once

#include <string>

#include "korvex/sqlite/Outcome.h"
#include "tool/Tool.h"

namespace korvex {

// For a failed method: where and why, with its SQL.
[[nodiscard]] ExitCode printFailure(const Console& console, const DatabaseError& error);
// For a file that could not be opened.
[[nodiscard]] ExitCode printUnopened(const Console& console, const std::string& path, const DatabaseError& error);

}  // namespace korvex
