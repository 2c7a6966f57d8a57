#include "verification/SchemaCheck.h"

#include <algorithm>
#include <iterator>
#include <string_view>
#include <utility>

#include "checks/Suppressions.h"
#include "checks/WarningList.h"

namespace korvex::verification {
namespace {

Finding faultOfScript(const std::string& path, const std::string& text, const ScriptFault& fault) {
  Finding finding;
  finding.rule = &ruleOf(SchemaRule::Sql);
  finding.severity = finding.rule->severity;
  const auto source = std::make_shared<const SourceText>(text);
  finding.location = {std::make_shared<const CheckedFile>(CheckedFile{path, source}),
                      {fault.place.begin, fault.place.end}};
  finding.message = fault.message;
  finding.help = fault.help;
  return finding;
}

Finding faultOfSet(const VerifiedDocument& document, std::size_t offset, const DefinitionError& error) {
  Finding finding;
  finding.rule = &ruleOf(SchemaRule::NotRunnable);
  finding.severity = finding.rule->severity;
  finding.location = {document.file, {offset, offset + 1}};
  finding.message = error.message;
  return finding;
}

}  // namespace

void SchemaCheck::add(const std::string& path, std::unique_ptr<Document> document) {
  VerifiedDocument& verified = _verified[path];
  verified.file = std::make_shared<const CheckedFile>(CheckedFile{path, document->sharedSource()});
  for (const Definition& definition : loadDefinitions(*document)) {
    verified.definitions.push_back(inDefinition(definition));
    if (!definition.element) _rejected.insert(verified.definitions.back().get());
  }
  verified.document = std::move(document);
  _documents.push_back({path, verified.document});
}

// Why a definition is rejected has been told.
bool SchemaCheck::isInRejected(const VerifiedDocument& document, std::size_t offset) const {
  const auto* definition = document.definitionAt(offset);
  return definition && _rejected.contains(definition->get());
}

// By comments before the definitions.
void SchemaCheck::removeSuppressed(std::vector<Finding>& findings) const {
  for (const auto& [path, document] : _verified) {
    const auto isWarning = [file = document.file.get()](const Finding& finding) {
      return finding.rule->severity == Severity::Warning && finding.definition && finding.location.file.get() == file;
    };
    if (std::none_of(findings.begin(), findings.end(), isWarning)) continue;
    const Places places(*document.file->source);
    Suppressions suppressions(places);
    std::erase_if(findings, [&](const Finding& finding) {
      return isWarning(finding) && suppressions.use({finding, finding.definition->offset});
    });
  }
}

SchemaCheckResult SchemaCheck::run(const std::string& source, const AppExtensions& extensions,
                                   const std::function<bool()>& goesOn) {
  SchemaCheckResult result;
  SchemaDatabase schema(extensions);
  const bool upgrades = source == schemaOfUpgrades;
  if (!upgrades) {
    const SchemaFile file = readSchemaFile(schema, source);
    result.unreadable = file.unreadable;
    if (file.fault) result.findings.push_back(faultOfScript(source, file.script, *file.fault));
    if (!result.unreadable.empty() || !result.findings.empty()) return result;
  }
  const RunnableSet runnable = runnableSetOf(_documents);
  for (const DefinitionError& error : runnable.errors) {
    const VerifiedDocument& document = _verified.find(error.document)->second;
    const std::size_t offset = offsetOf(*document.file->source, error.position);
    if (!isInRejected(document, offset)) result.findings.push_back(faultOfSet(document, offset, error));
  }
  if (!runnable.set) return result;
  Verification verification(*runnable.set, schema, _verified);
  if (upgrades) verification.runUpgrades();
  result.whole = verification.checkMethods(goesOn);
  if (result.whole) verification.checkSet();
  std::vector<Finding> found = verification.takeFindings();
  std::move(found.begin(), found.end(), std::back_inserter(result.findings));
  removeSuppressed(result.findings);
  result.totals = verification.totals();
  return result;
}

}  // namespace korvex::verification
