#include "tool/Tool.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <exception>
#include <filesystem>
#include <limits>
#include <map>
#include <ostream>
#include <sstream>

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
#include "tool/ModelsCommand.h"
#include "tool/RuleText.h"
#include "tool/RunCommand.h"
#include "tool/SchemaCommand.h"
#include "tool/SqlCommand.h"
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
    R"(Prints one finding for each rejected definition and malformed document, and for
each construct that is accepted but probably unintended:
  path:line:column: error: message [rule]
  path:line:column: warning: message [rule]
with the source line and a caret below it. Lines and columns count from 1,
columns in characters (code points).

Warnings, with the names that --warn and --no-warn take:
)";

constexpr std::string_view checkFooter =
    R"(All are on by default except undefined-map, which is on if PATH is a directory.
Those about SQL and about unused definitions need --schema.
The comment <!-- korvex: allow NAME, NAME --> directly before an element suppresses
the warnings of those names about this element, not about those inside it.

Formats:
  text    a finding with its source line, for people
  short   a line for each finding: path:line:column: error: message (help) [rule]
  json    the findings as data
  sarif   a SARIF 2.1.0 log, which code scanners read
  github  annotations for a GitHub Actions workflow

Examples:
  korvex-dao check addressbook.xml
  korvex-dao check --format json definitions/ more.xml
  korvex-dao check --werror --no-warn duplicate-name definitions/
  korvex-dao check --schema upgrades definitions/
  generate-definitions | korvex-dao check -

Exit codes:
  0  no findings, or only warnings
  1  at least one error; with --werror, at least one error or warning
  2  invalid usage, an unreadable input or a directory without *.xml files (the
     other inputs are still checked), or output that cannot be written)";

constexpr const char* sqlFooter = R"(Prints each SQL that arguments can give the method, with its conditions: each
condition true and false, lists of 0, 1 and 2 entries. With --schema, it says what
SQLite refuses, and with --plan how it would run the rest.

Examples:
  korvex-dao sql definitions/ searchPersons
  korvex-dao sql --schema upgrades --plan definitions/ searchPersons

Exit codes:
  0  success
  1  a definition is rejected, or SQLite refuses a variant
  2  invalid usage, unreadable input, or output that cannot be written)";

constexpr const char* explainFooter = R"(Each finding of check ends with the name of its rule in brackets. Without RULE,
all rules are listed: name, severity, default, and how to follow the rule.

Examples:
  korvex-dao explain condition-format
  korvex-dao explain

Exit codes:
  0  success
  2  invalid usage, unknown rule, or output that cannot be written)";

constexpr const char* dumpFooter = R"(Examples:
  korvex-dao dump addressbook.xml
  korvex-dao dump --format tree addressbook.xml
  korvex-dao dump - < addressbook.xml

Exit codes:
  0  every definition was built
  1  a definition was rejected, or the document is malformed
  2  invalid usage, unreadable input, or output that cannot be written)";

constexpr const char* modelsFooter =
    R"(In C++, each class is found by Model<Class>, with its className and its properties.
Names that are no plain string literals are not seen. An app that computes names
prints its classes at run time instead, with ModelRegistry::json().

Examples:
  korvex-dao models src/Models.h > models.json
  korvex-dao check --models src/Models.h definitions/
  korvex-dao check --models models.json --schema upgrades definitions/)";

constexpr const char* schemaFooter = R"(A schema describes the elements and attributes to an editor. It is less strict
than korvex-dao check. rnc and rng express more than xsd, which cannot allow an
arbitrary root tag.

Examples:
  korvex-dao schema > korvex-dao.rnc
  korvex-dao schema --format xsd --root mapping > mapping.xsd

Exit codes:
  0  success
  2  invalid usage, or output that cannot be written)";

constexpr const char* unpackFooter = R"(Prints every property in a value: its type, its content, and the size and offset
of the content in bytes. Values describe themselves; no class is needed. With
--db, it prints the values of all rows that meet the condition, with their
rowids. The database is opened read-only.

Examples:
  korvex-dao unpack value.bin
  korvex-dao unpack --hex '03 61 67 65 00 54 00 1E 00 00 00'
  korvex-dao unpack --db app.sqlite --table person --column info --where 'id = 7'

Exit codes:
  0  every value was read completely; NULL counts as no value
  1  a value is truncated, has an encode of unknown length, or is not a BLOB
  2  invalid usage, unreadable input, or output that cannot be written)";

constexpr const char* runFooter = R"(An argument's value is parsed as JSON: a number, a list, null, or an object whose
properties the method reads. A value that is not JSON is text; write text that
consists of digits as '"12"'. Arguments that are not given are null.

A select opens the database read-only and prints the columns of its rows, even
if its result is a class. A method that changes data requires --write and prints
how many rows it changed. --print-sql prints the statements and their bound
values instead of running them; it needs no database.

Examples:
  korvex-dao run --db app.sqlite definitions/ searchPersons text=Ada groupIds='[1,2]'
  korvex-dao run --db app.sqlite --format csv definitions/ phonesOfPerson personId=7
  korvex-dao run --db app.sqlite --write definitions/ addPhone \
    phone='{"personId": 7, "kind": "home", "number": "555"}'
  korvex-dao run --print-sql definitions/ searchPersons order=age

Exit codes:
  0  success
  1  a definition is rejected, or the method failed
  2  invalid usage, arguments that do not match the method, unreadable input, or
     output that cannot be written)";

constexpr const char* upgradeFooter = R"(Runs the upgrades that the database needs and prints each step as it begins.
Each upgrade sets its version in the same transaction. A missing database is
created.

Example:
  korvex-dao upgrade --db app.sqlite definitions/

Exit codes:
  0  the database has the newest version
  1  a definition is rejected, an upgrade failed, or the database is newer
  2  invalid usage, unreadable input, or output that cannot be written)";

constexpr const char* lspFooter = R"(Serves one editor on standard input and output with the Language Server
Protocol 3.17: diagnostics, completion, hover, symbols, and navigation between
methods and result maps. A malformed or oversized message is answered with an
error; the server keeps running.

Exit codes:
  0  the client requested shutdown before exit
  1  the client exited or closed the connection without shutdown
  2  invalid usage, or output that cannot be written)";

constexpr const char* completionFooter =
    R"(The korvex-dao packages install these scripts where the shells look for them.
Without a package, load the script in the shell's start-up file:
  source <(korvex-dao completion bash)
  source <(korvex-dao completion zsh)
  korvex-dao completion fish | source)";

// An option with a fixed set of values.
template <typename Value>
void addChoice(CLI::App& command, const std::string& name, Value& value, const std::map<std::string, Value>& choices,
               const std::string& help) {
  std::vector<std::string> words;
  words.reserve(choices.size());
  for (const auto& choice : choices) words.push_back(choice.first);
  // CLI11 applies the validator added last first.
  command.add_option(name, value, help)
      ->transform(CLI::Transformer(choices).description(""))
      ->transform(oneOf(words))
      ->type_name("WORD");
}

void addLoadOptions(CLI::App& command, LoadOptions& options) {
  command.add_flag_callback(
      "--no-strict", [&options] { options.strict = false; },
      "Skip the well-formedness check; only for documents that have passed it before");
  command.add_flag("--keep-white-space", options.keepWhiteSpaceText,
                   "Keep white-space-only text; maps with indented children are then rejected");
  command
      .add_option("--max-bytes", options.maximumBytes, "The maximum size of a document in bytes (default: 67108864)")
      ->check(CLI::Range(std::size_t{1}, std::numeric_limits<std::size_t>::max() / 2).description(""))
      ->type_name("N");
}

// The error message for an unknown warning name; empty for a known one.
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
      ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)
      ->allow_extra_args(false);
}

std::string badFunction(const std::string& declaration) {
  if (verification::isFunctionDeclaration(declaration)) return {};
  return "'" + visibleText(declaration) + "' is no function: write NAME/ARGS, such as distance/2 or join/*";
}

void addSchemaOptions(CLI::App& command, std::string& schema, verification::AppExtensions& extensions,
                      const char* help) {
  command.add_option("--schema", schema, help)->type_name("SOURCE");
  const auto declare = [&command](const char* name, std::vector<std::string>& names, const char* declared) {
    return command.add_option(name, names, declared)
        ->type_name("NAME")
        ->expected(1)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)
        ->allow_extra_args(false)
        ->needs("--schema");
  };
  declare("--function", extensions.functions, "Declare an SQL function of the app, NAME/ARGS; repeatable")
      ->check(CLI::Validator(badFunction, "", "function"))
      ->type_name("NAME/ARGS");
  declare("--collation", extensions.collations, "Declare a collation of the app; repeatable");
  declare("--module", extensions.modules, "Declare a module of virtual tables of the app; repeatable");
}

CLI::App* addCheck(CLI::App& tool, CheckOptions& options) {
  CLI::App* command = tool.add_subcommand("check", "Check definition documents and print the findings");
  command->add_option("PATH", options.paths, "Files, directories to search for *.xml, or - for standard input")
      ->required()
      ->type_name("");
  addChoice<CheckFormat>(*command, "--format", options.format,
                         {{"text", CheckFormat::Text},
                          {"short", CheckFormat::Short},
                          {"json", CheckFormat::Json},
                          {"sarif", CheckFormat::Sarif},
                          {"github", CheckFormat::Github}},
                         "The output format: text (default), short, json, sarif, or github");
  addChoice<ColorMode>(
      *command, "--color", options.color,
      {{"auto", ColorMode::Auto}, {"always", ColorMode::Always}, {"never", ColorMode::Never}},
      "When to use color: always, never, or auto (default): on a terminal that is not dumb, unless NO_COLOR is set");
  addWarnings(*command, "--warn", options.warnings, "Enable the warnings with this name; repeatable");
  addWarnings(*command, "--no-warn", options.noWarnings, "Disable the warnings with this name; repeatable");
  command->add_flag("--werror", options.warningsAreErrors, "Treat warnings as errors");
  addSchemaOptions(*command, options.schema, options.extensions,
                   "Check all SQL against a schema: 'upgrades' for that of the upgrades, an SQL script, or a database");
  command
      ->add_option("--indexed", options.extensions.indexed,
                   "Warn where a statement reads all rows of this table; repeatable")
      ->type_name("TABLE")
      ->expected(1)
      ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)
      ->allow_extra_args(false)
      ->needs("--schema");
  command
      ->add_option("--models", options.models,
                   "Check classes and properties against these: C++ with model classes, or JSON from 'models'")
      ->type_name("FILE");
  addLoadOptions(*command, options.load);
  command->footer(std::string(checkFindings).append(warningList()).append(checkFooter));
  return command;
}

CLI::App* addExplain(CLI::App& tool, ExplainOptions& options) {
  CLI::App* command = tool.add_subcommand("explain", "Explain a rule, with a wrong and a right example");
  command->add_option("RULE", options.what, "The name of a rule, or a finding as check prints it")->type_name("");
  addChoice<ExplainFormat>(*command, "--format", options.format,
                           {{"text", ExplainFormat::Text}, {"markdown", ExplainFormat::Markdown}},
                           "The output format: text (default) or markdown");
  command->footer(explainFooter);
  return command;
}

CLI::App* addDump(CLI::App& tool, DumpOptions& options) {
  CLI::App* command = tool.add_subcommand("dump", "Print the element trees of a definition document");
  command->add_option("FILE", options.path, "A file, or - for standard input")->required()->type_name("");
  addChoice<DumpFormat>(*command, "--format", options.format, {{"json", DumpFormat::Json}, {"tree", DumpFormat::Tree}},
                        "The output format: json (default), or tree for people");
  addLoadOptions(*command, options.load);
  command->footer(dumpFooter);
  return command;
}

CLI::App* addUnpack(CLI::App& tool, UnpackOptions& options) {
  CLI::App* command = tool.add_subcommand("unpack", "Print what a packed column holds");
  CLI::Option* file =
      command->add_option("FILE", options.path, "A file with one value, or - for standard input")->type_name("");
  CLI::Option* hex = command
                         ->add_option("--hex", options.hex,
                                      "One value in hexadecimal digits, or - to read the digits from standard input")
                         ->type_name("DIGITS")
                         ->excludes(file);
  CLI::Option* database =
      command->add_option("--db", options.column.path, "An SQLite database with packed values in a column")
          ->type_name("FILE")
          ->excludes(file)
          ->excludes(hex);
  CLI::Option* table = command->add_option("--table", options.column.table, "The table or view that has the column")
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
                          "The output format: table (default) or json");
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
                   "A JSON object with arguments, or - for standard input; arguments after METHOD take precedence")
      ->type_name("FILE");
  command->add_option("--table", options.table, "The table for a method with assignedTable")->type_name("NAME");
  addChoice<RowFormat>(*command, "--format", options.format,
                       {{"table", RowFormat::Table}, {"json", RowFormat::Json}, {"csv", RowFormat::Csv}},
                       "The output format: table (default), json or csv");
  CLI::Option* printSql =
      command->add_flag("--print-sql", options.printSql, "Print the SQL and its bound values without running it");
  command->add_flag("--write", options.write, "Allow the method to change data");
  command->footer(runFooter);
  command->callback([=] {
    if (database->empty() && printSql->empty()) throw CLI::RequiredError("--db or --print-sql");
  });
  return command;
}

CLI::App* addSql(CLI::App& tool, SqlOptions& options) {
  CLI::App* command = tool.add_subcommand("sql", "Print the variants of a method as SQL");
  command->add_option("PATH", options.definitions, "The definitions: a file, a directory, or - for standard input")
      ->required()
      ->type_name("");
  command->add_option("METHOD", options.method, "The name of a method")->required()->type_name("");
  addSchemaOptions(*command, options.schema, options.extensions,
                   "Prepare each variant: 'upgrades' for the schema of the upgrades, an SQL script, or a database");
  command->add_flag("--plan", options.queryPlans, "Print SQLite's query plan of each variant")->needs("--schema");
  command->add_option("--table", options.table, "The table for a method with assignedTable (default: T)")
      ->type_name("NAME");
  command->footer(sqlFooter);
  return command;
}

CLI::App* addUpgrade(CLI::App& tool, UpgradeOptions& options) {
  CLI::App* command = tool.add_subcommand("upgrade", "Upgrade an SQLite database to the newest version");
  command->add_option("PATH", options.definitions, "The definitions: a file, a directory, or - for standard input")
      ->required()
      ->type_name("");
  command->add_option("--db", options.database, "The database")->required()->type_name("FILE");
  command->footer(upgradeFooter);
  return command;
}

void addCompletion(CLI::App& tool, const Console& console) {
  CLI::App* command = tool.add_subcommand("completion", "Print a shell completion script for korvex-dao");
  Words shells;
  for (const auto& shell : completionWriters()) shells.push_back(shell.first);
  const std::string help = "The shell: " + joined(shells, ", ");
  CLI::Option* shell = command->add_option("SHELL", help)->required()->type_name("")->check(oneOf(shells));
  command->footer(completionFooter);
  command->callback([=, &tool] { completionWriters().at(shell->as<std::string>())(console.out, describe(tool)); });
}

// For package builds; hidden from the help.
void addManPage(CLI::App& tool, const Console& console) {
  CLI::App* command = tool.add_subcommand("man", "Print the manual page in roff")->group("");
  command->callback([&] { writeManPage(console.out, describe(tool)); });
}

CLI::App* addModels(CLI::App& tool, ModelsOptions& options) {
  CLI::App* command = tool.add_subcommand("models", "Print the model classes of an app, for 'check --models'");
  command->add_option("FILE", options.path, "C++ with model classes, or JSON from ModelRegistry::json()")
      ->required()
      ->type_name("");
  command->footer(modelsFooter);
  return command;
}

CLI::App* addSchema(CLI::App& tool, SchemaOptions& options) {
  CLI::App* command = tool.add_subcommand("schema", "Print a schema of definition documents, for editors");
  addChoice<schema::Format>(
      *command, "--format", options.format,
      {{"rnc", schema::Format::RelaxNgCompact}, {"rng", schema::Format::RelaxNg}, {"xsd", schema::Format::XmlSchema}},
      "The schema language: rnc (default) or rng for RELAX NG, xsd for XML Schema 1.0");
  const auto refused = [](const std::string& tag) {
    return schema::mayBeRoot(tag) ? std::string() : "a root cannot have the tag '" + tag + "'";
  };
  command->add_option("--root", options.root, "The root tag (default: any; korvex for xsd)")
      ->check(CLI::Validator(refused, ""))
      ->type_name("TAG");
  command->footer(schemaFooter);
  return command;
}

CLI::App* addLanguageServer(CLI::App& tool, LanguageServerOptions& options) {
  CLI::App* command = tool.add_subcommand("lsp", "Serve an editor as a language server");
  command->add_flag("--stdio")->description("Accepted for compatibility; standard input and output are always used");
  command->add_option("--max-bytes", options.maximumBytes, "The maximum size of a message in bytes (default: 67108864)")
      ->check(CLI::Range(std::size_t{1}, std::numeric_limits<std::size_t>::max() / 2).description(""))
      ->type_name("N");
  command->footer(lspFooter);
  return command;
}

// CLI11 takes "[name]" for a list. A file or directory of such a name is given as "./[name]", unless it may be the
// value of an option.
void protectBracketedPaths(Words& arguments) {
  std::string_view previous;
  for (std::string& argument : arguments) {
    std::error_code error;
    const bool afterOption = previous.starts_with('-') && previous != "--";
    if (argument.starts_with('[') && !afterOption && std::filesystem::exists(argument, error)) {
      argument.insert(0, "./");
    }
    previous = argument;
  }
}

// The words that may stand for an argument: commands, or the long options of one.
std::vector<std::string> commandNames(const CLI::App& tool) {
  std::vector<std::string> names;
  for (const CLI::App* command : tool.get_subcommands({})) names.push_back(command->get_name());
  return names;
}
std::vector<std::string> optionNames(const CLI::App& command) {
  std::vector<std::string> names;
  for (const CLI::Option* option : command.get_options()) {
    for (const std::string& name : option->get_lnames()) names.push_back("--" + name);
  }
  return names;
}

// What a misspelled command or option was probably meant to be; empty if none is misspelled.
std::string meantArgument(const CLI::App& tool, const std::vector<std::string>& arguments) {
  const CLI::App* command = nullptr;
  for (const std::string& argument : arguments) {
    const bool isOption = argument.starts_with("--");
    if (argument == "--") break;
    if (!isOption && command) continue;
    const std::string word = argument.substr(0, argument.find('='));
    const std::vector<std::string> names = isOption ? optionNames(command ? *command : tool) : commandNames(tool);
    if (std::find(names.begin(), names.end(), word) == names.end()) {
      return didYouMean(word, std::vector<std::string_view>(names.begin(), names.end()));
    }
    if (!isOption) command = tool.get_subcommand(word);
  }
  return {};
}

ExitCode parseAndRun(std::vector<std::string> arguments, const Console& console) {
  CLI::App tool("Checks, shows and runs SQL methods defined in XML, and decodes packed columns.", "korvex-dao");
  tool.set_version_flag("--version", "korvex-dao " KORVEX_VERSION, "Print the version and exit");
  tool.require_subcommand(1);
  tool.footer(generalFooter);
  CheckOptions checkOptions;
  ExplainOptions explainOptions;
  DumpOptions dumpOptions;
  UnpackOptions unpackOptions;
  RunOptions runOptions;
  UpgradeOptions upgradeOptions;
  SqlOptions sqlOptions;
  ModelsOptions modelsOptions;
  SchemaOptions schemaOptions;
  LanguageServerOptions serverOptions;
  const CLI::App* check = addCheck(tool, checkOptions);
  const CLI::App* explain = addExplain(tool, explainOptions);
  const CLI::App* dump = addDump(tool, dumpOptions);
  const CLI::App* unpack = addUnpack(tool, unpackOptions);
  const CLI::App* run = addRun(tool, runOptions);
  const CLI::App* upgrade = addUpgrade(tool, upgradeOptions);
  const CLI::App* sql = addSql(tool, sqlOptions);
  const CLI::App* models = addModels(tool, modelsOptions);
  const CLI::App* schema = addSchema(tool, schemaOptions);
  const CLI::App* server = addLanguageServer(tool, serverOptions);
  addCompletion(tool, console);
  addManPage(tool, console);
  const std::vector<std::string> written = arguments;
  try {
    protectBracketedPaths(arguments);
    std::reverse(arguments.begin(), arguments.end());  // CLI11 expects them in reverse order
    tool.parse(std::move(arguments));
  } catch (const CLI::ParseError& error) {
    std::ostringstream message;
    const int code = tool.exit(error, console.out, message);
    console.err << visibleLines(message.str());
    const std::string hint = code == 0 ? "" : meantArgument(tool, written);
    if (!hint.empty()) console.err << "help: " << hint << '\n';
    return code == 0 ? ExitCodeNothingFound : ExitCodeTrouble;
  }
  if (check->parsed()) return runCheck(checkOptions, console);
  if (explain->parsed()) return runExplain(explainOptions, console);
  if (dump->parsed()) return runDump(dumpOptions, console);
  if (run->parsed()) return runMethod(runOptions, console);
  if (upgrade->parsed()) return runUpgrade(upgradeOptions, console);
  if (sql->parsed()) return printVariants(sqlOptions, console);
  if (models->parsed()) return listModels(modelsOptions, console);
  if (schema->parsed()) return runSchema(schemaOptions, console);
  if (server->parsed()) return runLanguageServer(serverOptions, console);
  if (unpack->parsed()) return runUnpack(unpackOptions, console);
  return ExitCodeNothingFound;  // the other commands have run as callbacks during parsing
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
