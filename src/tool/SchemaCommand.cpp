#include "tool/SchemaCommand.h"

#include <ostream>

namespace korvex {

ExitCode runSchema(const SchemaOptions& options, const Console& console) {
  console.out << schema::schemaText(options.format, options.root);
  return ExitCodeNothingFound;
}

}  // namespace korvex
