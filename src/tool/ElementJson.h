// Element trees as JSON.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

#include "korvex/QXDAOElement.h"

namespace korvex {

// Keys stay in the order in which they were added.
using Json = nlohmann::ordered_json;

// "class", "name", then the element's own properties under their own names, "children" last.
// Absent is null, enumerations are the names of their constants. The engine's slots and the links
// between elements are omitted.
[[nodiscard]] Json elementJson(const QXDAOElement& element);
// Adds a member that the object does not have yet. Looking for it would take time in proportion to the members.
void appendMember(Json& object, std::string_view name, Json value);

// Indented by two spaces; bytes that are not UTF-8 become U+FFFD.
[[nodiscard]] std::string jsonText(const Json& json);

}  // namespace korvex
