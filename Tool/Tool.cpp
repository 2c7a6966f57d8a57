#include "Tool/Tool.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <exception>
#include <limits>
#include <map>
#include <ostream>

#include "Tool/CheckCommand.h"
#include "Tool/DumpCommand.h"

namespace korvex {
namespace {

constexpr const char* generalFooter = R"(Examples:
  korvex-dao check definitions/
  korvex-dao dump --format tree addressbook.xml
  korvex-dao check --help)";

constexpr const char* checkFooter = R"(Prints one finding for each refused definition or malformed document:
  path:line:column: error: message
with the source line and a caret below it. Lines and columns count from 1,
columns in characters (code points).

Examples:
  korvex-dao check addressbook.xml
  korvex-dao check --format json definitions/ more.xml
  generate-definitions | korvex-dao check -

Exit codes:
  0  nothing found
  1  something found
  2  wrong usage, an input that cannot be read (the others are checked all
     the same), or an output that cannot be written)";

constexpr const char* dumpFooter = R"(Examples:
  korvex-dao dump addressbook.xml
  korvex-dao dump --format tree addressbook.xml
  korvex-dao dump - < addressbook.xml

Exit codes:
  0  every definition was built
  1  a definition was refused, or the document is malformed
  2  wrong usage, an input that cannot be read, or an output that cannot be
     written)";

// An option that takes one of a few words.
template <typename Value>
void addChoice(CLI::App& command, const std::string& name, Value& value, const std::map<std::string, Value>& choices,
               const std::string& help) {
  std::vector<std::string> words;
  words.reserve(choices.size());
  for (const auto& choice : choices) words.push_back(choice.first);
  // A validator that is added later looks at the word earlier.
  command.add_option(name, value, help)
      ->transform(CLI::Transformer(choices).description(""))
      ->transform(CLI::IsMember(words).description(""))
      ->type_name("WORD");
}

void addLoadOptions(CLI::App& command, LoadOptions& options) {
  command.add_flag_callback(
      "--no-strict", [&options] { options.strict = false; },
      "Skip the check for well-formed XML; only for documents that have passed it before");
  command.add_flag("--keep-white-space", options.keepWhiteSpaceText,
                   "Keep texts of white space only; a map with indented children is refused then");
  command
      .add_option("--max-bytes", options.maximumBytes, "The largest document to read, in bytes; 67108864 if not given")
      ->check(CLI::Range(std::size_t{1}, std::numeric_limits<std::size_t>::max() / 2).description(""))
      ->type_name("N");
}

CLI::App* addCheck(CLI::App& tool, CheckOptions& options) {
  CLI::App* command = tool.add_subcommand("check", "Check definition documents and print what is wrong with them");
  command->add_option("PATH", options.paths, "Files, directories to search for *.xml, or - for standard input")
      ->required()
      ->type_name("");
  addChoice<CheckFormat>(*command, "--format", options.format,
                         {{"text", CheckFormat::Text}, {"json", CheckFormat::Json}},
                         "How to print the findings: text (if not given) or json");
  addChoice<ColorMode>(*command, "--color", options.color,
                       {{"auto", ColorMode::Auto}, {"always", ColorMode::Always}, {"never", ColorMode::Never}},
                       "When to color the text: always, never, or auto (if not given): on a terminal without NO_COLOR");
  addLoadOptions(*command, options.load);
  command->footer(checkFooter);
  return command;
}

void addDump(CLI::App& tool, DumpOptions& options) {
  CLI::App* command = tool.add_subcommand("dump", "Print the element trees of a definition document");
  command->add_option("FILE", options.path, "A file, or - for standard input")->required()->type_name("");
  addChoice<DumpFormat>(*command, "--format", options.format, {{"json", DumpFormat::Json}, {"tree", DumpFormat::Tree}},
                        "How to print the elements: json (if not given), or tree for people");
  addLoadOptions(*command, options.load);
  command->footer(dumpFooter);
}

ExitCode parseAndRun(std::vector<std::string> arguments, const Console& console) {
  CLI::App tool("Checks and shows mapping definitions of a data-access library.", "korvex-dao");
  tool.set_version_flag("--version", "korvex-dao " KORVEX_VERSION, "Print the version and exit");
  tool.require_subcommand(1);
  tool.footer(generalFooter);
  CheckOptions checkOptions;
  DumpOptions dumpOptions;
  const CLI::App* check = addCheck(tool, checkOptions);
  addDump(tool, dumpOptions);
  try {
    std::reverse(arguments.begin(), arguments.end());  // as the parser takes them
    tool.parse(std::move(arguments));
  } catch (const CLI::ParseError& error) {
    return tool.exit(error, console.out, console.err) == 0 ? ExitCodeNothingFound : ExitCodeTrouble;
  }
  return check->parsed() ? runCheck(checkOptions, console) : runDump(dumpOptions, console);
}

ExitCode flushed(const Console& console, ExitCode code) {
  if (console.out.flush()) return code;
  console.err << "korvex-dao: cannot write to standard output\n";
  return ExitCodeTrouble;
}

}  // namespace

ExitCode runTool(const std::vector<std::string>& arguments, const Console& console) {
  try {
    return flushed(console, parseAndRun(arguments, console));
  } catch (const std::exception& error) {
    console.err << "korvex-dao: " << error.what() << '\n';
  } catch (...) {
    console.err << "korvex-dao: unknown failure\n";
  }
  return ExitCodeTrouble;
}

}  // namespace korvex
