// korvex-dao upgrade: a database to the newest version of its definitions.
#pragma once

#include <string>

#include "tool/Tool.h"

namespace korvex {

struct UpgradeOptions {
  std::string definitions;  // a file, a directory, or - for standard input
  std::string database;     // made when it is not there
};

// Prints each step as it begins, and the versions before and after.
[[nodiscard]] ExitCode runUpgrade(const UpgradeOptions& options, const Console& console);

}  // namespace korvex
