// The commands and options, read from the description that parses the arguments: the single source of the completions
// and the man page.
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
  Words words;  // all values, if there are only a few; otherwise empty
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

// Without what is hidden from the help.
[[nodiscard]] CommandDescription describe(CLI::App& app);

// Checks that a value is one of the words, and passes them to `describe`.
[[nodiscard]] CLI::Validator oneOf(const Words& words);

// The name with which another validator, the first of its option, passes its words to `describe`.
[[nodiscard]] std::string choiceName(const Words& words);

// "a|b|c" for the separator "|".
[[nodiscard]] std::string joined(const Words& words, const std::string& separator);

}  // namespace korvex
