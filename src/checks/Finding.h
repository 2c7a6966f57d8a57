// An error or warning about a definition document.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "checks/Rules.h"
#include "korvex/OptionalString.h"
#include "korvex/XMLNode.h"

namespace korvex {

// Another place that a finding refers to, such as the first of two definitions with the same name.
struct Related {
  std::string path;
  XMLPosition position;
  std::string message;
};

struct Finding {
  // The definition at fault. A document that cannot be read as a whole has none.
  struct InDefinition {
    std::string tag;
    OptionalString name;  // its "id"
    std::size_t line = 0;
  };

  const Rule* rule = nullptr;           // the rule that is violated; never null in a reported finding
  Severity severity = Severity::Error;  // that of the rule, unless warnings are treated as errors
  std::string path;
  XMLPosition position;
  XMLPosition end;  // one past the last character
  std::string message;
  std::string help;  // how to fix it; may be empty
  std::vector<Related> related;
  std::optional<InDefinition> definition;
};

}  // namespace korvex
