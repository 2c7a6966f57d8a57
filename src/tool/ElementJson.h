// Element trees as JSON.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "korvex/QXDAOElement.h"

namespace korvex {

// Keys stay in the order in which they were added.
using Json = nlohmann::ordered_json;

// "class", "name", then the element's own properties under their own names, "children" last.
// Absent is null, enumerations are the names of their constants. The engine's slots and the links
// between elements are omitted.
[[nodiscard]] Json elementJson(const QXDAOElement& element);

// Indented by two spaces; bytes that are not UTF-8 become U+FFFD.
[[nodiscard]] std::string jsonText(const Json& json);

}  // namespace korvex
