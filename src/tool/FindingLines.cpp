#include "tool/FindingLines.h"

#include <algorithm>
#include <ostream>
#include <string>
#include <string_view>

#include "checks/Rules.h"
#include "files/Uri.h"
#include "tool/RuleText.h"
#include "tool/VisibleText.h"

namespace korvex {
namespace {

// The characters that end a workflow command or one of its properties.
constexpr std::string_view endsOfMessage = "%\r\n";
constexpr std::string_view endsOfProperty = "%\r\n:,";

// Percent-encodes these characters and escapes other invisible ones.
std::string encoded(std::string_view text, std::string_view characters) {
  std::string result;
  for (const char character : text) {
    if (characters.find(character) == std::string_view::npos) {
      result += character;
    } else {
      result += percentEncoded(character);
    }
  }
  return visibleText(result);
}

void printPlace(std::ostream& out, const Location& location) {
  const XMLPosition begin = location.begin();
  out << visibleText(location.path()) << ':' << begin.line << ':' << begin.column << ": ";
}

void printColumns(std::ostream& out, const XMLPosition& begin, const XMLPosition& end) {
  if (end.line > begin.line) return;  // annotations of several lines have no columns
  out << ",col=" << begin.column << ",endColumn=" << std::max(begin.column, end.column - 1);
}

}  // namespace

void printShortFinding(std::ostream& out, const Finding& finding) {
  printPlace(out, finding.location);
  out << severityName(finding.severity) << ": " << visibleText(finding.message);
  if (!finding.help.empty()) out << " (" << visibleText(finding.help) << ')';
  out << " [" << finding.rule->name << "]\n";
  for (const Related& related : finding.related) {
    printPlace(out, related.location);
    out << "note: " << visibleText(related.message) << '\n';
  }
}

void printGithubFinding(std::ostream& out, const Finding& finding) {
  const XMLPosition begin = finding.location.begin();
  const XMLPosition end = finding.location.end();
  out << "::" << severityName(finding.severity) << " file=" << encoded(finding.location.path(), endsOfProperty)
      << ",line=" << begin.line << ",endLine=" << end.line;
  printColumns(out, begin, end);
  out << ",title=" << finding.rule->name << "::" << encoded(messageWithHelp(finding), endsOfMessage) << '\n';
}

void printGithubUnreadable(std::ostream& out, const UnreadablePath& path) {
  out << "::error file=" << encoded(path.path, endsOfProperty)
      << ",title=unreadable::" << encoded(path.message, endsOfMessage) << '\n';
}

}  // namespace korvex
