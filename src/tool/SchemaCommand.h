// korvex-dao schema: prints a schema of the language.
#pragma once

#include <string>

#include "schema/Schema.h"
#include "tool/Tool.h"

namespace korvex {

struct SchemaOptions {
  schema::Format format = schema::Format::RelaxNgCompact;
  std::string root;  // the root tag; empty for the default
};

[[nodiscard]] ExitCode runSchema(const SchemaOptions& options, const Console& console);

}  // namespace korvex
