// korvex-dao models: lists the model classes of a C++ source or a JSON file.
#pragma once

#include <string>

#include "tool/Tool.h"

namespace korvex {

struct ModelsOptions {
  std::string path;
};

[[nodiscard]] ExitCode listModels(const ModelsOptions& options, const Console& console);

}  // namespace korvex
