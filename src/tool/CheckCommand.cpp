#include "tool/CheckCommand.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <memory>
#include <ostream>
#include <set>
#include <system_error>

#include "checks/DocumentCheck.h"
#include "checks/Rules.h"
#include "korvex/Definition.h"
#include "korvex/QXDAOPackReader.h"
#include "tool/Counted.h"
#include "tool/InputFiles.h"
#include "tool/OutOfMemory.h"
#include "verification/SchemaCheck.h"

namespace korvex {
namespace {

bool colorWanted(ColorMode mode, const Console& console) {
  if (mode != ColorMode::Auto) return mode == ColorMode::Always;
  return console.outIsTerminal && !console.noColor;
}

// A directory is assumed to contain all documents that belong together.
bool holdsWholeSet(const std::vector<std::string>& paths) {
  return std::any_of(paths.begin(), paths.end(), [](const std::string& path) {
    std::error_code error;
    return path != standardInput && std::filesystem::is_directory(path, error);
  });
}

WarningSelection selectionOf(const CheckOptions& options) {
  WarningSelection selection;
  if (holdsWholeSet(options.paths)) selection.want(ruleOf(Warning::UndefinedMap), true);
  for (const std::string& name : options.warnings) selection.want(*ruleNamed(name), true);
  for (const std::string& name : options.noWarnings) selection.want(*ruleNamed(name), false);
  if (options.warningsAreErrors) selection.treatAsErrors();
  return selection;
}

// "12 methods checked against the schema, in 96 variants".
std::string coverageOf(const verification::VerificationTotals& totals) {
  std::string line =
      counted(totals.methods, "method") + " checked against the schema, in " + counted(totals.variants, "variant");
  if (totals.chosen > 0) line += "; " + counted(totals.chosen, "method") + " by a covering choice of variants";
  if (totals.stopped > 0) line += ", " + std::to_string(totals.stopped) + " of them in part";
  return line + '\n';
}

// One run of the command.
class Check {
 public:
  Check(const CheckOptions& options, const Console& console)
      : _options(options),
        _console(console),
        _report(makeCheckReport(options.format, console.out, colorWanted(options.color, console))),
        _selection(selectionOf(options)),
        _set(_selection) {
    if (holdsWholeSet(options.paths)) _set.treatAsComplete();
  }

  ExitCode run() {
    const InputFiles inputs = findInputFiles(_options.paths);
    for (const UnreadablePath& path : inputs.unreadable) addUnreadable(path);
    for (const std::string& file : inputs.files) checkFile(file);
    for (const Finding& finding : _set.finish()) addFinding(finding);
    checkSet();
    finish();
    if (_unreadable > 0) return ExitCodeTrouble;
    return _totals.errors > 0 ? ExitCodeSomethingFound : ExitCodeNothingFound;
  }

 private:
  void checkFile(const std::string& file) {
    const std::string path = shownPath(file);
    const InputInProgress input(path);
    Document::Result result = readDocument(file, _console.in, _options.load);
    if (result.document) {
      std::vector<Definition> definitions = loadDefinitions(*result.document);
      checkDocument(path, *result.document, definitions);
      if (checksSet()) _schemaCheck.add(path, std::move(result.document), std::move(definitions));
    } else if (!blamesDocument(result.error->kind())) {
      addUnreadable({path, result.error->message});
    } else {
      ++_totals.files;
      _set.addUnread();
      addFinding(findingOf(path, *result.error, result.source));
    }
  }

  void checkDocument(const std::string& path, const Document& document, const std::vector<Definition>& definitions) {
    ++_totals.files;
    _totals.definitions += definitions.size();
    for (const Finding& finding : _set.check(path, document, definitions)) addFinding(finding);
  }

  // What depends on how the definitions fit together, and the schema.
  void checkSet() {
    if (!_options.models.empty()) readModels();
    if (!_options.schema.empty()) return checkSchema();
    if (checksSet()) addSetFindings(_schemaCheck.runWithoutSchema(holdsWholeSet(_options.paths) && _unreadable == 0));
  }
  void readModels() {
    verification::ModelList::Reading reading = verification::ModelList::read(_options.models);
    if (!reading.fault.empty()) addUnreadable({_options.models, reading.fault});
    _schemaCheck.useModels(std::move(reading.models));
  }
  [[nodiscard]] bool checksSet() const {
    return !_options.schema.empty() || !_options.models.empty() || _selection.wants(ruleOf(SchemaRule::NotRunnable)) ||
           _selection.wants(ruleOf(SchemaRule::UnusedArgument));
  }

  // What is wrong in one place is told once.
  void addSetFindings(const std::vector<Finding>& findings) {
    for (const Finding& finding : findings) {
      const bool known = finding.rule == &ruleOf(SchemaRule::NotRunnable) && isPlaceKnown(finding);
      const bool wanted = finding.severity == Severity::Error || _selection.wants(*finding.rule);
      if (!known && wanted) addFinding(withSeverity(finding));
    }
  }

  void checkSchema() {
    const verification::SchemaCheckResult result = _schemaCheck.run(_options.schema, _options.extensions);
    if (!result.unreadable.empty()) return addUnreadable({_options.schema, result.unreadable});
    addSetFindings(result.findings);
    if (result.totals.methods > 0) _verified = coverageOf(result.totals);
  }

  void addFinding(const Finding& finding) {
    ++(finding.severity == Severity::Error ? _totals.errors : _totals.warnings);
    if (!_unexplained && finding.rule->severity == Severity::Error && finding.help.empty()) _unexplained = finding.rule;
    _places[finding.location.path()].insert(finding.location.span.begin);
    _report->add(finding);
  }

  [[nodiscard]] Finding withSeverity(Finding finding) const {
    if (finding.severity != Severity::Error) finding.severity = _selection.severityOf(*finding.rule);
    return finding;
  }

  [[nodiscard]] bool isPlaceKnown(const Finding& finding) const {
    const auto found = _places.find(finding.location.path());
    return found != _places.end() && found->second.contains(finding.location.span.begin);
  }

  void addUnreadable(const UnreadablePath& path) {
    _set.addUnread();
    ++_unreadable;
    _report->addUnreadable(path);
    printUnreadable(_console.err, path);
  }

  void finish() {
    _report->finish(_totals);
    _console.out.flush();
    if (_unexplained && _options.format == CheckFormat::Text) {
      _console.err << "For details: korvex-dao explain " << _unexplained->name << '\n';
    }
    _console.err << counted(_totals.definitions, "definition") << " in " << counted(_totals.files, "file") << ", "
                 << counted(_totals.errors, "error");
    if (_totals.warnings > 0) _console.err << ", " << counted(_totals.warnings, "warning");
    if (_unreadable > 0) _console.err << ", " << counted(_unreadable, "unreadable path");
    _console.err << '\n' << _verified;
  }

  const CheckOptions& _options;
  const Console& _console;
  std::unique_ptr<CheckReport> _report;
  WarningSelection _selection;
  SetCheck _set;
  verification::SchemaCheck _schemaCheck;
  std::map<std::string, std::set<std::size_t>> _places;  // of the findings, by file
  std::string _verified;                                 // what the check against the schema covered
  CheckTotals _totals;
  const Rule* _unexplained = nullptr;  // the first error without help
  std::size_t _unreadable = 0;
};

}  // namespace

ExitCode runCheck(const CheckOptions& options, const Console& console) { return Check(options, console).run(); }

}  // namespace korvex
