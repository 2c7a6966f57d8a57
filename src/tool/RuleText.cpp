#include "tool/RuleText.h"

#include <algorithm>
#include <array>
#include <ostream>
#include <sstream>

#include "platform/Strings.h"
#include "platform/Tables.h"

namespace korvex {
namespace {

constexpr std::size_t width = 80;
constexpr std::string_view indentation = "  ";

// What the rules need that do not need a schema.
struct SchemaNeed {
  SchemaRule rule;
  std::string_view option;
};
constexpr auto schemaNeeds = std::to_array<SchemaNeed>({
    {SchemaRule::NotRunnable, ""},
    {SchemaRule::UnusedArgument, ""},
    {SchemaRule::UnknownClass, "with --models"},
    {SchemaRule::UnknownProperty, "with --models"},
});

// Errors cannot be disabled: a definition that violates such a rule is not built, or cannot be run.
std::string_view defaultOf(const Rule& rule) {
  if (const auto* schemaRule = std::get_if<SchemaRule>(&rule.id)) {
    const SchemaNeed* need = rowWith(schemaNeeds, &SchemaNeed::rule, *schemaRule);
    if (!need) return "with --schema";
    if (!need->option.empty()) return need->option;
  }
  if (rule.severity == Severity::Error) return "always on";
  return rule.onByDefault ? "on" : "off";
}

// The text wrapped into lines that fit, each indented.
void printWrapped(std::ostream& out, std::string_view text, std::string_view indent) {
  std::istringstream words{std::string(text)};
  std::string line;
  for (std::string word; words >> word;) {
    if (!line.empty() && indent.size() + line.size() + 1 + word.size() > width) {
      out << indent << line << '\n';
      line.clear();
    }
    line.append(line.empty() ? "" : " ").append(word);
  }
  out << indent << line << '\n';
}

void printIndented(std::ostream& out, std::string_view text) {
  std::istringstream lines{std::string(text)};
  for (std::string line; std::getline(lines, line);) out << indentation << line << '\n';
}

std::string_view markdownEscape(char character) {
  switch (character) {
    case '&':
      return "&amp;";
    case '<':
      return "&lt;";
    case '*':
      return "\\*";
    case '|':
      return "\\|";
    default:
      return {};
  }
}

std::string markdownText(std::string_view text) {
  std::string result;
  for (const char character : text) {
    const std::string_view escape = markdownEscape(character);
    result += escape.empty() ? std::string_view(&character, 1) : escape;
  }
  return result;
}

std::string code(std::string_view text) { return std::string("`").append(text).append("`"); }

}  // namespace

std::string filledIn(std::string_view message) {
  constexpr std::string_view place = "%@";
  const std::size_t at = message.find(place);
  if (at == std::string_view::npos) return std::string(message);
  return std::string(message.substr(0, at)).append("...").append(message.substr(at + place.size()));
}

std::string messageWithHelp(const Finding& finding) {
  return finding.help.empty() ? finding.message : finding.message + '\n' + finding.help;
}

void printRule(std::ostream& out, const Rule& rule) {
  out << rule.name << " (" << severityName(rule.severity) << ", " << defaultOf(rule) << ")\n\n";
  printWrapped(out, filledIn(rule.message), indentation);
  out << '\n';
  printWrapped(out, rule.meaning, {});
  out << '\n';
  printWrapped(out, rule.help, {});
  out << "\nWrong:\n\n";
  printIndented(out, rule.wrong);
  out << "\nRight:\n\n";
  printIndented(out, rule.right);
}

void printRules(std::ostream& out, std::span<const Rule> rules) {
  for (const Rule& rule : rules) {
    out << rule.name << " (" << severityName(rule.severity) << ", " << defaultOf(rule) << ")\n";
    printWrapped(out, rule.help, indentation);
  }
}

std::string warningList() {
  const auto names = warningNames();
  const auto longest = std::max_element(names.begin(), names.end(),
                                        [](std::string_view a, std::string_view b) { return a.size() < b.size(); });
  std::string list;
  for (const std::string_view name : names) {
    const std::string title(ruleNamed(name)->message);
    list.append(indentation).append(name).append(longest->size() - name.size() + indentation.size(), ' ');
    list.append(asciiLowerCase(title.substr(0, 1))).append(title.substr(1)).append("\n");
  }
  return list;
}

std::string markdownOf(const Rule& rule) {
  std::ostringstream out;
  out << code(filledIn(rule.message)) << " (" << severityName(rule.severity) << ", " << defaultOf(rule) << ")\n\n"
      << markdownText(rule.meaning) << "\n\n"
      << markdownText(rule.help) << "\n\nWrong:\n\n```xml\n"
      << rule.wrong << "\n```\n\nRight:\n\n```xml\n"
      << rule.right << "\n```\n";
  return out.str();
}

std::string markdownOf(std::span<const Rule> rules) {
  std::ostringstream out;
  out << "# Rules\n\nWhat `korvex-dao check` finds, by the names of the rules that are violated. "
         "`korvex-dao explain RULE` shows one\nof them; this page is what "
         "`korvex-dao explain --format markdown` prints.\n\n"
      << "| Rule | Severity | Default | In short |\n|---|---|---|---|\n";
  for (const Rule& rule : rules) {
    out << "| [" << rule.name << "](#" << rule.name << ") | " << severityName(rule.severity) << " | " << defaultOf(rule)
        << " | " << markdownText(rule.help) << " |\n";
  }
  for (const Rule& rule : rules) out << "\n## " << rule.name << "\n\n" << markdownOf(rule);
  return out.str();
}

}  // namespace korvex
