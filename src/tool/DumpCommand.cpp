#include "tool/DumpCommand.h"

#include <algorithm>
#include <ostream>

#include "checks/DocumentCheck.h"
#include "korvex/Definition.h"
#include "tool/ElementJson.h"
#include "tool/ElementTree.h"
#include "tool/FindingText.h"
#include "tool/InputFiles.h"
#include "tool/OutOfMemory.h"

namespace korvex {
namespace {

Json entryOf(const Definition& definition) {
  Json entry = {{"tag", definition.tag()}, {"line", definition.position().line}};
  if (definition.element) {
    entry["element"] = elementJson(*definition.element);
  } else {
    entry["error"] = definition.error->message();
  }
  return entry;
}

// An array, written entry by entry, because the whole array would need many times the memory of the elements.
void printJson(std::ostream& out, const std::vector<Definition>& definitions) {
  constexpr std::string_view opening = "[\n";
  constexpr std::string_view closing = "\n]";
  for (const Definition& definition : definitions) {
    const std::string array = jsonText(Json::array({entryOf(definition)}));
    const std::string_view entry = std::string_view(array).substr(opening.size());
    out << (&definition == &definitions.front() ? opening : ",\n") << entry.substr(0, entry.size() - closing.size());
  }
  out << (definitions.empty() ? "[]" : closing) << '\n';
}

void printDefinitions(std::ostream& out, const std::vector<Definition>& definitions, DumpFormat format) {
  if (format == DumpFormat::Json) return printJson(out, definitions);
  for (const Definition& definition : definitions) printDefinitionTree(out, entryOf(definition));
}

ExitCode reportFailure(const std::string& path, const Document::Result& result, std::ostream& err) {
  if (!blamesDocument(result.error->kind())) {
    printUnreadable(err, {path, result.error->message});
    return ExitCodeTrouble;
  }
  printFinding(err, findingOf(path, *result.error, result.source), false);
  return ExitCodeSomethingFound;
}

}  // namespace

ExitCode runDump(const DumpOptions& options, const Console& console) {
  const std::string path = shownPath(options.path);
  const InputInProgress input(path);
  const Document::Result result = readDocument(options.path, console.in, options.load);
  if (!result.document) {
    printDefinitions(console.out, {}, options.format);
    return reportFailure(path, result, console.err);
  }
  const std::vector<Definition> definitions = loadDefinitions(*result.document);
  printDefinitions(console.out, definitions, options.format);
  const bool allBuilt = std::all_of(definitions.begin(), definitions.end(),
                                    [](const Definition& definition) { return definition.element != nullptr; });
  return allBuilt ? ExitCodeNothingFound : ExitCodeSomethingFound;
}

}  // namespace korvex
