#include "Tool/CheckCommand.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <memory>
#include <ostream>
#include <system_error>

#include "Checks/DocumentCheck.h"
#include "Checks/RuleNames.h"
#include "Tool/Counted.h"
#include "Tool/FindingJson.h"
#include "Tool/FindingText.h"
#include "Tool/InputFiles.h"
#include "Tool/OutOfMemory.h"

namespace korvex {
namespace {

bool colorWanted(ColorMode mode, const Console& console) {
  if (mode != ColorMode::Auto) return mode == ColorMode::Always;
  return console.outIsTerminal && !console.noColor;
}

// A directory is taken for all documents that belong together.
bool holdsWholeSet(const std::vector<std::string>& paths) {
  return std::any_of(paths.begin(), paths.end(), [](const std::string& path) {
    std::error_code error;
    return path != standardInput && std::filesystem::is_directory(path, error);
  });
}

WarningSelection selectionOf(const CheckOptions& options) {
  WarningSelection selection;
  if (holdsWholeSet(options.paths)) selection.want(*ruleNamed(RuleNames::undefinedMap), true);
  for (const std::string& name : options.warnings) selection.want(*ruleNamed(name), true);
  for (const std::string& name : options.noWarnings) selection.want(*ruleNamed(name), false);
  if (options.warningsAreErrors) selection.takeForErrors();
  return selection;
}

// One run of the command: prints text findings as they come, collects them for JSON.
class Check {
 public:
  Check(const CheckOptions& options, const Console& console)
      : _options(options), _console(console), _color(colorWanted(options.color, console)), _set(selectionOf(options)) {}

  ExitCode run() {
    const InputFiles inputs = findInputFiles(_options.paths);
    for (const UnreadablePath& path : inputs.unreadable) addUnreadable(path);
    for (const std::string& file : inputs.files) checkFile(file);
    for (const Finding& finding : _set.finish()) addFinding(finding, _sources.at(finding.path).get());
    finish();
    if (!_unreadable.empty()) return ExitCodeTrouble;
    return _errors > 0 ? ExitCodeSomethingFound : ExitCodeNothingFound;
  }

 private:
  void checkFile(const std::string& file) {
    const std::string path = shownPath(file);
    const InputInProgress input(path);
    const Document::Result result = readDocument(file, _console.in, _options.load);
    if (result.document) {
      checkDocument(path, result);
    } else if (!blamesDocument(result.error->kind)) {
      addUnreadable({path, result.error->message});
    } else {
      ++_files;
      _set.addUnread();
      addFinding(findingOf(path, *result.error, result.source.get()), result.source.get());
    }
  }

  void checkDocument(const std::string& path, const Document::Result& result) {
    const std::vector<Definition> definitions = loadDefinitions(*result.document);
    ++_files;
    _definitions += definitions.size();
    for (const Finding& finding : _set.check(path, *result.document, definitions)) {
      addFinding(finding, result.source.get());
    }
    if (_set.hasMoreAbout(path)) _sources.emplace(path, result.source);
  }

  void addFinding(const Finding& finding, const SourceText* source) {
    ++(finding.severity == Severity::Error ? _errors : _warnings);
    if (_options.format == CheckFormat::Json) {
      _findings.push_back(findingJson(finding));
    } else {
      printFinding(_console.out, finding, source, _color);
    }
  }

  void addUnreadable(const UnreadablePath& path) {
    _set.addUnread();
    _unreadable.push_back({{"path", path.path}, {"message", path.message}});
    printUnreadable(_console.err, path);
  }

  void finish() {
    if (_options.format == CheckFormat::Json) _console.out << jsonText(report()) << '\n';
    _console.out.flush();
    _console.err << counted(_definitions, "definition") << " in " << counted(_files, "file") << ", "
                 << counted(_errors, "error");
    if (_warnings > 0) _console.err << ", " << counted(_warnings, "warning");
    if (!_unreadable.empty()) _console.err << ", " << counted(_unreadable.size(), "unreadable path");
    _console.err << '\n';
  }

  [[nodiscard]] Json report() const {
    return {{"findings", _findings}, {"unreadable", _unreadable}, {"definitions", _definitions},
            {"files", _files},       {"errors", _errors},         {"warnings", _warnings}};
  }

  const CheckOptions& _options;
  const Console& _console;
  bool _color;
  SetCheck _set;
  std::map<std::string, std::shared_ptr<const SourceText>> _sources;  // of documents that have findings to come
  Json _findings = Json::array();
  Json _unreadable = Json::array();
  std::size_t _definitions = 0;
  std::size_t _files = 0;  // that could be read
  std::size_t _errors = 0;
  std::size_t _warnings = 0;
};

}  // namespace

ExitCode runCheck(const CheckOptions& options, const Console& console) { return Check(options, console).run(); }

}  // namespace korvex
