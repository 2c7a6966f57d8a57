#include "tool/ElementJson.h"

#include <functional>
#include <iterator>
#include <span>
#include <type_traits>
#include <utility>

#include "korvex/QXDAOCondition.h"
#include "korvex/QXDAOConst.h"
#include "korvex/QXDAOContainerElement.h"
#include "korvex/QXDAOCryptProperty.h"
#include "korvex/QXDAOEvaluator.h"
#include "korvex/QXDAOForeach.h"
#include "korvex/QXDAOKeyValueFormatter.h"
#include "korvex/QXDAOMap.h"
#include "korvex/QXDAOMethod.h"
#include "korvex/QXDAOMethodArgument.h"
#include "korvex/QXDAOMethodStep.h"
#include "korvex/QXDAOPack.h"
#include "korvex/QXDAOSqlBlock.h"
#include "korvex/QXDAOText.h"
#include "korvex/QXDAOTrim.h"
#include "tool/VisibleText.h"

namespace korvex {
namespace {

// -------------------------------------------------------------------------------------------
// Values

constexpr const char* nameOf(QXDAOOperation value) {
  constexpr const char* names[] = {"QXDAOOperationSelect", "QXDAOOperationUpdate", "QXDAOOperationInsert",
                                   "QXDAOOperationDelete", "QXDAOOperationUpgrade"};
  return names[value];
}

constexpr const char* nameOf(QXDAOSelectResultType value) {
  constexpr const char* names[] = {
      "QXDAOSelectResultTypeInt",       "QXDAOSelectResultTypeLongLong", "QXDAOSelectResultTypeBool",
      "QXDAOSelectResultTypeDouble",    "QXDAOSelectResultTypeString",   "QXDAOSelectResultTypeBinary",
      "QXDAOSelectResultTypeColumnMap", "QXDAOSelectResultTypeObject",   "QXDAOSelectResultTypeMappedObject",
  };
  return names[value];
}

constexpr const char* nameOf(QXDAOConditionType value) {
  constexpr const char* names[] = {"QXDAOConditionTypeIf", "QXDAOConditionTypeWhen", "QXDAOConditionTypeOtherwise"};
  return names[value];
}

constexpr const char* nameOf(QXDAOTrimOnVoidType value) {
  constexpr const char* names[] = {"QXDAOTrimOnVoidTypeNone", "QXDAOTrimOnVoidTypeQuit",
                                   "QXDAOTrimOnVoidTypeIgnoreAfter"};
  return names[value];
}

template <typename Value>
requires std::is_enum_v<Value> Json toJson(Value value) { return nameOf(value); }

template <typename Value>
requires std::is_arithmetic_v<Value> Json toJson(Value value) { return value; }

Json toJson(std::string_view text) { return text; }
Json toJson(const QXDAOToken& token) { return token.text; }

Json toJson(std::span<const QXDAOColumn> columns) {
  Json object = Json::object();
  for (const auto& [column, property] : columns) appendMember(object, column, property);
  return object;
}

template <typename Item>
Json toJson(std::span<const Item> items);

template <typename Value>
Json toJson(const std::optional<Value>& value) {
  return value ? toJson(*value) : Json();
}

Json toJson(const QXDAOMethodArgument& argument) {
  return {{"name", toJson(argument.name())}, {"notNull", argument.notNull()}};
}

template <typename Element>
Json toJson(const std::unique_ptr<Element>& element) {
  return element ? elementJson(*element) : Json();
}

template <typename Item>
Json toJson(std::span<const Item> items) {
  Json array = Json::array();
  for (const Item& item : items) array.push_back(toJson(item));
  return array;
}

// -------------------------------------------------------------------------------------------
// Properties

template <typename Value, typename Class>
std::type_identity<Class> ownerOf(Value Class::*);

// Reads one property, a getter or a public field, of an element that has it.
template <auto Property>
Json read(const QXDAOElement& element) {
  using Owner = typename decltype(ownerOf(Property))::type;
  return toJson(std::invoke(Property, static_cast<const Owner&>(element)));
}

struct Property {
  const char* name;
  Json (*read)(const QXDAOElement&);
};

constexpr Property children = {"children", read<&QXDAOContainerElement::children>};

constexpr Property ofText[] = {{"expression", read<&QXDAOText::expression>}};
constexpr Property ofForeach[] = {
    {"item", read<&QXDAOForeach::item>},       {"collection", read<&QXDAOForeach::collection>},
    {"open", read<&QXDAOForeach::open>},       {"separator", read<&QXDAOForeach::separator>},
    {"close", read<&QXDAOForeach::close>},     {"text", read<&QXDAOForeach::text>},
    {"reverse", read<&QXDAOForeach::reverse>},
};
constexpr Property ofKeyValueFormatter[] = {
    {"prefix", read<&QXDAOKeyValueFormatter::prefix>},
    {"pairs", read<&QXDAOKeyValueFormatter::pairs>},
    {"join", read<&QXDAOKeyValueFormatter::join>},
};
constexpr Property ofSqlBlock[] = {{"text", read<&QXDAOSqlBlock::text>}};
constexpr Property ofConst[] = {{"text", read<&QXDAOConst::text>}};
constexpr Property ofMap[] = {
    {"resultClass", read<&QXDAOMap::resultClass>},
    {"columnPropertyMap", read<&QXDAOMap::columnPropertyMap>},
};
constexpr Property ofCryptProperty[] = {
    {"className", read<&QXDAOCryptProperty::className>},
    {"propertyName", read<&QXDAOCryptProperty::propertyName>},
};
constexpr Property ofPack[] = {
    {"crypted", read<&QXDAOPack::crypted>},
    {"column", read<&QXDAOPack::column>},
    {"propertyList", read<&QXDAOPack::propertyList>},
};
constexpr Property ofMethod[] = {
    {"operation", read<&QXDAOMethod::operation>},
    {"profile", read<&QXDAOMethod::_profile>},
    {"resultType", read<&QXDAOMethod::resultType>},
    {"resultArrayed", read<&QXDAOMethod::resultArrayed>},
    {"assignedTable", read<&QXDAOMethod::assignedTable>},
    {"resultTypeName", read<&QXDAOMethod::resultTypeName>},
    {"arguments", read<&QXDAOMethod::arguments>},
    {"steped", read<&QXDAOMethod::steped>},
    {"tryBlock", read<&QXDAOMethod::tryBlock>},
    {"parallel", read<&QXDAOMethod::parallel>},
    {"foreach", read<&QXDAOMethod::foreach>},
    {"foreachResumable", read<&QXDAOMethod::foreachResumable>},
    {"foreachItemName", read<&QXDAOMethod::foreachItemName>},
    {"foreachCollection", read<&QXDAOMethod::foreachCollection>},
    {"toVersion", read<&QXDAOMethod::toVersion>},
    children,
};
constexpr Property ofMethodStep[] = {{"resumable", read<&QXDAOMethodStep::resumable>}, children};
constexpr Property ofCondition[] = {
    {"type", read<&QXDAOCondition::type>},
    {"evaluateAsTrue", read<&QXDAOCondition::evaluateAsTrue>},
    {"expression", read<&QXDAOCondition::expression>},
    {"tokenList", read<&QXDAOCondition::tokenList>},
    children,
};
constexpr Property ofTrim[] = {
    {"operationName", read<&QXDAOTrim::operationName>},
    {"prefixOverrides", read<&QXDAOTrim::prefixOverrides>},
    {"suffixOverrides", read<&QXDAOTrim::suffixOverrides>},
    {"onVoid", read<&QXDAOTrim::onVoid>},
    children,
};
constexpr Property ofOtherContainer[] = {children};

// -------------------------------------------------------------------------------------------
// Classes

struct Class {
  QXDAOElementKind kind;
  const char* name;
  std::span<const Property> properties;
};

// In the order of the kinds.
constexpr Class classes[] = {
    {QXDAOElementKindText, "QXDAOText", ofText},
    {QXDAOElementKindForeach, "QXDAOForeach", ofForeach},
    {QXDAOElementKindKeyValueFormatter, "QXDAOKeyValueFormatter", ofKeyValueFormatter},
    {QXDAOElementKindSqlBlock, "QXDAOSqlBlock", ofSqlBlock},
    {QXDAOElementKindConst, "QXDAOConst", ofConst},
    {QXDAOElementKindMap, "QXDAOMap", ofMap},
    {QXDAOElementKindCryptProperty, "QXDAOCryptProperty", ofCryptProperty},
    {QXDAOElementKindPack, "QXDAOPack", ofPack},
    {QXDAOElementKindMethod, "QXDAOMethod", ofMethod},
    {QXDAOElementKindMethodStep, "QXDAOMethodStep", ofMethodStep},
    {QXDAOElementKindTry, "QXDAOTry", ofOtherContainer},
    {QXDAOElementKindExcept, "QXDAOExcept", ofOtherContainer},
    {QXDAOElementKindCondition, "QXDAOCondition", ofCondition},
    {QXDAOElementKindChoose, "QXDAOChoose", ofOtherContainer},
    {QXDAOElementKindTrim, "QXDAOTrim", ofTrim},
};

constexpr bool inOrderOfKinds() {
  for (std::size_t i = 0; i < std::size(classes); ++i) {
    if (classes[i].kind != i) return false;
  }
  return std::size(classes) == QXDAOElementKindTrim + 1;
}
static_assert(inOrderOfKinds());

}  // namespace

Json elementJson(const QXDAOElement& element) {
  const Class& type = classes[element.kind()];
  Json json = {{"class", type.name}, {"name", toJson(element.name())}};
  for (const Property& property : type.properties) json[property.name] = property.read(element);
  return json;
}

void appendMember(Json& object, std::string_view name, Json value) {
  object.get_ref<Json::object_t&>().emplace_back(std::string(name), std::move(value));
}

std::string jsonText(const Json& json) { return visibleJson(json.dump(2, ' ', false, Json::error_handler_t::replace)); }

}  // namespace korvex
