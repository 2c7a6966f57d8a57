#include "schema/Schema.h"

#include <algorithm>
#include <array>

#include "korvex/Keywords.h"
#include "schema/Writers.h"

namespace korvex::schema {

namespace {

constexpr std::string_view note =
    " Written by \"korvex-dao schema\": the grammar of mapping definitions, for editors. "
    "What it cannot say \"korvex-dao check\" finds. ";

std::string compactSchema(std::string_view root) {
  return "#" + std::string(note.substr(0, note.size() - 1)) + "\n\n" + compactText(relaxNg(grammar(), root));
}
std::string relaxNgSchema(std::string_view root) { return xmlText(relaxNg(grammar(), root), note); }
std::string xmlSchemaSchema(std::string_view root) { return xmlText(xmlSchema(grammar(), root), note); }

// By Format.
constexpr std::array<std::string (*)(std::string_view root), 3> schemas{compactSchema, relaxNgSchema, xmlSchemaSchema};

bool isASCIILetter(char character) {
  return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z');
}

// Characters beyond ASCII are not checked.
bool mayBegin(char character) {
  return isASCIILetter(character) || character == '_' || static_cast<unsigned char>(character) >= 0x80;
}

bool mayFollow(char character) {
  return mayBegin(character) || (character >= '0' && character <= '9') || character == '-' || character == '.';
}

}  // namespace

std::string schemaText(Format format, std::string_view root) { return schemas[static_cast<std::size_t>(format)](root); }

bool mayBeRoot(std::string_view tag) {
  const auto definitions = definitionTags;
  return !tag.empty() && mayBegin(tag.front()) && std::all_of(tag.begin(), tag.end(), mayFollow) &&
         std::find(definitions.begin(), definitions.end(), tag) == definitions.end();
}

}  // namespace korvex::schema
