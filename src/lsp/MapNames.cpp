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

// The value of the first attribute of that name.
std::optional<Span> valueNamed(const Markup& markup, const MarkupElement& element, std::string_view name) {
  for (const MarkupAttribute& attribute : element.attributes) {
    if (attribute.value && markup.textOf(attribute.name) == name) return attribute.value;
  }
  return std::nullopt;
}

}  // namespace

std::vector<MapName> mapNamesIn(const TextDocument& text, const Markup& markup) {
  std::vector<MapName> names;
  const auto add = [&](MapRole role, const std::optional<Span>& span) {
    if (span) names.push_back({role, std::string(markup.textOf(*span)), *span, text.placesOf(*span)});
  };
  for (const MarkupElement& element : markup.elements()) {
    const std::string_view tag = markup.nameOf(element);
    if (tag == C_MAP) add(MapRole::Declaration, valueNamed(markup, element, C_ID));
    if (tag != C_SELECT) continue;
    if (const auto result = valueNamed(markup, element, C_RESULT)) {
      add(MapRole::Reference, nameInResult(markup.textOf(*result), result->begin));
    }
  }
  return names;
}

}  // namespace korvex::lsp
