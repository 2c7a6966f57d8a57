#include "checks/DoubledKeywords.h"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>

#include "checks/SqlSkipping.h"
#include "korvex/Keywords.h"
#include "platform/Strings.h"

namespace korvex {

namespace {

// Never valid twice in a row.
constexpr std::array<std::string_view, 6> keywordsOfClauses = {"where",  "set",      "values",
                                                               "having", "group by", "order by"};

// In lower case; empty when the element writes none of the keywords.
std::string writtenKeyword(const XMLNode& element) {
  const OptionalStringView tag = element.name();
  const bool fixed = tag == C_WHERE || tag == C_SET;
  if (!fixed && tag != C_TRIM && tag != C_FORMAT) return {};
  const std::string_view written = fixed ? *tag : element.valueOfAttribute(C_PREFIX).value_or(std::string_view());
  std::string keyword = asciiLowerCase(spaceNewLineTabBothEndsTrimmed(written));
  return std::find(keywordsOfClauses.begin(), keywordsOfClauses.end(), keyword) == keywordsOfClauses.end()
             ? std::string()
             : keyword;
}

bool isCodeAt(std::string_view sql, std::size_t offset) {
  SqlStretches stretches(sql);
  std::size_t at = 0;
  while (at < offset) at = stretches.at(at).end;
  return at == offset;
}

// Whether SQL ends with a keyword, which stands alone or behind white space or a parenthesis.
bool endsWithKeyword(std::string_view sql, std::string_view keyword) {
  constexpr std::string_view before = " \t\r\n)";
  const std::string_view text = spaceNewLineTabBothEndsTrimmed(sql);
  if (text.size() < keyword.size()) return false;
  const std::size_t begin = text.size() - keyword.size();
  if (asciiLowerCase(text.substr(begin)) != keyword) return false;
  if (begin > 0 && before.find(text[begin - 1]) == std::string_view::npos) return false;
  return isCodeAt(text, begin);
}

void checkKeyword(const XMLNode& element, std::string_view textInFront, WarningList& list) {
  const std::string keyword = writtenKeyword(element);
  if (keyword.empty() || !endsWithKeyword(textInFront, keyword)) return;
  list.add(Warning::DoubledKeyword, element, list.places().spanAt(list.places().offsetOf(element)),
           "the text in front ends with " + quoted(keyword) + ", which " + quoted(*element.name()) + " writes, too")
      .help = "remove it from the text";
}

}  // namespace

void findDoubledKeywords(const XMLNode& parent, WarningList& list) {
  std::string_view textInFront;
  for (const XMLNode& child : parent.children()) {
    if (child.kind() == XMLNodeKind::Text) textInFront = child.text().value_or(std::string_view());
    if (child.kind() != XMLNodeKind::Element) continue;
    checkKeyword(child, textInFront, list);
    textInFront = {};
  }
}

}  // namespace korvex
