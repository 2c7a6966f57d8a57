// korvex-dao explain: what a rule means and how to follow it.
#pragma once

#include <optional>
#include <string>

#include "korvex/QXDAOPackReader.h"
#include "tool/Tool.h"

namespace korvex {

enum class ExplainFormat { Text, Markdown };

struct ExplainOptions {
  std::optional<std::string>
      what;  // the name of a rule, or a finding that ends with it; absent for a list of all rules
  ExplainFormat format = ExplainFormat::Text;
};

[[nodiscard]] ExitCode runExplain(const ExplainOptions& options, const Console& console);

}  // namespace korvex
