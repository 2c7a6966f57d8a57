#include "tool/Excerpt.h"

#include <algorithm>

#include "tool/VisibleText.h"

namespace korvex {
namespace {

// All in characters. A longer line is cut, with some context to the left of the caret.
constexpr std::size_t maxExcerptWidth = 100;
constexpr std::size_t maxCaret = 80;
constexpr std::size_t keptBeforeCaret = 40;

constexpr std::string_view ellipsis = "…";

std::string_view firstCharacters(std::string_view text, std::size_t count) {
  return text.substr(0, text.size() - withoutCharacters(text, count).size());
}

std::string_view lastCharacters(std::string_view text, std::size_t count) {
  std::size_t begin = text.size();
  for (; begin > 0 && count > 0; --count) begin = startOfCharacterBefore(text, begin);
  return text.substr(begin);
}

// The text with its tabs unchanged.
std::string visibleWithTabs(std::string_view text) {
  std::string result;
  for (std::size_t tab = text.find('\t'); tab != std::string_view::npos; tab = text.find('\t')) {
    result += visibleText(text.substr(0, tab)) + '\t';
    text.remove_prefix(tab + 1);
  }
  return result + visibleText(text);
}

// White space as wide as the printed text.
std::string paddingFor(std::string_view printed) {
  std::string padding;
  for (; !printed.empty(); printed = withoutCharacters(printed, 1)) {
    if (printed[0] == '\t') {
      padding += '\t';
    } else {
      padding.append(columnsOf(firstCharacter(printed)), ' ');
    }
  }
  return padding;
}

}  // namespace

Excerpt excerptOf(const SourceText& source, std::size_t offset) {
  const XMLPosition position = source.position(offset);
  const std::string_view line = source.line(position.line);
  const auto lineStart = static_cast<std::size_t>(line.data() - source.text().data());
  const std::size_t caret = std::min(offset - lineStart, line.size());
  const bool fits = withoutCharacters(line, maxExcerptWidth).empty();
  const bool cut = !fits && position.column - 1 > maxCaret;
  const std::string_view beforeCaret =
      cut ? lastCharacters(line.substr(0, caret), keptBeforeCaret) : line.substr(0, caret);
  const std::string_view kept = line.substr(caret - beforeCaret.size());
  const std::string_view shown = firstCharacters(kept, maxExcerptWidth);

  const std::string start = std::string(cut ? ellipsis : "") + visibleWithTabs(beforeCaret);
  const std::string end = visibleWithTabs(shown.substr(beforeCaret.size()));
  return {start + end + std::string(shown.size() < kept.size() ? ellipsis : ""), paddingFor(start) + '^'};
}

}  // namespace korvex
