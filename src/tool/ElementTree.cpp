#include "tool/ElementTree.h"

#include <algorithm>
#include <initializer_list>
#include <ostream>

#include "dao/methods/ResultSpelling.h"
#include "korvex/Keywords.h"
#include "platform/Strings.h"
#include "tool/VisibleText.h"

namespace korvex {
namespace {

// -------------------------------------------------------------------------------------------
// Pieces of a headline

std::string valueText(const Json& value) {
  return value.is_string() ? visibleText(value.get_ref<const std::string&>()) : "";
}

std::string quotedValue(const Json& value) { return '"' + valueText(value) + '"'; }

std::string joinedValues(const Json& values, std::string (*write)(const Json&)) {
  std::string result;
  const char* separator = "";
  for (const Json& value : values) {
    result += separator + write(value);
    separator = ", ";
  }
  return result;
}

bool isDefault(const Json& value) { return value.is_null() || value == false || value == Json::array(); }

// The values that are not the default as " key="text"", " key=["a", "b"]" or " key" when true.
std::string optionTexts(const Json& element, std::initializer_list<const char*> keys) {
  std::string result;
  for (const char* key : keys) {
    const Json& value = element.at(key);
    if (isDefault(value)) continue;
    result += std::string(" ") + key;
    if (value.is_string()) result += '=' + quotedValue(value);
    if (value.is_array()) result += "=[" + joinedValues(value, quotedValue) + ']';
  }
  return result;
}

// The value's name in an enumeration constant, as the language spells it: "QXDAOOperationSelect" →
// "select".
std::string valueName(const Json& constant, std::string_view enumeration) {
  std::string name = valueText(constant).substr(enumeration.size());
  if (name[0] >= 'A' && name[0] <= 'Z') name[0] = static_cast<char>(name[0] - 'A' + 'a');
  return name;
}

// -------------------------------------------------------------------------------------------
// Headlines

std::string argumentText(const Json& argument) {
  const std::string mark = argument.at("notNull") == true ? "$" : "";
  return mark + valueText(argument.at("name"));
}

// As the attribute "result" spells it.
std::string resultText(const Json& method) {
  return resultSpelling(method.at("resultArrayed") == true,
                        method.at("resultType") == "QXDAOSelectResultTypeMappedObject",
                        valueText(method.at("resultTypeName")));
}

std::string foreachText(const Json& method) {
  if (method.at("foreach") == false) return "";
  return " foreach=\"" + valueText(method.at("foreachCollection")) + '.' + valueText(method.at("foreachItemName")) +
         '"' + (method.at("foreachResumable") == true ? " resumable" : "");
}

std::string upgradeHeadline(const Json& method) {
  return "upgrade to " + method.at("toVersion").dump() + optionTexts(method, {"steped", "tryBlock"});
}

std::string methodHeadline(const Json& method) {
  const std::string operation = valueName(method.at("operation"), "QXDAOOperation");
  if (operation == C_UPGRADE) return upgradeHeadline(method);
  return operation + ' ' + valueText(method.at("name")) + '(' + joinedValues(method.at("arguments"), argumentText) +
         ')' + (operation == C_SELECT ? " -> " + resultText(method) : "") +
         optionTexts(method, {"profile", "assignedTable", "steped", "tryBlock", "parallel"}) + foreachText(method);
}

std::string conditionHeadline(const Json& condition) {
  std::string tag = valueName(condition.at("type"), "QXDAOConditionType");
  if (condition.at("expression").is_null()) return tag;
  return tag + (condition.at("evaluateAsTrue") == true ? " true=" : " false=") +
         quotedValue(condition.at("expression"));
}

std::string trimHeadline(const Json& trim) {
  const std::string onVoid = valueName(trim.at("onVoid"), "QXDAOTrimOnVoidType");
  return "trim " + quotedValue(trim.at("operationName")) + optionTexts(trim, {"prefixOverrides", "suffixOverrides"}) +
         (onVoid == "none" ? "" : " onVoid=" + onVoid);
}

std::string foreachHeadline(const Json& foreach) {
  return "foreach " + valueText(foreach.at("item")) + " in " + valueText(foreach.at("collection")) +
         optionTexts(foreach, {"open", "separator", "close", "reverse"});
}

std::string formatHeadline(const Json& format) { return "format" + optionTexts(format, {"prefix", "pairs", "join"}); }
std::string sqlHeadline(const Json& block) { return "sql " + valueText(block.at("name")); }
std::string constHeadline(const Json& constant) { return "const " + valueText(constant.at("name")); }
std::string mapHeadline(const Json& map) {
  return "map " + valueText(map.at("name")) + " -> " + valueText(map.at("resultClass"));
}
std::string stepHeadline(const Json& step) { return "step" + optionTexts(step, {"resumable"}); }
std::string tryHeadline(const Json& /*block*/) { return "try"; }
std::string exceptHeadline(const Json& /*block*/) { return "except"; }
std::string chooseHeadline(const Json& /*choose*/) { return "choose"; }

std::string cryptHeadline(const Json& crypt) {
  return "crypt " + valueText(crypt.at("className")) + '.' + valueText(crypt.at("propertyName"));
}

std::string packHeadline(const Json& pack) {
  return "pack " + valueText(pack.at("column")) + " (" + joinedValues(pack.at("propertyList"), valueText) + ')' +
         optionTexts(pack, {"crypted"});
}

struct Headline {
  std::string_view className;
  std::string (*write)(const Json& element);
};
constexpr Headline headlines[] = {
    {"QXDAOForeach", foreachHeadline}, {"QXDAOKeyValueFormatter", formatHeadline},
    {"QXDAOSqlBlock", sqlHeadline},    {"QXDAOConst", constHeadline},
    {"QXDAOMap", mapHeadline},         {"QXDAOCryptProperty", cryptHeadline},
    {"QXDAOPack", packHeadline},       {"QXDAOMethod", methodHeadline},
    {"QXDAOMethodStep", stepHeadline}, {"QXDAOTry", tryHeadline},
    {"QXDAOExcept", exceptHeadline},   {"QXDAOCondition", conditionHeadline},
    {"QXDAOChoose", chooseHeadline},   {"QXDAOTrim", trimHeadline},
};

std::string headlineOf(const Json& element) {
  const auto* const row = std::find_if(std::begin(headlines), std::end(headlines),
                                       [&](const Headline& each) { return element.at("class") == each.className; });
  return row->write(element);
}

// -------------------------------------------------------------------------------------------
// SQL text

using Lines = std::vector<std::string_view>;

std::size_t indentationOf(std::string_view line) { return std::min(line.find_first_not_of(" \t"), line.size()); }

// The indentation of every line except the first, which begins with its text, and empty ones.
std::size_t commonIndentation(const Lines& lines) {
  std::size_t common = std::string_view::npos;
  for (std::size_t i = 1; i < lines.size(); ++i) {
    const std::size_t indentation = indentationOf(lines[i]);
    if (indentation < lines[i].size()) common = std::min(common, indentation);
  }
  return common;
}

void printText(std::ostream& out, std::string_view sql, const std::string& indent) {
  const Lines lines = splitAt(sql, '\n');
  const std::size_t common = commonIndentation(lines);
  const char* label = "text |";
  std::size_t taken = 0;
  for (std::string_view line : lines) {
    line.remove_prefix(std::min(taken, line.size()));
    out << indent << label << (line.empty() ? "" : " ") << visibleText(line) << '\n';
    label = "     |";
    taken = common;
  }
}

// -------------------------------------------------------------------------------------------
// The tree

void printElement(std::ostream& out, const Json& element, const std::string& indent);

void printColumns(std::ostream& out, const Json& columns, const std::string& indent) {
  for (const auto& [column, property] : columns.items()) {
    out << indent << visibleText(column) << " -> " << valueText(property) << '\n';
  }
}

// The content below the headline; most elements have at most one of the three.
void printContent(std::ostream& out, const Json& element, const std::string& indent) {
  if (element.contains("columnPropertyMap")) printColumns(out, element.at("columnPropertyMap"), indent);
  if (element.contains("text")) printElement(out, element.at("text"), indent);
  if (element.contains("children")) {
    for (const Json& child : element.at("children")) printElement(out, child, indent);
  }
}

void printElement(std::ostream& out, const Json& element, const std::string& indent) {
  if (element.at("class") == "QXDAOText") {
    const Json& sql = element.at("expression");
    printText(out, sql.is_string() ? std::string_view(sql.get_ref<const std::string&>()) : "", indent);
  } else {
    out << indent << headlineOf(element) << '\n';
    printContent(out, element, indent + "  ");
  }
}

}  // namespace

void printDefinitionTree(std::ostream& out, const Json& entry) {
  out << "line " << entry.at("line") << ": ";
  if (entry.contains("error")) {
    out << valueText(entry.at("tag")) << ": error: " << valueText(entry.at("error")) << '\n';
  } else {
    out << headlineOf(entry.at("element")) << '\n';
    printContent(out, entry.at("element"), "  ");
  }
}

}  // namespace korvex
