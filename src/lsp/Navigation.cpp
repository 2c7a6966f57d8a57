#include "lsp/Navigation.h"

#include <functional>
#include <set>

namespace korvex::lsp {

namespace {

// Null where no map is named.
const MapName* mapNameAt(const MarkedDocument& document, const Position& position) {
  const std::size_t offset = document.text().offsetOf(position);
  for (const MapName& named : document.mapNames()) {
    if (offset + 1 >= named.span.begin && offset <= named.span.end) return &named;  // the colon counts
  }
  return nullptr;
}

template <typename Wanted>
Json locationsOf(const Workspace& workspace, Wanted wanted) {
  Json locations = Json::array();
  workspace.forEachMapName([&](const std::string& uri, const MapName& named) {
    if (wanted(named)) locations.push_back({{"uri", uri}, {"range", jsonOf(named.range)}});
  });
  return locations;
}

}  // namespace

std::vector<std::string> mapNames(const Workspace& workspace) {
  std::vector<std::string> names;
  std::set<std::string, std::less<>> taken;
  workspace.forEachMapName([&](const std::string& /*uri*/, const MapName& named) {
    if (named.role != MapRole::Declaration || named.name.empty()) return;
    if (taken.insert(named.name).second) names.push_back(named.name);
  });
  return names;
}

Json definitionsOf(const MarkedDocument& document, const Position& position, const Workspace& workspace) {
  const MapName* meant = mapNameAt(document, position);
  if (!meant) return nullptr;
  return locationsOf(workspace, [meant](const MapName& named) {
    return named.role == MapRole::Declaration && named.name == meant->name;
  });
}

Json referencesTo(const MarkedDocument& document, const Position& position, bool withDeclaration,
                  const Workspace& workspace) {
  const MapName* meant = mapNameAt(document, position);
  if (!meant) return nullptr;
  return locationsOf(workspace, [&](const MapName& named) {
    return named.name == meant->name && (withDeclaration || named.role == MapRole::Reference);
  });
}

}  // namespace korvex::lsp
