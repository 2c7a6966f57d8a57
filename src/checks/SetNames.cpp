#include "checks/SetNames.h"

#include <bit>
#include <cstdint>

#include "korvex/Definition.h"
#include "korvex/Keywords.h"
#include "korvex/OptionalString.h"
#include "korvex/QXDAOElement.h"
#include "korvex/QXDAOMethod.h"
#include "korvex/XMLNode.h"
#include "platform/Strings.h"
#include "platform/Tables.h"

namespace korvex {

namespace {

struct NamedKind {
  QXDAOElementKind kind;
  std::string_view message;
  Warning warning = Warning::DuplicateName;
};

// Methods share their names, whatever they do.
constexpr std::array<NamedKind, 5> namedKinds = {{
    {QXDAOElementKindMethod, "another method has the name '%@'"},
    {QXDAOElementKindMap, "another map has the name '%@'"},
    {QXDAOElementKindSqlBlock, "another sql block has the name '%@'"},
    {QXDAOElementKindConst, "another constant has the name '%@'"},
    {QXDAOElementKindMethod, "another upgrade leads to this version", Warning::DuplicateVersion},
}};
constexpr std::size_t kindOfUpgrades = namedKinds.size() - 1;

// Null unless the definition is an upgrade.
const QXDAOMethod* upgradeOf(const Definition& definition) {
  const auto* method = QXDAOElementCast<QXDAOMethod>(definition.element.get());
  return method && method->operation() == QXDAOOperationUpgrade ? method : nullptr;
}

// The same text for all spellings of a number.
std::string textOfVersion(double version) { return std::to_string(std::bit_cast<std::uint64_t>(version + 0.0)); }

Span placeOfName(const Definition& definition, const Places& places) {
  if (upgradeOf(definition)) return places.valueOf(definition.xml, C_TO_VERSION);
  if (definition.tag() != C_CONST) return places.valueOf(definition.xml, C_ID);
  return places.nameOf(definition.xml, *definition.element->name());
}

}  // namespace

void SetNames::add(const std::vector<Definition>& definitions, WarningList& list) {
  for (const Definition& definition : definitions) {
    if (definition.tag() == C_MAP) addMap(definition.xml);
    if (definition.error) addRefused(definition.xml);
    if (const std::optional<Name> name = nameOf(definition)) addNamed(*name, definition, list);
  }
}

void SetNames::addMap(const XMLNode& map) {
  _maps.emplace(map.valueOfAttribute(C_ID).value_or(std::string_view()));
  _classes.emplace(map.valueOfAttribute(C_RESULT).value_or(std::string_view()));
}

// The name is an attribute's value, or of a constant an attribute's name.
void SetNames::addRefused(const XMLNode& definition) {
  if (const OptionalStringView id = definition.valueOfAttribute(C_ID)) _refused.emplace(*id);
  if (definition.name() != C_CONST) return;
  for (const XMLAttribute& attribute : definition.attributes()) _refused.emplace(*attribute.name());
}

std::optional<SetNames::Name> SetNames::nameOf(const Definition& definition) {
  if (const QXDAOMethod* upgrade = upgradeOf(definition))
    return Name{kindOfUpgrades, textOfVersion(upgrade->toVersion())};
  if (!definition.element || !definition.element->name()) return std::nullopt;
  const auto* row = rowWith(namedKinds, &NamedKind::kind, definition.element->kind());
  if (!row) return std::nullopt;
  return Name{static_cast<std::size_t>(row - namedKinds.data()), std::string(*definition.element->name())};
}

Warning SetNames::warningAbout(const Name& name) { return namedKinds[name.kind].warning; }

bool SetNames::isRepeated(const Name& name) const {
  return _repeated[name.kind].contains(name.name) || _refused.contains(name.name);
}

void SetNames::addNamed(const Name& name, const Definition& definition, WarningList& list) {
  const Span begin{definition.xml.offset(), definition.xml.offset()};
  const auto [first, isNew] = _first[name.kind].try_emplace(name.name, list.locationOf(begin));
  if (isNew) return;
  _repeated[name.kind].insert(name.name);
  list.setDefinition(definition);
  Finding& finding = list.add(warningAbout(name), definition.xml, placeOfName(definition, list.places()),
                              filledFormat(namedKinds[name.kind].message, name.name));
  finding.related.push_back({first->second, "the first one is here"});
}

std::vector<std::string_view> SetNames::mapNames() const { return {_maps.begin(), _maps.end()}; }

}  // namespace korvex
