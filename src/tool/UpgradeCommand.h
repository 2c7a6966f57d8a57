// korvex-dao upgrade: upgrades a database to the newest version of its definitions.
#pragma once

#include <string>

#include "tool/Tool.h"

namespace korvex {

struct UpgradeOptions {
  std::string definitions;  // a file, a directory, or - for standard input
  std::string database;     // created if it is missing
};

// Prints each step as it begins, and the versions before and after.
[[nodiscard]] ExitCode runUpgrade(const UpgradeOptions& options, const Console& console);

}  // namespace korvex
