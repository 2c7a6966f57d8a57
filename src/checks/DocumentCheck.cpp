#include "checks/DocumentCheck.h"

#include <algorithm>
#include <tuple>

#include "checks/DocumentWarnings.h"
#include "checks/ErrorHints.h"
#include "checks/NearMiss.h"
#include "checks/Places.h"
#include "checks/Silences.h"
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

// Looking for a similar name takes time in proportion to all of them.
constexpr std::size_t mostHints = 100;

// At the node at fault.
Finding errorOf(const Definition& definition, const WarningList& list) {
  const QXDAOError& error = *definition.error;
  const std::size_t begin = list.places().offsetOf(error.origin.position() ? error.origin : definition.xml);
  Finding finding = list.findingAt(ruleOf(error.rule), list.places().spanAt(begin));
  finding.message = error.message();
  finding.help = hintAbout(error.rule, error.origin ? error.origin : definition.xml);
  finding.definition = inDefinition(definition);
  return finding;
}

bool isBefore(const XMLPosition& first, const XMLPosition& second) {
  return std::tie(first.line, first.column) < std::tie(second.line, second.column);
}

bool standsBefore(const Finding& first, const Finding& second) { return isBefore(first.position, second.position); }

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

// Definitions by what is inside them, for places further and further on.
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

Finding unusedSilence(const Silence& silence, const WarningList& list) {
  Finding finding = list.findingAt(ruleOf(Warning::UnusedSilence), silence.comment);
  finding.message = "there is no warning '" + std::string(silence.name) + "' to silence here";
  return finding;
}

Finding unknownWarning(const Silence& silence, const WarningList& list) {
  Finding finding = list.findingAt(ruleOf(Warning::UnknownWarning), silence.comment);
  finding.message = "no warning has the name '" + std::string(silence.name) + "'";
  finding.help = didYouMean(silence.name, warningNames());
  return finding;
}

}  // namespace

Finding findingOf(const std::string& path, const DocumentError& error, const SourceText* source) {
  static const SourceText noSource{""};
  const Places places(source ? *source : noSource);
  const WarningList list(places, path);
  Finding finding = list.findingAt(ruleOf(error.kind()), places.spanAt(places.source().offset(error.position)));
  finding.position = error.position;
  // Of a text that cannot be read, the parser alone knows the place.
  if (isBefore(finding.end, finding.position)) finding.end = finding.position;
  finding.message = error.message;
  return finding;
}

std::vector<Finding> SetCheck::check(const std::string& path, const Document& document,
                                     const std::vector<Definition>& definitions) {
  const Places places(document.source());
  WarningList list(places, path);
  std::vector<Finding> findings;
  for (const Definition& definition : definitions) {
    if (definition.error) findings.push_back(errorOf(definition, list));
    findWarningsIn(definition, list);
  }
  _names.add(definitions, list);
  Silences silences(places);
  for (FoundWarning& warning : list.warnings()) {
    if (!silences.use(warning)) hand(std::move(warning.finding), findings);
  }
  list.warnings().clear();
  addReferences(definitions, list, silences);
  handSilences(definitions, list, silences, findings);
  std::stable_sort(findings.begin(), findings.end(), standsBefore);
  return findings;
}

void SetCheck::addReferences(const std::vector<Definition>& definitions, WarningList& list, Silences& silences) {
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
    if (const Silence* silence = silences.use(warning)) {
      reference.silenced = true;
      reference.unusedSilence = unusedSilence(*silence, list);
    }
    reference.finding = std::move(warning.finding);
  }
}

void SetCheck::hand(Finding finding, std::vector<Finding>& findings) const {
  if (!_selection.wants(*finding.rule)) return;
  finding.severity = _selection.severityOf(*finding.rule);
  findings.push_back(std::move(finding));
}

// Whether a warning would be there that nobody wants is not asked.
void SetCheck::handSilences(const std::vector<Definition>& definitions, const WarningList& list,
                            const Silences& silences, std::vector<Finding>& findings) {
  DefinitionFinder finder(definitions, list.places());
  for (const Silence& silence : silences.all()) {
    if (!silence.rule) {
      hand(unknownWarning(silence, list), findings);
    } else if (!silence.used && _selection.wants(*silence.rule)) {
      handUnused(silence, finder.definitionAround(silence.element), list, findings);
    }
  }
}

// Not all warnings are given of a definition with an error, and a name may be repeated in a document to come.
void SetCheck::handUnused(const Silence& silence, const Definition* definition, const WarningList& list,
                          std::vector<Finding>& findings) {
  if (definition && definition->error) return;
  const bool aboutName = silence.rule == &ruleOf(Warning::DuplicateName) && definition &&
                         list.places().offsetOf(definition->xml) == silence.element;
  std::optional<SetNames::Name> name = aboutName ? SetNames::nameOf(*definition) : std::nullopt;
  if (!name) {
    hand(unusedSilence(silence, list), findings);
  } else if (_whole) {
    _nameSilences.push_back({std::move(*name), unusedSilence(silence, list)});
  }
}

std::vector<Finding> SetCheck::finish() {
  std::vector<Finding> findings;
  if (!_complete) return findings;
  const std::vector<std::string_view> maps = _names.mapNames();
  for (MapReference& reference : _references) {
    const bool defined = _names.hasMap(reference.map);
    if (!defined && !reference.silenced) {
      if (findings.size() < mostHints) reference.finding.help = didYouMean(reference.map, maps);
      hand(std::move(reference.finding), findings);
    } else if (defined && reference.silenced) {
      hand(std::move(*reference.unusedSilence), findings);
    }
  }
  for (NameSilence& silence : _nameSilences) {
    if (!_names.isRepeated(silence.name)) hand(std::move(silence.unused), findings);
  }
  return findings;
}

std::vector<Finding> findingsOf(const std::string& path, const Document& document,
                                const std::vector<Definition>& definitions) {
  return SetCheck().check(path, document, definitions);
}

}  // namespace korvex
