#include "tool/UpgradeCommand.h"

#include <optional>
#include <ostream>
#include <utility>

#include "korvex/sqlite/Database.h"
#include "sqlite/NumberText.h"
#include "tool/DatabaseFailure.h"
#include "tool/DefinitionFiles.h"

namespace korvex {
namespace {

std::string versionText(const std::optional<double>& version) {
  if (!version) return "no version";
  return *version == 0 ? "initial" : versionNumber(*version);
}

// One run of the command.
class Upgrade {
 public:
  Upgrade(Database& database, const Console& console) : _database(database), _console(console) {}

  ExitCode run() {
    const auto before = _database.version();
    if (!before) return printFailure(_console, before.error());
    const Failure failure = _database.upgrade([this](const UpgradeStep& step) { return tell(step); });
    if (failure) return printFailure(_console, *failure);
    const auto after = _database.version();
    if (!after) return printFailure(_console, after.error());
    if (*before == *after) {
      _console.out << versionText(*after) << ": nothing to upgrade\n";
    } else {
      _console.out << versionText(*before) << " -> " << versionText(*after) << '\n';
    }
    return ExitCodeNothingFound;
  }

 private:
  bool tell(const UpgradeStep& step) {
    _console.out << versionText(step.version);
    if (step.steps > 1) _console.out << ": step " << step.step + 1 << " of " << step.steps;
    _console.out << std::endl;  // flushed, so that a pipe sees each step at once
    return true;
  }

  Database& _database;
  const Console& _console;
};

}  // namespace

ExitCode runUpgrade(const UpgradeOptions& options, const Console& console) {
  LoadedDefinitions loaded = loadedDefinitions(options.definitions, console);
  if (!loaded.set) return loaded.code;
  const auto database = Database::open(options.database);
  if (!database) return printUnopened(console, options.database, database.error());
  (*database)->load(std::move(loaded.set));
  return Upgrade(**database, console).run();
}

}  // namespace korvex
