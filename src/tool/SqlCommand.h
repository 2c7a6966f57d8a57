// korvex-dao sql: the variants of a method.
#pragma once

#include <string>

#include "tool/Tool.h"
#include "verification/SchemaDatabase.h"

namespace korvex {

struct SqlOptions {
  std::string definitions;  // a file, a directory, or - for standard input
  std::string method;
  std::string table = "T";  // stands in for the assigned table
  std::string schema;       // "upgrades", an SQL script or a database; empty for none
  verification::AppExtensions extensions;
  bool queryPlans = false;
};

[[nodiscard]] ExitCode printVariants(const SqlOptions& options, const Console& console);

}  // namespace korvex
