#include "lsp/MapNames.h"

#include <optional>
#include <string_view>

#include "dao/methods/ResultSpelling.h"
#include "korvex/Keywords.h"
#include "korvex/QXDAOElement.h"

namespace korvex::lsp {

namespace {

// The name of the map that a result names; its value begins at `begin`.
std::optional<Span> nameInResult(std::string_view result, std::size_t begin) {
  const SpelledResult spelled = readResult(result);
  if (spelled.type != QXDAOSelectResultTypeMappedObject || spelled.name.empty()) return std::nullopt;
  const std::size_t nameBegin = begin + static_cast<std::size_t>(spelled.name.data() - result.data());
  return Span{nameBegin, nameBegin + spelled.name.size()};
}

}  // namespace

std::vector<MapName> mapNamesIn(const TextDocument& text, const Markup& markup) {
  std::vector<MapName> names;
  const auto add = [&](MapRole role, const std::optional<Span>& span) {
    if (span) names.push_back({role, std::string(markup.textOf(*span)), *span, text.positionsOf(*span)});
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
