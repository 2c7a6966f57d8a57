// korvex-dao check: the findings about definition documents.
#pragma once

#include <string>
#include <vector>

#include "korvex/Document.h"
#include "korvex/QXDAOPackReader.h"
#include "tool/CheckReport.h"
#include "tool/Tool.h"
#include "verification/SchemaDatabase.h"

namespace korvex {

enum class ColorMode { Auto, Always, Never };

struct CheckOptions {
  std::vector<std::string> paths;
  CheckFormat format = CheckFormat::Text;
  ColorMode color = ColorMode::Auto;  // of the text format
  LoadOptions load;
  std::vector<std::string> warnings;    // names of warnings to enable, in addition to the defaults
  std::vector<std::string> noWarnings;  // names of warnings to disable
  bool warningsAreErrors = false;
  std::string schema;  // "upgrades", an SQL script or a database; empty to check no SQL
  verification::AppExtensions extensions;
  std::string models;  // the model classes, as JSON or C++; empty to check no classes
};

// Findings go to `console.out`; a summary line and inputs that cannot be read to `console.err`.
[[nodiscard]] ExitCode runCheck(const CheckOptions& options, const Console& console);

}  // namespace korvex
