#include "lsp/MapNames.h"

#include <optional>
#include <string_view>

#include "korvex/Keywords.h"
#include "korvex/QXDAOElement.h"

namespace korvex::lsp {

namespace {

// The name in ":name" or "[:name]".
std::optional<Span> nameInResult(std::string_view result, std::size_t begin) {
  const bool list = result.size() > 1 && result.front() == '[' && result.back() == ']';
  const std::size_t skipped = list ? 2 : 1;
  if (result.size() <= skipped + (list ? 1 : 0) || result[skipped - 1] != ':') return std::nullopt;
  return Span{begin + skipped, begin + result.size() - (list ? 1 : 0)};
}

}  // namespace

std::vector<MapName> mapNamesIn(const TextDocument& text, const Markup& markup) {
  std::vector<MapName> names;
  const auto add = [&](MapRole role, const std::optional<Span>& span) {
    if (span) names.push_back({role, std::string(markup.textOf(*span)), *span, text.placesOf(*span)});
  };
  for (const MarkupElement& element : markup.elements()) {
    const std::string_view tag = markup.nameOf(element);
    if (tag == C_MAP) {
      if (const MarkupAttribute* id = markup.attributeOf(element, C_ID)) add(MapRole::Declaration, id->value);
    } else if (tag == C_SELECT) {
      if (const MarkupAttribute* result = markup.attributeOf(element, C_RESULT))
        add(MapRole::Reference, nameInResult(markup.textOf(*result->value), result->value->begin));
    }
  }
  return names;
}

}  // namespace korvex::lsp
