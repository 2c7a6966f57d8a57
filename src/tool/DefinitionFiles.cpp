#include "tool/DefinitionFiles.h"

#include <ostream>
#include <utility>
#include <vector>

#include "checks/NearMiss.h"
#include "korvex/Definition.h"
#include "korvex/Document.h"
#include "tool/InputFiles.h"
#include "tool/VisibleText.h"

namespace korvex {
namespace {

void printError(std::ostream& err, const std::string& path, const XMLPosition& position, const std::string& message) {
  err << path << ':' << position.line << ':' << position.column << ": error: " << visibleText(message) << '\n';
}

// The documents of one set; they live until it is built.
class SetOfFiles {
 public:
  explicit SetOfFiles(const Console& console) : _console(console) {}

  LoadedDefinitions load(const std::string& path) {
    const InputFiles inputs = findInputFiles({path});
    for (const UnreadablePath& unreadable : inputs.unreadable) addUnreadable(unreadable);
    for (const std::string& file : inputs.files) addFile(file);
    DefinitionSetBuilder::Result result = std::move(_builder).build();
    for (const DefinitionError& error : result.errors) addError(error.document, error.position, error.message);
    return {_code == ExitCodeNothingFound ? result.set : nullptr, _code};
  }

 private:
  void addUnreadable(const UnreadablePath& path) {
    printUnreadable(_console.err, path);
    _code = ExitCodeTrouble;
  }

  void addError(const std::string& path, const XMLPosition& position, const std::string& message) {
    printError(_console.err, path, position, message);
    if (_code == ExitCodeNothingFound) _code = ExitCodeSomethingFound;
  }

  void addFile(const std::string& file) {
    const std::string path = shownPath(file);
    Document::Result read = readDocument(file, _console.in, {});
    if (read.document) {
      _builder.add(path, loadDefinitions(*read.document));
      _documents.push_back(std::move(read.document));
    } else if (blamesDocument(read.error->kind())) {
      addError(path, read.error->position, read.error->message);
    } else {
      addUnreadable({path, read.error->message});
    }
  }

  const Console& _console;
  DefinitionSetBuilder _builder;
  std::vector<std::unique_ptr<Document>> _documents;
  ExitCode _code = ExitCodeNothingFound;
};

}  // namespace

LoadedDefinitions loadedDefinitions(const std::string& path, const Console& console) {
  return SetOfFiles(console).load(path);
}

std::string unknownMethod(const std::string& name, const DefinitionSet& set) {
  std::vector<std::string_view> names;
  for (const Plan* plan : set.plans()) names.push_back(plan->name());
  const std::string hint = didYouMean(name, names);
  return "no method has the name '" + visibleText(name) + "'" + (hint.empty() ? "" : "; ") + hint;
}

}  // namespace korvex
