// Loads the definitions of a path, ready to run.
#pragma once

#include <memory>
#include <string>

#include "korvex/DefinitionSet.h"
#include "tool/Tool.h"

namespace korvex {

struct LoadedDefinitions {
  std::shared_ptr<const DefinitionSet> set;  // null when there is none
  ExitCode code = ExitCodeNothingFound;      // why
};

// Reads a file, a directory's *.xml files, or console.in for "-". Prints errors to `console.err`.
[[nodiscard]] LoadedDefinitions loadedDefinitions(const std::string& path, const Console& console);

// What to say when the set has no such method.
[[nodiscard]] std::string unknownMethod(const std::string& name, const DefinitionSet& set);

}  // namespace korvex
