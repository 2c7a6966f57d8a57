#include "checks/WarningList.h"

#include "korvex/Definition.h"
#include "korvex/Keywords.h"
#include "korvex/XMLNode.h"

namespace korvex {

Finding::InDefinition inDefinition(const Definition& definition) {
  return {std::string(definition.tag()), ownedString(definition.xml.valueOfAttribute(C_ID)),
          definition.position().line};
}

Finding& WarningList::add(Warning warning, const XMLNode& element, Span place, std::string message) {
  _warnings.push_back({findingAt(ruleOf(warning), place), _places.offsetOf(element)});
  Finding& finding = _warnings.back().finding;
  finding.message = std::move(message);
  if (_definition) finding.definition = inDefinition(*_definition);
  return finding;
}

Finding WarningList::findingAt(const Rule& rule, Span place) const {
  Finding finding;
  finding.rule = &rule;
  finding.severity = rule.severity;
  finding.path = _path;
  finding.position = _places.source().position(place.begin);
  finding.end = _places.source().position(place.end);
  return finding;
}

Related WarningList::relatedAt(Span place, std::string message) const {
  return {_path, _places.source().position(place.begin), std::move(message)};
}

}  // namespace korvex
