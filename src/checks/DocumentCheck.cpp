#include "checks/DocumentCheck.h"

#include <algorithm>
#include <map>
#include <memory>
#include <utility>

#include "checks/Culprits.h"
#include "checks/DocumentWarnings.h"
#include "checks/FurtherFaults.h"
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
#include "platform/Strings.h"

namespace korvex {

namespace {

// Finding a similar name takes time proportional to the number of names.
constexpr std::size_t maxHints = 100;

// The errors of definitions, in the order of their places. The one that a definition was rejected for stays the first.
class ErrorList {
 public:
  explicit ErrorList(const WarningList& list) : _list(list) {}

  void add(const Definition& definition, std::vector<Finding>& findings) {
    Culprit culprit = culpritOf(definition, _list.places());
    const auto in = inDefinition(definition);
    std::vector<FurtherFault> further = furtherFaults(definition, culprit, _list.places());
    if (!further.empty()) _firstPlaces[in->offset] = culprit.place.begin;
    findings.push_back(
        findingOf(definition.error->rule, std::string(definition.error->message()), std::move(culprit), in));
    for (FurtherFault& fault : further) {
      findings.push_back(findingOf(fault.rule, std::move(fault.message), std::move(fault.culprit), in));
    }
  }

  void sort(std::vector<Finding>& findings) const {
    std::stable_sort(findings.begin(), findings.end(),
                     [this](const Finding& first, const Finding& second) { return orderOf(first) < orderOf(second); });
  }

 private:
  using InDefinition = std::shared_ptr<const Finding::InDefinition>;

  [[nodiscard]] Finding findingOf(QXDAORule rule, std::string message, Culprit culprit, const InDefinition& in) const {
    Finding finding = _list.findingAt(ruleOf(rule), culprit.place);
    finding.message = std::move(message);
    finding.help = std::move(culprit.help);
    finding.definition = in;
    return finding;
  }

  [[nodiscard]] std::size_t orderOf(const Finding& finding) const {
    const std::size_t place = finding.location.span.begin;
    if (finding.rule->severity != Severity::Error || !finding.definition) return place;
    const auto first = _firstPlaces.find(finding.definition->offset);
    return first == _firstPlaces.end() ? place : std::max(place, first->second);
  }

  const WarningList& _list;
  std::map<std::size_t, std::size_t> _firstPlaces;  // of definitions with several errors
};

// Null unless the definition is a select with results of that type.
const QXDAOMethod* selectOf(const Definition& definition, QXDAOSelectResultType type) {
  const auto* method = QXDAOElementCast<QXDAOMethod>(definition.element.get());
  return method && method->operation() == QXDAOOperationSelect && method->resultType() == type ? method : nullptr;
}

// The name of the map that a result is made through.
OptionalStringView mapOf(const Definition& definition) {
  const QXDAOMethod* select = selectOf(definition, QXDAOSelectResultTypeMappedObject);
  return select ? select->resultTypeName() : OptionalStringView();
}

// The name of a class that looks like that of a map: classes begin with a capital letter.
OptionalStringView possibleMapOf(const Definition& definition) {
  const QXDAOMethod* select = selectOf(definition, QXDAOSelectResultTypeObject);
  const OptionalStringView name = select ? select->resultTypeName() : OptionalStringView();
  return name && startsWithSmallLetter(*name) ? name : OptionalStringView();
}

// Where the result names its map or class.
Span placeOfResult(const Definition& definition, const Places& places) {
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
  ErrorList errors(list);
  for (const Definition& definition : definitions) {
    if (definition.error) errors.add(definition, findings);
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
  errors.sort(findings);
  return findings;
}

void SetCheck::addReferences(const std::vector<Definition>& definitions, WarningList& list,
                             Suppressions& suppressions) {
  for (const Definition& definition : definitions) {
    if (const OptionalStringView map = mapOf(definition); map && _selection.wants(ruleOf(Warning::UndefinedMap))) {
      addReference(definition, *map, list, suppressions).finding.message =
          "no map has the name '" + std::string(*map) + "'";
    }
    if (const OptionalStringView name = possibleMapOf(definition)) {
      MapReference& reference = addReference(definition, *name, list, suppressions, Warning::DoubtfulValue);
      reference.finding.message = quoted(*name) + " is read as a class, and a map has this name";
      reference.finding.help = "did you mean ':" + std::string(*name) + "'?";
    }
  }
}

SetCheck::MapReference& SetCheck::addReference(const Definition& definition, std::string_view map, WarningList& list,
                                               Suppressions& suppressions, Warning warning) {
  MapReference& reference = _references.emplace_back();
  reference.map = map;
  reference.warning = warning;
  list.setDefinition(definition);
  list.add(warning, definition.xml, placeOfResult(definition, list.places()), {});
  FoundWarning& found = list.warnings().back();
  const Suppression* earlier = suppressions.find(found);
  const bool isUsed = earlier && earlier->used;
  if (const Suppression* suppression = suppressions.use(found)) {
    reference.suppressed = true;
    if (!isUsed) reference.unusedSuppression = unusedSuppression(*suppression, list);
  }
  reference.finding = std::move(found.finding);
  return reference;
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

bool SetCheck::isFaulty(const MapReference& reference) const {
  const bool defined = _names.hasMap(reference.map);
  return reference.warning == Warning::UndefinedMap ? !defined : defined && !_names.hasClass(reference.map);
}

std::vector<Finding> SetCheck::finish() {
  std::vector<Finding> findings;
  if (!_complete) return findings;
  const std::vector<std::string_view> maps = _names.mapNames();
  for (MapReference& reference : _references) {
    const bool faulty = isFaulty(reference);
    if (faulty && !reference.suppressed) {
      if (reference.finding.help.empty() && findings.size() < maxHints)
        reference.finding.help = didYouMean(reference.map, maps);
      report(std::move(reference.finding), findings);
    } else if (!faulty && reference.unusedSuppression) {
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
