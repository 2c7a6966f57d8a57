#include "Tool/DumpCommand.h"

#include <algorithm>
#include <ostream>

#include "Tool/ElementJson.h"
#include "Tool/ElementTree.h"
#include "Tool/Finding.h"
#include "Tool/InputFiles.h"

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

Json entriesOf(const std::vector<Definition>& definitions) {
  Json entries = Json::array();
  for (const Definition& definition : definitions) entries.push_back(entryOf(definition));
  return entries;
}

void printEntries(std::ostream& out, const Json& entries, DumpFormat format) {
  if (format == DumpFormat::Json) {
    out << jsonText(entries) << '\n';
  } else {
    for (const Json& entry : entries) printDefinitionTree(out, entry);
  }
}

ExitCode reportFailure(const std::string& path, const Document::Result& result, std::ostream& err) {
  if (!blamesDocument(result.error->kind)) {
    printUnreadable(err, {path, result.error->message});
    return ExitCodeTrouble;
  }
  printFinding(err, findingOf(path, *result.error), result.source.get(), false);
  return ExitCodeSomethingFound;
}

}  // namespace

ExitCode runDump(const DumpOptions& options, const Console& console) {
  const Document::Result result = readDocument(options.path, console.in, options.load);
  if (!result.document) {
    printEntries(console.out, Json::array(), options.format);
    return reportFailure(shownPath(options.path), result, console.err);
  }
  const std::vector<Definition> definitions = loadDefinitions(*result.document);
  printEntries(console.out, entriesOf(definitions), options.format);
  const bool allBuilt = std::all_of(definitions.begin(), definitions.end(),
                                    [](const Definition& definition) { return definition.element != nullptr; });
  return allBuilt ? ExitCodeNothingFound : ExitCodeSomethingFound;
}

}  // namespace korvex
