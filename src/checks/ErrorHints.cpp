#include "checks/ErrorHints.h"

#include <algorithm>
#include <array>
#include <vector>

#include "checks/NearMiss.h"
#include "korvex/Keywords.h"
#include "korvex/QXDAOElement.h"
#include "language/Vocabulary.h"
#include "platform/Tables.h"

namespace korvex {

namespace {

std::string_view tagOf(const XMLNode& node) { return node.name().value_or(std::string_view()); }

std::string hintAtDefinition(const XMLNode& node) { return didYouMean(tagOf(node), definitionTags); }

bool isFragment(const ElementEntry& element) { return element.tag != C_RESULT && !isDefinitionTag(element.tag); }

// A known element stands in the wrong place; its tag is no typing error.
std::string hintAtElement(const XMLNode& node) {
  if (vocabularyEntryOf(tagOf(node))) return {};
  std::vector<std::string_view> tags;
  for (const ElementEntry& element : vocabulary()) {
    if (isFragment(element)) tags.push_back(element.tag);
  }
  return didYouMean(tagOf(node), tags);
}

bool isNeeded(const ElementEntry& element, const AttributeEntry& attribute) {
  const auto& needed = element.neededAttributes;
  return attribute.required || std::find(needed.begin(), needed.end(), attribute.name) != needed.end();
}

// The missing attributes for which the element is rejected.
std::vector<std::string_view> missingAttributes(const XMLNode& node, const ElementEntry& element) {
  std::vector<std::string_view> missing;
  for (const AttributeEntry& attribute : element.attributes) {
    if (!isEmpty(node.valueOfAttribute(attribute.name))) {
      if (element.attributeRule == AttributeRule::ExactlyOne) return {};
    } else if (element.attributeRule != AttributeRule::OthersIgnored || isNeeded(element, attribute)) {
      missing.push_back(attribute.name);
    }
  }
  return missing;
}

std::string hintAtAttributes(const XMLNode& node) {
  const ElementEntry* element = vocabularyEntryOf(tagOf(node));
  if (!element) return {};
  const std::vector<std::string_view> missing = missingAttributes(node, *element);
  for (const XMLAttribute& attribute : node.attributes()) {
    const std::string_view name = *attribute.name();
    if (attributeEntryOf(*element, name)) continue;
    const std::string meant = didYouMean(name, missing);
    if (meant.empty()) continue;
    return std::string("'").append(element->tag).append("' has no attribute '").append(name).append("'; ") + meant;
  }
  return {};
}

// A definition with an unknown tag and no name is reported as nameless.
std::string hintAtName(const XMLNode& node) {
  if (isDefinitionTag(tagOf(node))) return hintAtAttributes(node);
  const std::string meant = hintAtDefinition(node);
  return std::string("no definition is called '").append(tagOf(node)) + (meant.empty() ? "'" : "'; ") + meant;
}

struct HintRule {
  QXDAORule rule;
  std::string (*hint)(const XMLNode& node);
};

constexpr std::array<HintRule, 13> hintRules = {{
    {QXDAORule::MissingName, hintAtName},
    {QXDAORule::UnknownDefinition, hintAtDefinition},
    {QXDAORule::UnknownElement, hintAtElement},
    {QXDAORule::UpgradeFormat, hintAtAttributes},
    {QXDAORule::MissingResult, hintAtAttributes},
    {QXDAORule::ConditionFormat, hintAtAttributes},
    {QXDAORule::ForeachParameters, hintAtAttributes},
    {QXDAORule::FragmentFormat, hintAtAttributes},
    {QXDAORule::CryptFormat, hintAtAttributes},
    {QXDAORule::MissingMapResult, hintAtAttributes},
    {QXDAORule::MapFormat, hintAtAttributes},
    {QXDAORule::MissingPackColumn, hintAtAttributes},
    {QXDAORule::MissingPackProperties, hintAtAttributes},
}};

}  // namespace

std::string hintAbout(QXDAORule rule, const XMLNode& origin) {
  const HintRule* row = rowWith(hintRules, &HintRule::rule, rule);
  return row && origin.kind() == XMLNodeKind::Element ? row->hint(origin) : std::string();
}

}  // namespace korvex
