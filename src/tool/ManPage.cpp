#include "tool/ManPage.h"

#include <algorithm>
#include <cctype>
#include <ostream>
#include <sstream>
#include <utility>

namespace korvex {
namespace {

// The characters that roff would interpret.
const char* escapeOf(char character) {
  switch (character) {
    case '\\':
      return "\\(rs";
    case '-':
      return "\\-";
    case '\'':
      return "\\(aq";
    case '"':
      return "\\(dq";
    case '`':
      return "\\(ga";
    case '^':
      return "\\(ha";
    case '~':
      return "\\(ti";
    default:
      return nullptr;
  }
}

std::string roff(const std::string& text) {
  std::string result = text.starts_with('.') ? "\\&" : "";
  for (const char character : text) {
    const char* escape = escapeOf(character);
    result += escape ? escape : std::string(1, character);
  }
  return result;
}

std::string bold(const std::string& text) { return "\\fB" + roff(text) + "\\fR"; }
std::string italic(const std::string& text) {
  if (text.empty()) return "";
  return "\\fI" + roff(text) + "\\fR";
}

// Headings such as "Exit codes:", but not a sentence that ends with a colon.
bool isHeading(const std::string& line) { return line.ends_with(':') && line.size() <= 16; }

// Prose is filled; indented lines are unchanged.
void writeText(std::ostream& out, const std::string& text) {
  std::istringstream lines(text);
  bool indented = false;
  for (std::string line; std::getline(lines, line);) {
    const bool wasIndented = std::exchange(indented, line.starts_with("  "));
    if (indented && !wasIndented) out << ".RS 4\n.nf\n";
    if (!indented && wasIndented) out << ".fi\n.RE\n";
    if (line.empty()) {
      out << ".PP\n";
    } else {
      out << (isHeading(line) ? bold(line) : roff(indented ? line.substr(2) : line)) << '\n';
    }
  }
  if (indented) out << ".fi\n.RE\n";
}

bool areToldIn(const std::string& help, const Words& words) {
  return std::all_of(words.begin(), words.end(),
                     [&](const std::string& word) { return help.find(word) != std::string::npos; });
}

void writeOption(std::ostream& out, const OptionDescription& option) {
  Words names;
  for (const std::string& name : option.names) names.push_back(bold(name));
  std::string label = joined(names, ", ");
  if (!names.empty() && !option.value.empty()) label += ' ';
  label += italic(option.value);
  out << ".TP\n" << label << '\n' << roff(option.help) << ".\n";
  if (!areToldIn(option.help, option.words)) out << "One of " << bold(joined(option.words, ", ")) << ".\n";
  if (!option.needs.empty()) out << "Needs " << bold(joined(option.needs, ", ")) << ".\n";
}

void writeOptions(std::ostream& out, const CommandDescription& command) {
  for (const OptionDescription& argument : command.arguments) writeOption(out, argument);
  for (const OptionDescription& option : command.options) writeOption(out, option);
}

std::string usageOf(const CommandDescription& command) {
  std::string usage = bold(command.name) + " [" + italic("OPTIONS") + "]";
  for (const OptionDescription& argument : command.arguments) {
    const std::string value = italic(argument.value) + (argument.repeated ? "..." : "");
    usage.append(argument.required ? " " : " [").append(value).append(argument.required ? "" : "]");
  }
  return usage;
}

// "Checks documents." as man -k shows it: "checks documents"
std::string shortened(std::string sentence) {
  if (sentence.ends_with('.')) sentence.pop_back();
  if (!sentence.empty()) sentence[0] = static_cast<char>(std::tolower(static_cast<unsigned char>(sentence[0])));
  return sentence;
}

}  // namespace

void writeManPage(std::ostream& out, const CommandDescription& tool) {
  out << ".TH KORVEX\\-DAO 1 \"\" \"" << tool.name << ' ' << KORVEX_VERSION << "\" \"User Commands\"\n"
      << ".SH NAME\n"
      << tool.name << " \\- " << roff(shortened(tool.summary)) << "\n.SH SYNOPSIS\n";
  for (const CommandDescription& command : tool.commands)
    out << bold(tool.name) << ' ' << usageOf(command) << "\n.br\n";
  out << bold(tool.name) << " [" << italic("OPTIONS") << "]\n.SH DESCRIPTION\n" << roff(tool.summary) << '\n';
  out << ".SH OPTIONS\n";
  writeOptions(out, tool);
  out << ".SH COMMANDS\n";
  for (const CommandDescription& command : tool.commands) {
    out << ".SS " << bold(tool.name) << ' ' << usageOf(command) << '\n' << roff(command.summary) << ".\n";
    writeOptions(out, command);
    out << ".PP\n";
    writeText(out, command.footer);
  }
  out << ".SH EXAMPLES\n";
  writeText(out, tool.footer.substr(tool.footer.find('\n') + 1));
}

}  // namespace korvex
