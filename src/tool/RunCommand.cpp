#include "tool/RunCommand.h"

#include <ostream>
#include <utility>

#include "korvex/sqlite/Database.h"
#include "tool/Counted.h"
#include "tool/DatabaseFailure.h"
#include "tool/DefinitionFiles.h"
#include "tool/InputFiles.h"
#include "tool/JsonValues.h"
#include "tool/PrintedSql.h"
#include "tool/VisibleText.h"

namespace korvex {
namespace {

// ---------------------------------------------------------------------------------------------
// Arguments

// The arguments, or an error.
struct ReadArguments {
  Arguments arguments;
  std::string error;
};

std::string tooLarge(const std::string& name) { return "argument '" + name + "' is an integer beyond SQL's 64 bits"; }

ReadArguments addedFile(ReadArguments read, const RunOptions& options, std::istream& in) {
  if (!options.argumentsFile) return read;
  const InputBytes input = readBytes(*options.argumentsFile, in);
  if (input.error) return {{}, input.name + ": " + *input.error};
  const Json json = Json::parse(input.bytes, nullptr, false);
  if (!json.is_object()) return {{}, input.name + ": is no JSON object, such as {\"text\": \"Ada\"}"};
  for (const auto& [name, entry] : json.items()) {
    std::optional<Value> value = valueOfJson(entry);
    if (!value) return {{}, tooLarge(name)};
    read.arguments.set(name, std::move(*value));
  }
  return read;
}

// A value that is not JSON is text.
std::optional<Value> valueOfWord(const std::string& word) {
  const Json json = Json::parse(word, nullptr, false);
  return json.is_discarded() ? std::optional(Value(word)) : valueOfJson(json);
}

ReadArguments addedWords(ReadArguments read, const RunOptions& options) {
  for (const std::string& word : options.arguments) {
    if (!read.error.empty()) return read;
    const std::size_t sign = word.find('=');
    if (sign == std::string::npos) return {{}, "'" + visibleText(word) + "' is no argument, such as text=Ada"};
    std::optional<Value> value = valueOfWord(word.substr(sign + 1));
    if (!value) return {{}, tooLarge(word.substr(0, sign))};
    read.arguments.set(word.substr(0, sign), std::move(*value));
  }
  return read;
}

ReadArguments readArguments(const RunOptions& options, std::istream& in) {
  return addedWords(addedFile({}, options, in), options);
}

// ---------------------------------------------------------------------------------------------
// The method

ExitCode fail(const Console& console, const std::string& message) {
  console.err << "korvex-dao: " << message << '\n';
  return ExitCodeTrouble;
}

ExitCode select(Database& database, const Plan& plan, const Arguments& arguments, const RunOptions& options,
                const Console& console) {
  std::vector<Dictionary> rows;
  if (plan.method().resultArrayed()) {
    auto read = database.call<std::vector<Dictionary>>(plan.name(), arguments, {.table = options.table});
    if (!read) return printFailure(console, read.error());
    rows = std::move(*read);
  } else {
    auto read = database.call<std::optional<Dictionary>>(plan.name(), arguments, {.table = options.table});
    if (!read) return printFailure(console, read.error());
    if (*read) rows.push_back(std::move(**read));
  }
  printRows(console.out, rows, options.format);
  console.out.flush();
  console.err << counted(rows.size(), "row") << '\n';
  return ExitCodeNothingFound;
}

ExitCode change(Database& database, const Plan& plan, const Arguments& arguments, const Console& console) {
  const Outcome<CallResult> result = database.call(plan.name(), arguments);
  if (!result) return printFailure(console, result.error());
  console.err << counted(static_cast<std::size_t>(result->changes), "row") << " changed\n";
  return ExitCodeNothingFound;
}

ExitCode runPlan(const std::shared_ptr<const DefinitionSet>& set, const Plan& plan, const Arguments& arguments,
                 const RunOptions& options, const Console& console) {
  const bool selects = plan.operation() == QXDAOOperationSelect;
  if (!selects && !options.write) {
    return fail(console, "'" + options.method + "' changes data; give --write to have it do so");
  }
  DatabaseOptions databaseOptions;
  databaseOptions.create = false;
  databaseOptions.readOnly = selects;
  const auto database = Database::open(*options.database, databaseOptions);
  if (!database) return printUnopened(console, *options.database, database.error());
  (*database)->load(set);
  return selects ? select(**database, plan, arguments, options, console) : change(**database, plan, arguments, console);
}

}  // namespace

ExitCode runMethod(const RunOptions& options, const Console& console) {
  if (options.definitions == standardInput && options.argumentsFile == standardInput) {
    return fail(console, "standard input cannot hold both the definitions and the arguments");
  }
  const LoadedDefinitions loaded = loadedDefinitions(options.definitions, console);
  if (!loaded.set) return loaded.code;
  const Plan* plan = loaded.set->plan(options.method);
  if (!plan) return fail(console, unknownMethod(options.method, *loaded.set));
  const ReadArguments read = readArguments(options, console.in);
  if (!read.error.empty()) return fail(console, read.error);
  if (options.printSql) return printSql(*plan, read.arguments, options.table, console);
  return runPlan(loaded.set, *plan, read.arguments, options, console);
}

}  // namespace korvex
