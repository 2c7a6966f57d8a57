// korvex-dao completion: shell completion scripts.
#pragma once

#include <iosfwd>
#include <map>
#include <string>

#include "tool/CommandDescription.h"

namespace korvex {

using CompletionWriter = void (*)(std::ostream& out, const CommandDescription& tool);

// The shells by name.
[[nodiscard]] const std::map<std::string, CompletionWriter>& completionWriters();

}  // namespace korvex
