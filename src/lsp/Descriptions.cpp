#include "lsp/Descriptions.h"

#include <array>
#include <span>
#include <string_view>

#include "platform/Tables.h"

namespace korvex::lsp {

namespace {

struct RuleText {
  AttributeRule rule;
  std::string_view text;
};
constexpr std::array<RuleText, 4> ruleTexts = {{
    {AttributeRule::OthersIgnored, "Other attributes mean nothing."},
    {AttributeRule::NoOthers, "Other attributes are refused."},
    {AttributeRule::ExactlyOne, "Exactly one of them, and no other."},
    {AttributeRule::AnyOneName, "Exactly one attribute, of whatever name."},
}};

struct ContentText {
  Content content;
  std::string_view text;
};
constexpr std::array<ContentText, 5> contentTexts = {{
    {Content::Nothing, "Holds nothing, not even a comment."},
    {Content::Text, "Holds text."},
    {Content::Elements, "Holds"},
    {Content::TextAndElements, "Holds text,"},
    {Content::Ignored, "What stands inside means nothing."},
}};

struct KindText {
  ValueKind kind;
  std::string_view text;
};
constexpr std::array<KindText, 7> kindTexts = {{
    {ValueKind::Text, ""},
    {ValueKind::YesOrNo, "`true` or `false`"},
    {ValueKind::OneOf, ""},
    {ValueKind::Number, "a decimal number"},
    {ValueKind::Result, "the name of a class, or `:` and that of a map"},
    {ValueKind::Condition, "an expression"},
    {ValueKind::Names, "names, separated by commas"},
}};

std::string code(std::string_view text) { return std::string("`").append(text).append("`"); }

std::string codes(std::span<const std::string_view> words) {
  std::string list;
  for (const std::string_view word : words) list.append(list.empty() ? "" : ", ").append(code(word));
  return list;
}

std::string tag(std::string_view name) { return code(std::string("<").append(name).append(">")); }

std::string attributesOf(const ElementEntry& element) {
  std::string text;
  for (const AttributeEntry& attribute : element.attributes) {
    text.append("- ").append(code(attribute.name)).append(attribute.required ? " (required): " : ": ");
    text.append(attribute.meaning).append("\n");
  }
  if (!text.empty()) text += '\n';
  const bool none = element.attributes.empty() && element.attributeRule == AttributeRule::NoOthers;
  return text.append(none ? "No attributes." : rowWith(ruleTexts, &RuleText::rule, element.attributeRule)->text);
}

std::string contentOf(const ElementEntry& element) {
  std::string text(rowWith(contentTexts, &ContentText::content, element.content)->text);
  return element.children.empty() ? text : text + ' ' + codes(element.children) + '.';
}

std::string valuesOf(const AttributeEntry& attribute) {
  std::string values = codes(attribute.words);
  const std::string_view kind = rowWith(kindTexts, &KindText::kind, attribute.kind)->text;
  if (!values.empty() && !kind.empty()) values += ", or ";
  return values.append(kind);
}

}  // namespace

std::string descriptionOf(const ElementEntry& element) {
  std::string text = std::string("**").append(tag(element.tag)).append("**\n\n").append(element.meaning);
  return text.append("\n\n").append(attributesOf(element)).append("\n\n").append(contentOf(element));
}

std::string descriptionOf(const AttributeEntry& attribute, const ElementEntry& element) {
  std::string text = std::string("**").append(code(attribute.name)).append("** of ").append(tag(element.tag));
  if (attribute.required) text += ", required";
  text.append("\n\n").append(attribute.meaning);
  const std::string values = valuesOf(attribute);
  return values.empty() ? text : text + "\n\nValues: " + values + '.';
}

}  // namespace korvex::lsp
