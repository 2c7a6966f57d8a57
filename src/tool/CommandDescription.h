// What the command can do, read from the description that parses its arguments: the one source of the
// completions and the man page.
#pragma once
#include <string>
#include <vector>

#include "korvex/QXDAOPackReader.h"

namespace CLI {
class App;
class Validator;
}  // namespace CLI

namespace korvex {

using Words = std::vector<std::string>;

// An option, or an argument without a name such as FILE.
struct OptionDescription {
  Words names;        // "-h", "--help"; none for an argument
  std::string value;  // "WORD"; empty for an option without a value
  std::string help;
  Words words;  // all that the value can be; empty when those are not few
  Words needs;  // other options, by name
  bool required = false;
  bool repeated = false;

  [[nodiscard]] bool takesFile() const { return value == "FILE" || value == "PATH"; }
};

struct CommandDescription {
  std::string name;
  std::string summary;
  std::string footer;
  std::vector<OptionDescription> options;
  std::vector<OptionDescription> arguments;
  std::vector<CommandDescription> commands;
};

// What is hidden from the help stays out.
[[nodiscard]] CommandDescription describe(CLI::App& app);

// Checks that a value is one of a few words, and tells `describe` which.
[[nodiscard]] CLI::Validator oneOf(const Words& words);

// The name by which any other validator, the first of its option, tells `describe` the words.
[[nodiscard]] std::string choiceName(const Words& words);

// "a|b|c" for the separator "|".
[[nodiscard]] std::string joined(const Words& words, const std::string& separator);

}  // namespace korvex
