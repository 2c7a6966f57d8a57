#include "tool/Tool.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <exception>
#include <limits>
#include <map>
#include <ostream>

#include "checks/NearMiss.h"
#include "checks/Rules.h"
#include "korvex/Document.h"
#include "korvex/QXDAOPackReader.h"
#include "tool/CheckCommand.h"
#include "tool/CommandDescription.h"
#include "tool/Completion.h"
#include "tool/DumpCommand.h"
#include "tool/ExplainCommand.h"
#include "tool/LanguageServerCommand.h"
#include "tool/ManPage.h"
#include "tool/RuleText.h"
#include "tool/RunCommand.h"
#include "tool/SchemaCommand.h"
#include "tool/UnpackCommand.h"
#include "tool/UpgradeCommand.h"
#include "tool/VisibleText.h"

namespace korvex {
namespace {

constexpr const char* generalFooter = R"(Examples:
  korvex-dao check definitions/
  korvex-dao explain condition-format
  korvex-dao dump --format tree addressbook.xml
  korvex-dao upgrade --db app.sqlite definitions/
  korvex-dao run --db app.sqlite definitions/ searchPersons text=Ada
  korvex-dao unpack --db app.sqlite --table person --column info
  korvex-dao check --help)";

constexpr std::string_view checkFindings =
    R"(Prints one finding for each refused definition or malformed document, and for
what is accepted but probably unintended:
  path:line:column: error: message [rule]
  path:line:column: warning: message [rule]
with the source line and a caret below it. Lines and columns count from 1,
columns in characters (code points).

Warnings, by the names that --warn and --no-warn take:
)";

constexpr std::string_view checkFooter = R"(All but undefined-map are on; undefined-map is on when PATH is a directory.
The comment <!-- korvex: allow NAME --> directly before an element suppresses
the warnings of that name about this element, not about those inside it.

Formats:
  text    a finding with its line of the source, for people
  short   one line a finding: path:line:column: error: message [rule]
  json    the findings as data
  sarif   a SARIF 2.1.0 log, which code scanners read
  github  annotations of a GitHub Actions workflow

Examples:
  korvex-dao check addressbook.xml
  korvex-dao check --format json definitions/ more.xml
  korvex-dao check --werror --no-warn duplicate-name definitions/
  generate-definitions | korvex-dao check -

Exit codes:
  0  nothing found, or warnings alone
  1  an error found; with --werror a warning, too
  2  wrong usage, an input that cannot be read or a directory without *.xml
     (the others are checked all the same), or an output that cannot be written)";

constexpr const char* explainFooter = R"(A finding of check ends with the name of its rule in brackets. Without RULE all
rules are listed: name, severity, whether it is on, and how to follow it.

Examples:
  korvex-dao explain condition-format
  korvex-dao explain

Exit codes:
  0  explained
  2  wrong usage, no such rule, or an output that cannot be written)";

constexpr const char* dumpFooter = R"(Examples:
  korvex-dao dump addressbook.xml
  korvex-dao dump --format tree addressbook.xml
  korvex-dao dump - < addressbook.xml

Exit codes:
  0  every definition was built
  1  a definition was refused, or the document is malformed
  2  wrong usage, an input that cannot be read, or an output that cannot be
     written)";

constexpr const char* schemaFooter = R"(A schema tells an editor which elements and attributes there are and what they
mean. It refuses less than korvex-dao check does: rnc and rng say more than xsd,
which knows no root of any tag.

Examples:
  korvex-dao schema > korvex-dao.rnc
  korvex-dao schema --format xsd --root mapping > mapping.xsd

Exit codes:
  0  printed
  2  wrong usage, or an output that cannot be written)";

constexpr const char* unpackFooter = R"(Prints every property in a value: its type, what it holds, and how many bytes
that is at which offset. The value describes itself; no class is needed. With
--db it prints the values of all rows that meet the condition, each with its
rowid. The database is only read.

Examples:
  korvex-dao unpack value.bin
  korvex-dao unpack --hex '03 61 67 65 00 54 00 1E 00 00 00'
  korvex-dao unpack --db app.sqlite --table person --column info --where 'id = 7'

Exit codes:
  0  every value was read to its end; NULL is no value
  1  a value ends early, holds an encode that ends the reading, or is no BLOB
  2  wrong usage, an input that cannot be read, or an output that cannot be
     written)";

constexpr const char* runFooter = R"(A value that reads as JSON is that: a number, a list, an object whose properties
the method reads, null. Anything else is a text; a text of digits is written
'"12"'. What is not given is null.

A select prints its rows by their columns, whatever class its result names, and
opens the database to be read only. A method that changes data needs --write
and says how many rows it changed. --print-sql prints the statements and their
values instead, and needs no database.

Examples:
  korvex-dao run --db app.sqlite definitions/ searchPersons text=Ada groupIds='[1,2]'
  korvex-dao run --db app.sqlite --format csv definitions/ phonesOfPerson personId=7
  korvex-dao run --db app.sqlite --write definitions/ addPhone \
    phone='{"personId": 7, "kind": "home", "number": "555"}'
  korvex-dao run --print-sql definitions/ searchPersons order=age

Exit codes:
  0  run, or printed
  1  a definition is refused, or SQLite refused the method
  2  wrong usage, arguments that do not fit the method, an input that cannot be
     read, or an output that cannot be written)";

constexpr const char* upgradeFooter = R"(Runs the upgrades that the file needs, each in a transaction with its version,
and prints each step as it begins. A file that is not there is made.

Example:
  korvex-dao upgrade --db app.sqlite definitions/

Exit codes:
  0  the file has the newest version
  1  a definition is refused, an upgrade failed, or the file's version is newer
  2  wrong usage, an input that cannot be read, or an output that cannot be
     written)";

constexpr const char* lspFooter = R"(Serves one editor on standard input and output, by the Language Server
Protocol 3.17: what is wrong with the open documents, completion, hover,
symbols, and the way between methods and result maps. A message that is
malformed or too large is answered by an error; it does not end the server.

Exit codes:
  0  the client asked for shutdown, then for exit
  1  it did not, or closed its end
  2  wrong usage, or an output that cannot be written)";

constexpr const char* completionFooter = R"(The packages of korvex-dao put the scripts where the shells look for them. A
copy without a package is completed after:
  source <(korvex-dao completion bash)
  source <(korvex-dao completion zsh)
  korvex-dao completion fish | source)";

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
      ->transform(oneOf(words))
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

// Why there is no such warning; empty when there is.
std::string unknownWarning(const std::string& name) {
  const auto names = warningNames();
  if (std::find(names.begin(), names.end(), name) != names.end()) return {};
  const std::string hint = didYouMean(name, names);
  return "no warning has the name '" + visibleText(name) + "'" + (hint.empty() ? "" : "; ") + hint;
}

void addWarnings(CLI::App& command, const std::string& option, std::vector<std::string>& names,
                 const std::string& help) {
  const auto known = warningNames();
  command.add_option(option, names, help)
      ->check(CLI::Validator(unknownWarning, "", choiceName(Words(known.begin(), known.end()))))
      ->type_name("NAME")
      ->expected(1)
      ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
}

CLI::App* addCheck(CLI::App& tool, CheckOptions& options) {
  CLI::App* command = tool.add_subcommand("check", "Check definition documents and print what is wrong with them");
  command->add_option("PATH", options.paths, "Files, directories to search for *.xml, or - for standard input")
      ->required()
      ->type_name("");
  addChoice<CheckFormat>(*command, "--format", options.format,
                         {{"text", CheckFormat::Text},
                          {"short", CheckFormat::Short},
                          {"json", CheckFormat::Json},
                          {"sarif", CheckFormat::Sarif},
                          {"github", CheckFormat::Github}},
                         "How to print the findings: text (if not given), short, json, sarif, or github");
  addChoice<ColorMode>(*command, "--color", options.color,
                       {{"auto", ColorMode::Auto}, {"always", ColorMode::Always}, {"never", ColorMode::Never}},
                       "When to color the text: always, never, or auto (if not given): on a terminal without NO_COLOR");
  addWarnings(*command, "--warn", options.warnings, "Give the warnings of this name; may be repeated");
  addWarnings(*command, "--no-warn", options.noWarnings, "Do not give the warnings of this name; may be repeated");
  command->add_flag("--werror", options.warningsAreErrors, "Treat warnings as errors");
  addLoadOptions(*command, options.load);
  command->footer(std::string(checkFindings).append(warningList()).append(checkFooter));
  return command;
}

CLI::App* addExplain(CLI::App& tool, ExplainOptions& options) {
  CLI::App* command = tool.add_subcommand("explain", "Explain a rule, by a wrong and a right example");
  command->add_option("RULE", options.what, "The name of a rule, or a finding as check prints it")->type_name("");
  addChoice<ExplainFormat>(*command, "--format", options.format,
                           {{"text", ExplainFormat::Text}, {"markdown", ExplainFormat::Markdown}},
                           "How to print it: text (if not given) or markdown");
  command->footer(explainFooter);
  return command;
}

CLI::App* addDump(CLI::App& tool, DumpOptions& options) {
  CLI::App* command = tool.add_subcommand("dump", "Print the element trees of a definition document");
  command->add_option("FILE", options.path, "A file, or - for standard input")->required()->type_name("");
  addChoice<DumpFormat>(*command, "--format", options.format, {{"json", DumpFormat::Json}, {"tree", DumpFormat::Tree}},
                        "How to print the elements: json (if not given), or tree for people");
  addLoadOptions(*command, options.load);
  command->footer(dumpFooter);
  return command;
}

CLI::App* addUnpack(CLI::App& tool, UnpackOptions& options) {
  CLI::App* command = tool.add_subcommand("unpack", "Print what a packed column holds");
  CLI::Option* file =
      command->add_option("FILE", options.path, "A file with one value, or - for standard input")->type_name("");
  CLI::Option* hex =
      command->add_option("--hex", options.hex, "One value in hexadecimal digits, or - when standard input holds them")
          ->type_name("DIGITS")
          ->excludes(file);
  CLI::Option* database = command->add_option("--db", options.column.path, "An SQLite database with values in a column")
                              ->type_name("FILE")
                              ->excludes(file)
                              ->excludes(hex);
  CLI::Option* table = command->add_option("--table", options.column.table, "The table, or a view, that has the column")
                           ->type_name("NAME")
                           ->needs(database);
  CLI::Option* column = command->add_option("--column", options.column.column, "The column with the values")
                            ->type_name("NAME")
                            ->needs(database);
  command->add_option("--where", options.column.where, "Only the rows that meet this SQL condition")
      ->type_name("CONDITION")
      ->needs(database);
  database->needs(table)->needs(column);
  addChoice<UnpackFormat>(*command, "--format", options.format,
                          {{"table", UnpackFormat::Table}, {"json", UnpackFormat::Json}},
                          "How to print the values: table (if not given) or json");
  command->footer(unpackFooter);
  command->callback([=] {
    if (file->empty() && hex->empty() && database->empty()) throw CLI::RequiredError("FILE, --hex or --db");
  });
  return command;
}

CLI::App* addRun(CLI::App& tool, RunOptions& options) {
  CLI::App* command = tool.add_subcommand("run", "Run a method on an SQLite database");
  command->add_option("PATH", options.definitions, "The definitions: a file, a directory, or - for standard input")
      ->required()
      ->type_name("");
  command->add_option("METHOD", options.method, "The name of a method")->required()->type_name("");
  command->add_option("ARGUMENT", options.arguments, "An argument of the method: name=value")->type_name("");
  CLI::Option* database = command->add_option("--db", options.database, "The database")->type_name("FILE");
  command
      ->add_option("--arguments", options.argumentsFile,
                   "A JSON object with arguments, or - for standard input; those after METHOD count more")
      ->type_name("FILE");
  command->add_option("--table", options.table, "The table, for a method with assignedTable")->type_name("NAME");
  addChoice<RowFormat>(*command, "--format", options.format,
                       {{"table", RowFormat::Table}, {"json", RowFormat::Json}, {"csv", RowFormat::Csv}},
                       "How to print the rows: table (if not given), json or csv");
  CLI::Option* printSql =
      command->add_flag("--print-sql", options.printSql, "Print the SQL with its values, and run nothing");
  command->add_flag("--write", options.write, "Let the method change data");
  command->footer(runFooter);
  command->callback([=] {
    if (database->empty() && printSql->empty()) throw CLI::RequiredError("--db or --print-sql");
  });
  return command;
}

CLI::App* addUpgrade(CLI::App& tool, UpgradeOptions& options) {
  CLI::App* command = tool.add_subcommand("upgrade", "Lead an SQLite database to the newest version");
  command->add_option("PATH", options.definitions, "The definitions: a file, a directory, or - for standard input")
      ->required()
      ->type_name("");
  command->add_option("--db", options.database, "The database")->required()->type_name("FILE");
  command->footer(upgradeFooter);
  return command;
}

void addCompletion(CLI::App& tool, const Console& console) {
  CLI::App* command = tool.add_subcommand("completion", "Print a script by which a shell completes korvex-dao");
  Words shells;
  for (const auto& shell : completionWriters()) shells.push_back(shell.first);
  const std::string help = "The shell: " + joined(shells, ", ");
  CLI::Option* shell = command->add_option("SHELL", help)->required()->type_name("")->check(oneOf(shells));
  command->footer(completionFooter);
  command->callback([=, &tool] { completionWriters().at(shell->as<std::string>())(console.out, describe(tool)); });
}

// For those who build packages: hidden from the help.
void addManPage(CLI::App& tool, const Console& console) {
  CLI::App* command = tool.add_subcommand("man", "Print the manual page in roff")->group("");
  command->callback([&] { writeManPage(console.out, describe(tool)); });
}

CLI::App* addSchema(CLI::App& tool, SchemaOptions& options) {
  CLI::App* command = tool.add_subcommand("schema", "Print a schema of definition documents, for editors");
  addChoice<schema::Format>(
      *command, "--format", options.format,
      {{"rnc", schema::Format::RelaxNgCompact}, {"rng", schema::Format::RelaxNg}, {"xsd", schema::Format::XmlSchema}},
      "How to write the schema: rnc (if not given) or rng, which are RELAX NG, or xsd, XML Schema 1.0");
  const auto refused = [](const std::string& tag) {
    return schema::mayBeRoot(tag) ? std::string() : "a root cannot have the tag '" + tag + "'";
  };
  command->add_option("--root", options.root, "The tag of the root; if not given, any, and for xsd korvex")
      ->check(CLI::Validator(refused, ""))
      ->type_name("TAG");
  command->footer(schemaFooter);
  return command;
}

CLI::App* addLanguageServer(CLI::App& tool, LanguageServerOptions& options) {
  CLI::App* command = tool.add_subcommand("lsp", "Serve an editor as a language server");
  command->add_flag("--stdio")->description("What it does in any case; many editors pass it");
  command
      ->add_option("--max-bytes", options.maximumBytes, "The largest message to read, in bytes; 67108864 if not given")
      ->check(CLI::Range(std::size_t{1}, std::numeric_limits<std::size_t>::max() / 2).description(""))
      ->type_name("N");
  command->footer(lspFooter);
  return command;
}

ExitCode parseAndRun(std::vector<std::string> arguments, const Console& console) {
  CLI::App tool("Checks and shows mapping definitions of a data-access library, and its packed columns.", "korvex-dao");
  tool.set_version_flag("--version", "korvex-dao " KORVEX_VERSION, "Print the version and exit");
  tool.require_subcommand(1);
  tool.footer(generalFooter);
  CheckOptions checkOptions;
  ExplainOptions explainOptions;
  DumpOptions dumpOptions;
  UnpackOptions unpackOptions;
  RunOptions runOptions;
  UpgradeOptions upgradeOptions;
  SchemaOptions schemaOptions;
  LanguageServerOptions serverOptions;
  const CLI::App* check = addCheck(tool, checkOptions);
  const CLI::App* explain = addExplain(tool, explainOptions);
  const CLI::App* dump = addDump(tool, dumpOptions);
  const CLI::App* unpack = addUnpack(tool, unpackOptions);
  const CLI::App* run = addRun(tool, runOptions);
  const CLI::App* upgrade = addUpgrade(tool, upgradeOptions);
  const CLI::App* schema = addSchema(tool, schemaOptions);
  const CLI::App* server = addLanguageServer(tool, serverOptions);
  addCompletion(tool, console);
  addManPage(tool, console);
  try {
    std::reverse(arguments.begin(), arguments.end());  // as the parser takes them
    tool.parse(std::move(arguments));
  } catch (const CLI::ParseError& error) {
    return tool.exit(error, console.out, console.err) == 0 ? ExitCodeNothingFound : ExitCodeTrouble;
  }
  if (check->parsed()) return runCheck(checkOptions, console);
  if (explain->parsed()) return runExplain(explainOptions, console);
  if (dump->parsed()) return runDump(dumpOptions, console);
  if (run->parsed()) return runMethod(runOptions, console);
  if (upgrade->parsed()) return runUpgrade(upgradeOptions, console);
  if (schema->parsed()) return runSchema(schemaOptions, console);
  if (server->parsed()) return runLanguageServer(serverOptions, console);
  if (unpack->parsed()) return runUnpack(unpackOptions, console);
  return ExitCodeNothingFound;  // the others have run while they were parsed
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
