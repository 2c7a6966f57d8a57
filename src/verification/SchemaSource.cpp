#include "verification/SchemaSource.h"

#include <fstream>

#include "verification/TextFile.h"
#include "verification/Verification.h"

namespace korvex::verification {
namespace {

constexpr std::string_view databaseHeader("SQLite format 3\0", 16);

// A script as a whole, or the beginning of a database; absent if it cannot be read.
std::optional<std::string> schemaText(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::string text(databaseHeader.size(), '\0');
  file.read(text.data(), static_cast<std::streamsize>(text.size()));
  text.resize(static_cast<std::size_t>(file.gcount()));
  if (!file && !file.eof()) return std::nullopt;
  if (text == databaseHeader) return text;
  return appendRest(file, text) ? std::optional(text) : std::nullopt;
}

}  // namespace

SchemaFile readSchemaFile(SchemaDatabase& schema, const std::string& path) {
  const auto text = schemaText(path);
  if (!text)
    return {"no SQL script or database can be read there; for the upgrades of the documents, write 'upgrades'", {}, {}};
  if (*text == databaseHeader) return {schema.copySchemaOf(path).value_or(std::string()), {}, {}};
  return {{}, *text, schema.runScript(*text)};
}

std::string fillSchema(SchemaDatabase& schema, const std::string& source, const DefinitionSet& set) {
  if (source == schemaOfUpgrades) {
    const VerifiedDocuments none;
    Verification(set, schema, none).runUpgrades();
    return {};
  }
  const SchemaFile file = readSchemaFile(schema, source);
  if (!file.unreadable.empty()) return source + ": " + file.unreadable;
  return file.fault ? source + ": " + file.fault->message : std::string();
}

}  // namespace korvex::verification
