#include "tool/Completion.h"

#include <initializer_list>
#include <ostream>
#include <string_view>
#include <utility>

namespace korvex {
namespace {

using Replacements = std::initializer_list<std::pair<char, const char*>>;

std::string concatenated(std::initializer_list<std::string_view> pieces) {
  std::string text;
  for (const std::string_view piece : pieces) text += piece;
  return text;
}

std::string replaced(const std::string& text, Replacements replacements) {
  std::string result;
  for (const char character : text) {
    std::string piece(1, character);
    for (const auto& [from, to] : replacements) {
      if (character == from) piece = to;
    }
    result += piece;
  }
  return result;
}

Words namesOf(const std::vector<OptionDescription>& options) {
  Words names;
  for (const OptionDescription& option : options) names.insert(names.end(), option.names.begin(), option.names.end());
  return names;
}

Words namesOf(const std::vector<CommandDescription>& commands) {
  Words names;
  names.reserve(commands.size());
  for (const CommandDescription& command : commands) names.push_back(command.name);
  return names;
}

// -------------------------------------------------------------------------------------------
// bash

constexpr const char* bashBeginning = R"(_korvex_dao() {
  local word=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD-1]}
  local command= index options= words= files=
  # Of --option=value bash makes three words.
  if [[ $word == = ]]; then
    word=
  elif [[ $previous == = ]]; then
    previous=${COMP_WORDS[COMP_CWORD-2]}
  fi
  for ((index = 1; index < COMP_CWORD; ++index)); do
    if [[ ${COMP_WORDS[index]} != -* ]]; then
      command=${COMP_WORDS[index]}
      break
    fi
  done
)";

constexpr const char* bashEnd = R"(  if [[ $options && $word == -* ]]; then
    words=$options
    files=
  fi
  COMPREPLY=()
  if [[ $files ]]; then
    local IFS=$'\n'
    compopt -o filenames 2>/dev/null
    COMPREPLY=($(compgen -f -- "$word"))
  elif [[ $words ]]; then
    COMPREPLY=($(compgen -W "$words" -- "$word"))
  fi
}
complete -F _korvex_dao korvex-dao
)";

// How the value is completed: with words, files, or nothing.
std::string bashValue(const OptionDescription& option) {
  if (option.takesFile()) return "files=yes";
  return concatenated({"words='", joined(option.words, " "), "'"});
}

std::string bashArguments(const CommandDescription& command) {
  std::string values;
  if (!command.arguments.empty()) values = bashValue(command.arguments.back());
  if (!command.commands.empty()) values = concatenated({"words='", joined(namesOf(command.commands), " "), "'"});
  return concatenated({"options='", joined(namesOf(command.options), " "), "' ", values});
}

void writeBash(std::ostream& out, const CommandDescription& tool) {
  out << bashBeginning << "  case \"$command $previous\" in\n";
  for (const CommandDescription& command : tool.commands) {
    for (const OptionDescription& option : command.options) {
      if (option.value.empty()) continue;
      Words patterns;
      for (const std::string& name : option.names)
        patterns.push_back(concatenated({"'", command.name, " ", name, "'"}));
      out << "    " << joined(patterns, " | ") << ") " << bashValue(option) << " ;;\n";
    }
  }
  out << "    *)\n      case $command in\n        '') " << bashArguments(tool) << " ;;\n";
  for (const CommandDescription& command : tool.commands)
    out << "        " << command.name << ") " << bashArguments(command) << " ;;\n";
  out << "      esac\n      ;;\n  esac\n" << bashEnd;
}

// -------------------------------------------------------------------------------------------
// zsh

std::string zshText(const std::string& text) {
  return replaced(text, {{'\\', "\\\\"}, {'[', "\\["}, {']', "\\]"}, {':', "\\:"}, {'\'', "'\\''"}});
}

std::string zshValue(const OptionDescription& option) {
  std::string action = " ";
  if (!option.words.empty()) action = concatenated({"(", joined(option.words, " "), ")"});
  if (option.takesFile()) action = "_files";
  return concatenated({":", zshText(option.value), ":", action});
}

Words zshOption(const OptionDescription& option) {
  Words specifications;
  for (const std::string& name : option.names) {
    const std::string others = option.repeated ? "*" : concatenated({"(", joined(option.names, " "), ")"});
    const std::string value = option.value.empty() ? "" : zshValue(option);
    const bool assigned = !value.empty() && name.starts_with("--");
    specifications.push_back(
        concatenated({"'", others, name, assigned ? "=" : "", "[", zshText(option.help), "]", value, "'"}));
  }
  return specifications;
}

Words zshOptions(const CommandDescription& command) {
  Words specifications;
  for (const OptionDescription& option : command.options) {
    const Words names = zshOption(option);
    specifications.insert(specifications.end(), names.begin(), names.end());
  }
  for (const OptionDescription& argument : command.arguments)
    specifications.push_back(concatenated({argument.repeated   ? "'*"
                                           : argument.required ? "'"
                                                               : "':",
                                           zshValue(argument), "'"}));
  return specifications;
}

void writeZsh(std::ostream& out, const CommandDescription& tool) {
  out << "#compdef korvex-dao\n_korvex-dao() {\n  local context state state_descr line\n  local -A opt_args\n"
         "  local -a commands=(\n";
  for (const CommandDescription& command : tool.commands)
    out << "    '" << zshText(command.name) << ":" << zshText(command.summary) << "'\n";
  out << "  )\n  _arguments -C \\\n";
  for (const std::string& option : zshOptions(tool)) out << "    " << option << " \\\n";
  out << "    '1:command:->command' \\\n    '*::argument:->argument'\n"
         "  case $state in\n    command) _describe command commands ;;\n    argument)\n      case $line[1] in\n";
  for (const CommandDescription& command : tool.commands) {
    out << "        " << command.name << ")\n          _arguments";
    for (const std::string& option : zshOptions(command)) out << " \\\n            " << option;
    out << "\n          ;;\n";
  }
  out << "      esac\n      ;;\n  esac\n}\n"
         "if [[ $funcstack[1] == _korvex-dao ]]; then _korvex-dao \"$@\"; else compdef _korvex-dao korvex-dao; fi\n";
}

// -------------------------------------------------------------------------------------------
// fish

std::string fishText(const std::string& text) {
  return concatenated({"'", replaced(text, {{'\\', "\\\\"}, {'\'', "\\'"}}), "'"});
}

std::string fishValue(const OptionDescription& option) {
  if (option.value.empty()) return "";
  if (option.takesFile()) return " -r -F";
  return option.words.empty() ? " -x" : concatenated({" -x -a ", fishText(joined(option.words, " "))});
}

void writeFishOptions(std::ostream& out, const CommandDescription& command, const std::string& line) {
  for (const OptionDescription& option : command.options) {
    out << line;
    for (const std::string& name : option.names) {
      const bool isLong = name.starts_with("--");
      out << (isLong ? " -l " : " -s ") << name.substr(isLong ? 2 : 1);
    }
    out << fishValue(option) << " -d " << fishText(option.help) << '\n';
  }
  if (command.arguments.empty()) return;
  const OptionDescription& argument = command.arguments.back();
  if (argument.takesFile()) out << line << " -F\n";
  if (!argument.words.empty()) out << line << " -a " << fishText(joined(argument.words, " ")) << '\n';
}

void writeFish(std::ostream& out, const CommandDescription& tool) {
  const std::string complete = "complete -c korvex-dao";
  const std::string first = complete + " -n __fish_use_subcommand";
  out << complete << " -f\n";
  for (const CommandDescription& command : tool.commands)
    out << first << " -a " << command.name << " -d " << fishText(command.summary) << '\n';
  writeFishOptions(out, tool, first);
  for (const CommandDescription& command : tool.commands)
    writeFishOptions(out, command, complete + " -n '__fish_seen_subcommand_from " + command.name + "'");
}

}  // namespace

const std::map<std::string, CompletionWriter>& completionWriters() {
  static const std::map<std::string, CompletionWriter> writers = {
      {"bash", writeBash}, {"fish", writeFish}, {"zsh", writeZsh}};
  return writers;
}

}  // namespace korvex
