#include "checks/DocumentCheck.h"

#include <algorithm>
#include <utility>

#include "checks/Culprits.h"
#include "checks/DocumentWarnings.h"
#include "checks/NearMiss.h"
#include "checks/Places.h"
#include "checks/Suppressions.h"
#include "dao/methods/ResultSpelling.h"
#include "korvex/Keywords.h"
#include "korvex/OptionalString.h"
#include "korvex/QXDAOError.h"
#include "korvex/QXDAOMethod.h"
#include "korvex/QXDAOPackReader.h"
#include "korvex/SourceText.h"
#include "korvex/XMLNode.h"

namespace korvex {

namespace {

// Finding a similar name takes time proportional to the number of names.
constexpr std::size_t maxHints = 100;

Finding errorOf(const Definition& definition, const WarningList& list) {
  Culprit culprit = culpritOf(definition, list.places());
  Finding finding = list.findingAt(ruleOf(definition.error->rule), culprit.place);
  finding.message = definition.error->message();
  finding.help = std::move(culprit.help);
  finding.definition = inDefinition(definition);
  return finding;
}

bool isBefore(const Finding& first, const Finding& second) {
  return first.location.span.begin < second.location.span.begin;
}

// The name of the map that a result is made through.
OptionalStringView mapOf(const Definition& definition) {
  const auto* method = QXDAOElementCast<QXDAOMethod>(definition.element.get());
  const bool mapped = method && method->operation() == QXDAOOperationSelect &&
                      method->resultType() == QXDAOSelectResultTypeMappedObject;
  return mapped ? method->resultTypeName() : OptionalStringView();
}

// Where the result names its map.
Span placeOfMap(const Definition& definition, const Places& places) {
  const WrittenValue result = places.writtenValueOf(definition.xml, C_RESULT);
  return result.of(readResult(result.value).name);
}

// Finds the definition around an offset. Offsets must not decrease.
class DefinitionFinder {
 public:
  DefinitionFinder(const std::vector<Definition>& definitions, const Places& places)
      : _next(definitions.begin()), _end(definitions.end()), _places(places) {}

  // Null when the place is in none.
  const Definition* definitionAround(std::size_t offset) {
    while (_next != _end && _places.offsetOf(_next->xml) <= offset) _last = &*_next++;
    if (!_last) return nullptr;
    const MarkupElement* markup = _places.elementAt(_places.offsetOf(_last->xml));
    return markup && offset < markup->whole.end ? _last : nullptr;
  }

 private:
  std::vector<Definition>::const_iterator _next;
  std::vector<Definition>::const_iterator _end;
  const Places& _places;
  const Definition* _last = nullptr;
};

Finding unusedSuppression(const Suppression& suppression, const WarningList& list) {
  Finding finding = list.findingAt(ruleOf(Warning::UnusedSuppression), suppression.comment);
  finding.message = "there is no warning '" + std::string(suppression.name) + "' to suppress here";
  return finding;
}

Finding unknownWarning(const Suppression& suppression, const WarningList& list) {
  Finding finding = list.findingAt(ruleOf(Warning::UnknownWarning), suppression.comment);
  finding.message = "no warning has the name '" + std::string(suppression.name) + "'";
  finding.help = didYouMean(suppression.name, warningNames());
  return finding;
}

}  // namespace

Finding findingOf(const std::string& path, const DocumentError& error,
                  const std::shared_ptr<const SourceText>& source) {
  const Rule& rule = ruleOf(error.kind());
  Finding finding;
  finding.rule = &rule;
  finding.severity = rule.severity;
  finding.location.file = std::make_shared<const CheckedFile>(CheckedFile{path, source, error.position});
  if (source) finding.location.span = Places(*source).spanAt(error.offset);
  finding.message = error.message;
  return finding;
}

std::vector<Finding> SetCheck::check(const std::string& path, const Document& document,
                                     const std::vector<Definition>& definitions) {
  const Places places(document.source());
  WarningList list(places, std::make_shared<const CheckedFile>(CheckedFile{path, document.sharedSource()}));
  std::vector<Finding> findings;
  for (const Definition& definition : definitions) {
    if (definition.error) findings.push_back(errorOf(definition, list));
    findWarningsIn(definition, list);
  }
  _names.add(definitions, list);
  Suppressions suppressions(places);
  for (FoundWarning& warning : list.warnings()) {
    if (!suppressions.use(warning)) report(std::move(warning.finding), findings);
  }
  list.warnings().clear();
  addReferences(definitions, list, suppressions);
  reportSuppressions(definitions, list, suppressions, findings);
  std::stable_sort(findings.begin(), findings.end(), isBefore);
  return findings;
}

void SetCheck::addReferences(const std::vector<Definition>& definitions, WarningList& list,
                             Suppressions& suppressions) {
  if (!_selection.wants(ruleOf(Warning::UndefinedMap))) return;
  for (const Definition& definition : definitions) {
    const OptionalStringView map = mapOf(definition);
    if (!map) continue;
    list.setDefinition(definition);
    list.add(Warning::UndefinedMap, definition.xml, placeOfMap(definition, list.places()),
             "no map has the name '" + std::string(*map) + "'");
    FoundWarning& warning = list.warnings().back();
    MapReference& reference = _references.emplace_back();
    reference.map = *map;
    if (const Suppression* suppression = suppressions.use(warning)) {
      reference.suppressed = true;
      reference.unusedSuppression = unusedSuppression(*suppression, list);
    }
    reference.finding = std::move(warning.finding);
  }
}

void SetCheck::report(Finding finding, std::vector<Finding>& findings) const {
  if (!_selection.wants(*finding.rule)) return;
  finding.severity = _selection.severityOf(*finding.rule);
  findings.push_back(std::move(finding));
}

// Suppressions of warnings that are switched off are not checked.
void SetCheck::reportSuppressions(const std::vector<Definition>& definitions, const WarningList& list,
                                  const Suppressions& suppressions, std::vector<Finding>& findings) {
  DefinitionFinder finder(definitions, list.places());
  for (const Suppression& suppression : suppressions.all()) {
    if (!suppression.rule) {
      report(unknownWarning(suppression, list), findings);
    } else if (std::holds_alternative<SchemaRule>(suppression.rule->id)) {
      continue;  // only a check against a schema can tell
    } else if (!suppression.used && _selection.wants(*suppression.rule)) {
      reportUnused(suppression, finder.definitionAround(suppression.element), list, findings);
    }
  }
}

// A definition with an error does not get all warnings, and a later document may repeat a name.
void SetCheck::reportUnused(const Suppression& suppression, const Definition* definition, const WarningList& list,
                            std::vector<Finding>& findings) {
  if (definition && definition->error) return;
  const bool ofDefinition = definition && list.places().offsetOf(definition->xml) == suppression.element;
  std::optional<SetNames::Name> name = ofDefinition ? SetNames::nameOf(*definition) : std::nullopt;
  if (name && suppression.rule != &ruleOf(SetNames::warningAbout(*name))) name.reset();
  if (!name) {
    report(unusedSuppression(suppression, list), findings);
  } else if (_whole) {
    _nameSuppressions.push_back({std::move(*name), unusedSuppression(suppression, list)});
  }
}

std::vector<Finding> SetCheck::finish() {
  std::vector<Finding> findings;
  if (!_complete) return findings;
  const std::vector<std::string_view> maps = _names.mapNames();
  for (MapReference& reference : _references) {
    const bool defined = _names.hasMap(reference.map);
    if (!defined && !reference.suppressed) {
      if (findings.size() < maxHints) reference.finding.help = didYouMean(reference.map, maps);
      report(std::move(reference.finding), findings);
    } else if (defined && reference.suppressed) {
      report(std::move(*reference.unusedSuppression), findings);
    }
  }
  for (NameSuppression& suppression : _nameSuppressions) {
    if (!_names.isRepeated(suppression.name)) report(std::move(suppression.unused), findings);
  }
  return findings;
}

std::vector<Finding> findingsOf(const std::string& path, const Document& document,
                                const std::vector<Definition>& definitions) {
  return SetCheck().check(path, document, definitions);
}

}  // namespace korvex
