#include "checks/DoubtfulValues.h"

#include <algorithm>
#include <array>

#include "checks/NearMiss.h"
#include "korvex/Keywords.h"
#include "korvex/OptionalString.h"
#include "korvex/QXDAOElement.h"
#include "platform/Strings.h"
#include "platform/Tables.h"

namespace korvex {

namespace {

bool isOneOf(std::span<const std::string_view> words, std::string_view word) {
  return std::find(words.begin(), words.end(), word) != words.end();
}

// ---------------------------------------------------------------------------------------------
// Yes and no

bool isZero(std::string_view word) { return word.find_first_not_of("+-0., ") == std::string_view::npos; }

// The words for "no" and "false" in many languages begin with these letters.
bool saysNo(std::string_view value) {
  const std::string lowered = asciiLowerCase(*spaceNewLineTabBothEndsTrimmed(OptionalStringView(value)));
  const std::string_view word = lowered;
  return isZero(word) || word.starts_with('n') || word.starts_with('f') || word == "off" || word.starts_with("disable");
}

std::optional<Doubt> doubtAboutYes(std::string_view value, bool readAsYes, std::string_view help) {
  if (readAsYes || saysNo(value)) return std::nullopt;
  return Doubt{quoted(value) + " is read as no", std::string(help)};
}

std::optional<Doubt> doubtAboutYesOrNo(const AttributeEntry& /*attribute*/, std::string_view value) {
  return doubtAboutYes(value, booleanAttributeValue(value), "write 'true' or 'false'");
}

// ---------------------------------------------------------------------------------------------
// One of several words

std::optional<Doubt> doubtAboutWord(const AttributeEntry& attribute, std::string_view value) {
  const bool known = isOneOf(attribute.words, value);
  if (attribute.words.size() == 1 && attribute.words[0] == C_TRUE) {
    return doubtAboutYes(value, known, "only 'true' is read as yes");
  }
  if (known || saysNo(value)) return std::nullopt;
  std::string meant = didYouMean(value, attribute.words);
  for (const std::string_view word : meant.empty() ? attribute.words : decltype(attribute.words)()) {
    meant += (meant.empty() ? "write " : " or ") + quoted(word);
  }
  return Doubt{quoted(value) + " means nothing to " + quoted(attribute.name), std::move(meant)};
}

// ---------------------------------------------------------------------------------------------
// Results

// Names of the plain types in other languages; capitalised, some of them may be classes.
struct OtherName {
  std::string_view name;
  std::string_view type;
  bool onlySmall = true;
};

constexpr std::array<OtherName, 12> otherNames = {{
    {"integer", "int", false},
    {"boolean", "bool", false},
    {"long", "long long"},
    {"longlong", "long long"},
    {"int64", "long long"},
    {"float", "double"},
    {"real", "double"},
    {"text", "string"},
    {"str", "string"},
    {"blob", "binary"},
    {"bytes", "binary"},
    {"dictionary", "{}"},
}};

// The plain type that an unknown word probably means; empty if the word may be a class name.
std::string_view typeMeantBy(std::string_view word, std::span<const std::string_view> types) {
  constexpr std::size_t shortestToGuess = 5;
  if (isOneOf(types, word)) return {};
  const std::string_view trimmed = *spaceNewLineTabBothEndsTrimmed(OptionalStringView(word));
  const std::string lowered = asciiLowerCase(trimmed);
  const auto* same = std::find(types.data(), types.data() + types.size(), std::string_view(lowered));
  if (same != types.data() + types.size()) return *same;
  const bool small = startsWithSmallLetter(trimmed);
  const OtherName* other = rowWith(otherNames, &OtherName::name, std::string_view(lowered));
  if (other && (small || !other->onlySmall)) return other->type;
  return small && trimmed.size() >= shortestToGuess ? nearestOf(trimmed, types) : std::string_view();
}

std::string_view withoutBrackets(std::string_view result) {
  if (result.starts_with('[')) result.remove_prefix(1);
  if (result.ends_with(']')) result.remove_suffix(1);
  return result;
}

std::optional<Doubt> doubtAboutResult(const AttributeEntry& attribute, std::string_view value) {
  const std::string_view word = withoutBrackets(value);
  if (value.starts_with('[') != value.ends_with(']')) {
    return Doubt{quoted(value) + " is not a list: one of its brackets is missing",
                 "did you mean '[" + std::string(word) + "]'?"};
  }
  const std::string_view meant = typeMeantBy(word, attribute.words);
  if (meant.empty()) return std::nullopt;
  return Doubt{quoted(word) + " is read as a class", "did you mean " + quoted(meant) + "?"};
}

struct DoubtRule {
  ValueKind kind;
  std::optional<Doubt> (*doubt)(const AttributeEntry& attribute, std::string_view value);
};

constexpr std::array<DoubtRule, 3> doubtRules = {{
    {ValueKind::YesOrNo, doubtAboutYesOrNo},
    {ValueKind::OneOf, doubtAboutWord},
    {ValueKind::Result, doubtAboutResult},
}};

}  // namespace

std::optional<Doubt> doubtAbout(const AttributeEntry& attribute, std::string_view value) {
  const DoubtRule* row = value.empty() ? nullptr : rowWith(doubtRules, &DoubtRule::kind, attribute.kind);
  return row ? row->doubt(attribute, value) : std::nullopt;
}

}  // namespace korvex
