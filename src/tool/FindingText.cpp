#include "tool/FindingText.h"

#include <ostream>

#include "korvex/SourceText.h"
#include "tool/Excerpt.h"
#include "tool/VisibleText.h"

namespace korvex {
namespace {

// Escape sequences that switch the terminal's style; empty without colour.
struct Style {
  const char* bold = "";
  const char* red = "";
  const char* magenta = "";
  const char* cyan = "";
  const char* green = "";
  const char* plain = "";
};
constexpr Style colorless;
constexpr Style colored = {"\x1b[1m", "\x1b[1;31m", "\x1b[1;35m", "\x1b[1;36m", "\x1b[1;32m", "\x1b[0m"};

void printPlaceOf(std::ostream& out, const Location& location, const Style& style) {
  const XMLPosition position = location.begin();
  out << style.bold << visibleText(location.path()) << ':' << position.line << ':' << position.column << ": "
      << style.plain;
}

void printSeverity(std::ostream& out, Severity severity, const Style& style) {
  out << (severity == Severity::Error ? style.red : style.magenta) << severityName(severity) << ": " << style.plain;
}

void printExcerpt(std::ostream& out, const Excerpt& excerpt, const Style& style) {
  out << excerpt.line << '\n' << style.green << excerpt.caretLine << style.plain << '\n';
}

void printRelated(std::ostream& out, const Related& related, const Style& style) {
  printPlaceOf(out, related.location, style);
  out << style.cyan << "note: " << style.plain << visibleText(related.message) << '\n';
}

}  // namespace

void printFinding(std::ostream& out, const Finding& finding, bool color) {
  const Style& style = color ? colored : colorless;
  printPlaceOf(out, finding.location, style);
  printSeverity(out, finding.severity, style);
  out << style.bold << visibleText(finding.message) << style.plain << " [" << finding.rule->name << "]\n";
  const SourceText* source = finding.location.file->source.get();
  if (source) printExcerpt(out, excerptOf(*source, finding.location.span.begin), style);
  if (!finding.help.empty()) out << style.cyan << "help: " << style.plain << visibleText(finding.help) << '\n';
  for (const Related& related : finding.related) printRelated(out, related, style);
}

}  // namespace korvex
