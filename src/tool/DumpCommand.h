// korvex-dao dump: the element trees that an engine would get.
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

// Prints an entry for each definition, built or refused, to `console.out`. A document without
// definitions to show has its failure on `console.err` and an empty dump.
[[nodiscard]] ExitCode runDump(const DumpOptions& options, const Console& console);

}  // namespace korvex
