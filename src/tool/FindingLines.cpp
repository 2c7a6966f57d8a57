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

// Percent-encodes these characters; what else is invisible is shown as an escape.
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

void printColumns(std::ostream& out, const Finding& finding) {
  if (finding.end.line > finding.position.line) return;  // annotations of several lines have none
  out << ",col=" << finding.position.column
      << ",endColumn=" << std::max(finding.position.column, finding.end.column - 1);
}

}  // namespace

void printShortFinding(std::ostream& out, const Finding& finding) {
  out << visibleText(finding.path) << ':' << finding.position.line << ':' << finding.position.column << ": "
      << severityName(finding.severity) << ": " << visibleText(finding.message) << " [" << finding.rule->name << "]\n";
}

void printGithubFinding(std::ostream& out, const Finding& finding) {
  out << "::" << severityName(finding.severity) << " file=" << encoded(finding.path, endsOfProperty)
      << ",line=" << finding.position.line << ",endLine=" << finding.end.line;
  printColumns(out, finding);
  out << ",title=" << finding.rule->name << "::" << encoded(messageWithHelp(finding), endsOfMessage) << '\n';
}

void printGithubUnreadable(std::ostream& out, const UnreadablePath& path) {
  out << "::error file=" << encoded(path.path, endsOfProperty)
      << ",title=unreadable::" << encoded(path.message, endsOfMessage) << '\n';
}

}  // namespace korvex
