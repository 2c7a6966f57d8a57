// Why a database could not do what it was asked for, for people.
#pragma once

#include <string>

#include "korvex/sqlite/Outcome.h"
#include "tool/Tool.h"

namespace korvex {

// A method that failed: where and why, with its SQL.
[[nodiscard]] ExitCode printFailure(const Console& console, const DatabaseError& error);
// A file that could not be opened.
[[nodiscard]] ExitCode printUnopened(const Console& console, const std::string& path, const DatabaseError& error);

}  // namespace korvex
