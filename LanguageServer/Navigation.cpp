#include "LanguageServer/Navigation.h"

#include <functional>
#include <optional>
#include <set>

#include "DAO/QXDAOElement.h"

namespace korvex::lsp {

namespace {

enum class MapRole { Declaration, Reference };

// A place in a document where a map is named.
struct MapName {
  MapRole role;
  Span span;  // the name alone, without the colon and brackets around it
  std::string_view name;
};

// The name in ":name" or "[:name]".
std::optional<Span> nameInResult(std::string_view result, std::size_t begin) {
  const bool list = result.size() > 1 && result.front() == '[' && result.back() == ']';
  const std::size_t skipped = list ? 2 : 1;
  if (result.size() <= skipped + (list ? 1 : 0) || result[skipped - 1] != ':') return std::nullopt;
  return Span{begin + skipped, begin + result.size() - (list ? 1 : 0)};
}

std::optional<MapName> mapNameIn(const Markup& markup, const MarkupElement& element) {
  const std::string_view tag = markup.nameOf(element);
  const std::string_view wanted = tag == C_MAP ? C_ID : C_RESULT;
  if (tag != C_MAP && tag != C_SELECT) return std::nullopt;
  for (const MarkupAttribute& attribute : element.attributes) {
    if (!attribute.value || markup.textOf(attribute.name) != wanted) continue;
    if (tag == C_MAP) return MapName{MapRole::Declaration, *attribute.value, markup.textOf(*attribute.value)};
    const auto span = nameInResult(markup.textOf(*attribute.value), attribute.value->begin);
    if (span) return MapName{MapRole::Reference, *span, markup.textOf(*span)};
    return std::nullopt;
  }
  return std::nullopt;
}

std::optional<MapName> mapNameAt(const MarkedDocument& document, const Position& position) {
  const std::size_t offset = document.text().offsetOf(position);
  const MarkupElement* element = document.markup().startTagAt(offset);
  if (!element) return std::nullopt;
  const auto named = mapNameIn(document.markup(), *element);
  const bool touched = named && offset + 1 >= named->span.begin && offset <= named->span.end;  // the colon counts
  return touched ? named : std::nullopt;
}

template <typename Visit>
void forEachMapName(const Workspace& workspace, Visit visit) {
  workspace.forEach([&visit](const MarkedDocument& document) {
    for (const MarkupElement& element : document.markup().elements()) {
      if (const auto named = mapNameIn(document.markup(), element)) visit(document, *named);
    }
  });
}

template <typename Wanted>
Json locationsOf(const Workspace& workspace, Wanted wanted) {
  Json locations = Json::array();
  forEachMapName(workspace, [&](const MarkedDocument& document, const MapName& named) {
    if (!wanted(named)) return;
    locations.push_back({{"uri", document.text().uri()}, {"range", document.text().rangeOf(named.span)}});
  });
  return locations;
}

}  // namespace

std::vector<std::string> mapNames(const Workspace& workspace) {
  std::vector<std::string> names;
  std::set<std::string, std::less<>> taken;
  forEachMapName(workspace, [&](const MarkedDocument& /*document*/, const MapName& named) {
    if (named.role != MapRole::Declaration || named.name.empty()) return;
    if (taken.emplace(named.name).second) names.emplace_back(named.name);
  });
  return names;
}

Json definitionsOf(const MarkedDocument& document, const Position& position, const Workspace& workspace) {
  const auto meant = mapNameAt(document, position);
  if (!meant) return nullptr;
  return locationsOf(workspace, [&meant](const MapName& named) {
    return named.role == MapRole::Declaration && named.name == meant->name;
  });
}

Json referencesTo(const MarkedDocument& document, const Position& position, bool withDeclaration,
                  const Workspace& workspace) {
  const auto meant = mapNameAt(document, position);
  if (!meant) return nullptr;
  return locationsOf(workspace, [&](const MapName& named) {
    return named.name == meant->name && (withDeclaration || named.role == MapRole::Reference);
  });
}

}  // namespace korvex::lsp
