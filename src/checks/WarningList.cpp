#include "checks/WarningList.h"

#include "korvex/Definition.h"
#include "korvex/Keywords.h"
#include "korvex/XMLNode.h"
#include "platform/Strings.h"

namespace korvex {

namespace {

// In bytes. A report repeats the name with each finding.
constexpr std::size_t maxNameInFinding = 256;

OptionalString shortenedName(OptionalStringView name) {
  if (!name || name->size() <= maxNameInFinding) return ownedString(name);
  std::size_t end = maxNameInFinding;
  while (end > 0 && continuesCharacter((*name)[end])) --end;
  return std::string(name->substr(0, end)).append("…");
}

}  // namespace

std::shared_ptr<const Finding::InDefinition> inDefinition(const Definition& definition) {
  return std::make_shared<const Finding::InDefinition>(Finding::InDefinition{
      std::string(definition.tag()), shortenedName(definition.xml.valueOfAttribute(C_ID)), definition.xml.offset()});
}

void WarningList::setDefinition(const Definition& definition) {
  _definition = &definition;
  _inDefinition = nullptr;
}

Finding& WarningList::add(Warning warning, const XMLNode& element, Span place, std::string message) {
  _warnings.push_back({findingAt(ruleOf(warning), place), _places.offsetOf(element)});
  Finding& finding = _warnings.back().finding;
  finding.message = std::move(message);
  if (_definition && !_inDefinition) _inDefinition = inDefinition(*_definition);
  finding.definition = _inDefinition;
  return finding;
}

Finding WarningList::findingAt(const Rule& rule, Span place) const {
  Finding finding;
  finding.rule = &rule;
  finding.severity = rule.severity;
  finding.location = locationOf(place);
  return finding;
}

}  // namespace korvex
