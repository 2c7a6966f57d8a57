// Where a schema comes from: the upgrades of a set, an SQL script, or a database.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "korvex/DefinitionSet.h"
#include "verification/SchemaDatabase.h"

namespace korvex::verification {

// The source that stands for the upgrades; all others are paths.
inline constexpr std::string_view schemaOfUpgrades = "upgrades";

struct SchemaFile {
  std::string unreadable;            // why it cannot be read; empty if it can
  std::string script;                // its text; empty for a database
  std::optional<ScriptFault> fault;  // in the script
};
// Creates what a script or a database creates.
[[nodiscard]] SchemaFile readSchemaFile(SchemaDatabase& schema, const std::string& path);

// Creates what any source creates. Returns what is wrong with it, or nothing.
[[nodiscard]] std::string fillSchema(SchemaDatabase& schema, const std::string& source, const DefinitionSet& set);

}  // namespace korvex::verification
