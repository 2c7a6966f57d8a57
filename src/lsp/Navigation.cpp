#include "lsp/Navigation.h"

#include <functional>
#include <set>

namespace korvex::lsp {

namespace {

// Null where no map is named.
const MapName* mapNameAt(const MarkedDocument& document, const Position& position) {
  const std::size_t offset = document.text().offsetOf(position);
  for (const MapName& named : document.mapNames()) {
    if (offset + 1 >= named.span.begin && offset <= named.span.end) return &named;  // the colon is part of it
  }
  return nullptr;
}

template <typename Predicate>
Json locationsOf(const Workspace& workspace, Predicate matches) {
  Json locations = Json::array();
  workspace.forEachMapName([&](const std::string& uri, const MapName& named) {
    if (matches(named)) locations.push_back({{"uri", uri}, {"range", jsonOf(named.range)}});
  });
  return locations;
}

}  // namespace

std::vector<std::string> mapNames(const Workspace& workspace) {
  std::vector<std::string> names;
  std::set<std::string, std::less<>> seen;
  workspace.forEachMapName([&](const std::string& /*uri*/, const MapName& named) {
    if (named.role != MapRole::Declaration || named.name.empty()) return;
    if (seen.insert(named.name).second) names.push_back(named.name);
  });
  return names;
}

Json definitionsOf(const MarkedDocument& document, const Position& position, const Workspace& workspace) {
  const MapName* target = mapNameAt(document, position);
  if (!target) return nullptr;
  return locationsOf(workspace, [target](const MapName& named) {
    return named.role == MapRole::Declaration && named.name == target->name;
  });
}

Json referencesTo(const MarkedDocument& document, const Position& position, bool withDeclaration,
                  const Workspace& workspace) {
  const MapName* target = mapNameAt(document, position);
  if (!target) return nullptr;
  return locationsOf(workspace, [&](const MapName& named) {
    return named.name == target->name && (withDeclaration || named.role == MapRole::Reference);
  });
}

}  // namespace korvex::lsp
