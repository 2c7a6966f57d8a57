// Rules and their explanations, for people.
#pragma once

#include <iosfwd>
#include <span>
#include <string>
#include <string_view>

#include "checks/Finding.h"
#include "checks/Rules.h"

namespace korvex {

// The message with "..." for its placeholder.
[[nodiscard]] std::string filledIn(std::string_view message);
// The message of a finding, and the help on a separate line, if there is any.
[[nodiscard]] std::string messageWithHelp(const Finding& finding);

// Everything about a rule, in lines of at most 80 characters.
void printRule(std::ostream& out, const Rule& rule);
// The name of each rule, its default, and one sentence.
void printRules(std::ostream& out, std::span<const Rule> rules);

// The names of the warnings, each with its title in a second column, in lines of at most 80 characters.
[[nodiscard]] std::string warningList();

// A rule and all rules in Markdown.
[[nodiscard]] std::string markdownOf(const Rule& rule);
[[nodiscard]] std::string markdownOf(std::span<const Rule> rules);

}  // namespace korvex
