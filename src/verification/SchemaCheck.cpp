#include "verification/SchemaCheck.h"

#include <algorithm>
#include <iterator>
#include <string_view>
#include <utility>

#include "checks/Suppressions.h"
#include "checks/WarningList.h"
#include "korvex/QXDAOMethod.h"
#include "plan/SqlText.h"
#include "verification/ModelChecks.h"
#include "verification/SetChecks.h"

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

// The name that begins there.
std::string_view wordAt(std::string_view text, std::size_t begin) {
  std::size_t end = begin;
  while (end < text.size() && isNameCharacter(text[end])) ++end;
  return text.substr(std::min(begin, text.size()), end - begin);
}

}  // namespace

void SchemaCheck::add(const std::string& path, std::unique_ptr<Document> document) {
  std::vector<Definition> definitions = loadDefinitions(*document);
  add(path, std::move(document), std::move(definitions));
}

void SchemaCheck::add(const std::string& path, std::unique_ptr<Document> document,
                      std::vector<Definition> definitions) {
  VerifiedDocument& verified = _verified[path];
  verified.file = std::make_shared<const CheckedFile>(CheckedFile{path, document->sharedSource()});
  for (const Definition& definition : definitions) {
    verified.definitions.push_back(inDefinition(definition));
    if (!definition.element) _rejected.insert(verified.definitions.back().get());
    const auto* method = QXDAOElementCast<QXDAOMethod>(definition.element.get());
    if (!method) continue;
    for (const QXDAOMethodArgument& argument : *method->arguments()) {
      _arguments.emplace(argument.name().value_or(std::string_view()));
    }
  }
  verified.document = std::move(document);
  verified.built = std::move(definitions);
  _documents.push_back({path, verified.document});
}

// Why a definition is rejected has been told.
bool SchemaCheck::isInRejected(const VerifiedDocument& document, std::size_t offset) const {
  const auto* definition = document.definitionAt(offset);
  return definition && _rejected.contains(definition->get());
}

void SchemaCheck::addErrors(const RunnableSet& runnable, const std::function<bool(const DefinitionError&)>& isIgnored,
                            std::vector<Finding>& findings) const {
  for (const DefinitionError& error : runnable.errors) {
    const VerifiedDocument& document = _verified.find(error.document)->second;
    const std::size_t offset = offsetOf(*document.file->source, error.position);
    if (!isIgnored(error) && !isInRejected(document, offset)) {
      findings.push_back(findingAt(document, SchemaRule::NotRunnable, {offset, offset + 1}, error.message));
    }
  }
}

// Whether any argument is bound as ":name".
bool SchemaCheck::bindsArguments() const {
  return std::any_of(_verified.begin(), _verified.end(), [this](const auto& named) {
    const std::string_view source = named.second.file->source->text();
    for (std::size_t at = source.find(':'); at != std::string_view::npos; at = source.find(':', at + 1)) {
      if (_arguments.contains(wordAt(source, at + 1))) return true;
    }
    return false;
  });
}

// Whether "@name" is the name of an argument where no block has that name.
bool SchemaCheck::bindsByReference(const RunnableSet& runnable) const {
  return std::any_of(runnable.errors.begin(), runnable.errors.end(), [this](const DefinitionError& error) {
    const SourceText& source = *_verified.find(error.document)->second.file->source;
    return error.kind == DefinitionErrorKind::UnknownReference &&
           _arguments.contains(wordAt(source.text(), offsetOf(source, error.position) + 1));
  });
}

std::vector<Finding> SchemaCheck::runWithoutSchema(bool isWholeSet) const {
  std::vector<Finding> findings;
  if (!bindsArguments()) {
    addModelFindings(nullptr, findings);
    removeSuppressed(findings);
    return findings;
  }
  const RunnableSet runnable = runnableSetOf(_documents);
  const bool checksReferences = isWholeSet && _rejected.empty() && !bindsByReference(runnable);
  const auto isIgnored = [checksReferences](const DefinitionError& error) {
    switch (error.kind) {
      case DefinitionErrorKind::Rejected:
      case DefinitionErrorKind::DuplicateName:
      case DefinitionErrorKind::UnknownMap:
      case DefinitionErrorKind::Expression:
        return true;  // other rules are about these
      case DefinitionErrorKind::UnknownReference:
        return !checksReferences;
      default:
        return false;
    }
  };
  addErrors(runnable, isIgnored, findings);
  if (runnable.set) {
    std::vector<Finding> unused = findingsOfSet(*runnable.set, _verified, {}, nullptr);
    std::move(unused.begin(), unused.end(), std::back_inserter(findings));
  }
  addModelFindings(runnable.set.get(), findings);
  removeSuppressed(findings);
  return findings;
}

void SchemaCheck::addModelFindings(const DefinitionSet* set, std::vector<Finding>& findings) const {
  std::vector<Finding> found = findingsOfModels(set, _verified, _models);
  std::move(found.begin(), found.end(), std::back_inserter(findings));
}

// By comments before the definitions.
void SchemaCheck::removeSuppressed(std::vector<Finding>& findings) const {
  for (const auto& [path, document] : _verified) {
    const auto isWarning = [file = document.file.get()](const Finding& finding) {
      return finding.severity == Severity::Warning && finding.definition && finding.location.file.get() == file;
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
  addErrors(
      runnable, [](const DefinitionError&) { return false; }, result.findings);
  for (Finding& finding : result.findings) finding.severity = Severity::Error;
  if (!runnable.set) return result;
  Verification verification(*runnable.set, schema, _verified);
  if (upgrades) verification.runUpgrades();
  result.whole = verification.checkMethods(goesOn);
  if (result.whole) verification.checkSet(runnable.errors.empty() && _rejected.empty());
  std::vector<Finding> found = verification.takeFindings();
  std::move(found.begin(), found.end(), std::back_inserter(result.findings));
  addModelFindings(runnable.set.get(), result.findings);
  removeSuppressed(result.findings);
  result.totals = verification.totals();
  return result;
}

}  // namespace korvex::verification
