// korvex-dao dump: the element trees that an engine gets.
#pragma once

#include <string>

#include "korvex/Document.h"
#include "korvex/QXDAOPackReader.h"
#include "tool/Tool.h"

namespace korvex {

enum class DumpFormat { Json, Tree };

struct DumpOptions {
  std::string path;
  DumpFormat format = DumpFormat::Json;
  LoadOptions load;
};

// Prints an entry for each definition, built or rejected, to `console.out`. If the document cannot be loaded, prints
// the error to `console.err` and an empty dump.
[[nodiscard]] ExitCode runDump(const DumpOptions& options, const Console& console);

}  // namespace korvex
