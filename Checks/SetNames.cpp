#include "Checks/SetNames.h"

#include <algorithm>

#include "Checks/RuleNames.h"

namespace korvex {

namespace {

struct NamedKind {
  QXDAOElementKind kind;
  std::string_view message;
};

// Methods share their names, whatever they do.
constexpr std::array<NamedKind, 4> namedKinds = {{
    {QXDAOElementKindMethod, "another method has the name '%@'"},
    {QXDAOElementKindMap, "another map has the name '%@'"},
    {QXDAOElementKindSqlBlock, "another sql block has the name '%@'"},
    {QXDAOElementKindConst, "another constant has the name '%@'"},
}};

Span placeOfName(const Definition& definition, const Places& places) {
  if (definition.tag() != C_CONST) return places.valueOf(definition.xml, C_ID);
  return places.nameOf(definition.xml, *definition.element->name());
}

}  // namespace

void SetNames::add(const std::vector<Definition>& definitions, WarningList& list) {
  _documents.push_back(list.path());
  for (const Definition& definition : definitions) {
    if (definition.tag() == C_MAP) _maps.emplace(definition.xml.valueOfAttribute(C_ID).value_or(std::string_view()));
    if (!definition.element || !definition.element->name()) continue;
    for (std::size_t kind = 0; kind < namedKinds.size(); ++kind) {
      if (namedKinds[kind].kind == definition.element->kind()) addNamed(kind, definition, list);
    }
  }
}

void SetNames::addNamed(std::size_t kind, const Definition& definition, WarningList& list) {
  const std::string_view name = *definition.element->name();
  const auto [first, isNew] =
      _first[kind].try_emplace(std::string(name), Place{_documents.size() - 1, definition.position()});
  if (isNew) return;
  list.setDefinition(definition);
  Finding& finding = list.add(RuleNames::duplicateName, definition.xml, placeOfName(definition, list.places()),
                              filledFormat(namedKinds[kind].message, name));
  finding.related.push_back({_documents[first->second.document], first->second.position, "the first one is here"});
}

std::vector<std::string_view> SetNames::mapNames() const {
  std::vector<std::string_view> names(_maps.begin(), _maps.end());
  std::sort(names.begin(), names.end());
  return names;
}

}  // namespace korvex
