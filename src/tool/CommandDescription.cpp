#include "tool/CommandDescription.h"

#include <CLI/CLI.hpp>
#include <algorithm>

namespace korvex {
namespace {

// Validator names are never displayed, so they store the words of a choice.
const std::string choicePrefix = "one of ";
const std::string choiceSeparator = "|";

Words wordsOf(CLI::Option& option) {
  try {
    const std::string name = option.get_validator(0)->get_name();
    if (name.starts_with(choicePrefix)) return CLI::detail::split(name.substr(choicePrefix.size()), '|');
  } catch (const CLI::OptionNotFound&) {  // anything is a value
  }
  return {};
}

Words namesOf(const CLI::Option& option) {
  Words names;
  for (const std::string& name : option.get_snames()) names.push_back("-" + name);
  for (const std::string& name : option.get_lnames()) names.push_back("--" + name);
  return names;
}

OptionDescription describeOption(CLI::Option& option) {
  OptionDescription description;
  description.names = namesOf(option);
  if (option.get_positional()) {
    description.value = option.get_name(true);
  } else if (option.get_type_size_max() > 0) {
    description.value = option.get_type_name();
  }
  description.help = option.get_description();
  description.words = wordsOf(option);
  for (const CLI::Option* needed : option.get_needs()) description.needs.push_back(needed->get_name());
  std::sort(description.needs.begin(), description.needs.end());
  description.required = option.get_required();
  description.repeated =
      option.get_items_expected_max() > 1 || option.get_multi_option_policy() == CLI::MultiOptionPolicy::TakeAll;
  return description;
}

}  // namespace

CommandDescription describe(CLI::App& app) {
  CommandDescription command{app.get_name(), app.get_description(), app.get_footer(), {}, {}, {}};
  for (CLI::Option* option : app.get_options()) {
    if (option->get_group().empty()) continue;
    auto& kind = option->get_positional() ? command.arguments : command.options;
    kind.push_back(describeOption(*option));
  }
  for (CLI::App* below : app.get_subcommands([](CLI::App*) { return true; })) {
    if (!below->get_group().empty()) command.commands.push_back(describe(*below));
  }
  return command;
}

CLI::Validator oneOf(const Words& words) { return CLI::IsMember(words).description("").name(choiceName(words)); }

std::string choiceName(const Words& words) { return choicePrefix + joined(words, choiceSeparator); }

std::string joined(const Words& words, const std::string& separator) {
  std::string text;
  for (const std::string& word : words) {
    if (&word != &words.front()) text += separator;
    text += word;
  }
  return text;
}

}  // namespace korvex
