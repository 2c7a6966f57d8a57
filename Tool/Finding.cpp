#include "Tool/Finding.h"

#include <ostream>

#include "Tool/Excerpt.h"
#include "Tool/VisibleText.h"

namespace korvex {
namespace {

constexpr const char* severity = "error";

// Escape sequences that switch the terminal's style; empty without colour.
struct Style {
  const char* bold = "";
  const char* red = "";
  const char* green = "";
  const char* plain = "";
};
constexpr Style colorless;
constexpr Style colored = {"\x1b[1m", "\x1b[1;31m", "\x1b[1;32m", "\x1b[0m"};

void printExcerpt(std::ostream& out, const Excerpt& excerpt, const Style& style) {
  out << excerpt.line << '\n' << style.green << excerpt.caretLine << style.plain << '\n';
}

Json definitionJson(const std::optional<Finding::InDefinition>& definition) {
  if (!definition) return {};
  return {{"tag", definition->tag},
          {"name", definition->name ? Json(*definition->name) : Json()},
          {"line", definition->line}};
}

}  // namespace

Finding findingOf(const std::string& path, const Definition& definition) {
  const QXDAOError& error = *definition.error;
  return {path, error.origin.position().value_or(definition.position()), std::string(error.message()),
          Finding::InDefinition{std::string(definition.tag()), ownedString(error.xml().valueOfAttribute(C_ID)),
                                definition.position().line}};
}

Finding findingOf(const std::string& path, const DocumentError& error) {
  return {path, error.position, error.message, std::nullopt};
}

void printFinding(std::ostream& out, const Finding& finding, const SourceText* source, bool color) {
  const Style& style = color ? colored : colorless;
  const auto [line, column] = finding.position;
  out << style.bold << visibleText(finding.path) << ':' << line << ':' << column << ": " << style.plain  //
      << style.red << severity << ": " << style.plain                                                    //
      << style.bold << visibleText(finding.message) << style.plain << '\n';
  if (source) printExcerpt(out, excerptOf(*source, finding.position), style);
}

Json findingJson(const Finding& finding) {
  return {{"path", finding.path}, {"line", finding.position.line}, {"column", finding.position.column},
          {"severity", severity}, {"message", finding.message},    {"definition", definitionJson(finding.definition)}};
}

}  // namespace korvex
