#include "tool/JsonValues.h"

#include <cstdint>
#include <limits>
#include <utility>

#include "sqlite/NumberText.h"
#include "tool/Hex.h"
#include "tool/VisibleText.h"

namespace korvex {
namespace {

std::optional<Value> listOf(const Json& json) {
  ValueList list;
  for (const Json& entry : json) {
    std::optional<Value> value = valueOfJson(entry);
    if (!value) return std::nullopt;
    list.push_back(std::move(*value));
  }
  return Value(std::move(list));
}

std::optional<Value> dictionaryOf(const Json& json) {
  Dictionary dictionary;
  for (const auto& [name, entry] : json.items()) {
    std::optional<Value> value = valueOfJson(entry);
    if (!value) return std::nullopt;
    dictionary.set(name, std::move(*value));
  }
  return Value(std::move(dictionary));
}

std::string blobText(std::string_view bytes) { return "x'" + hexText(bytes) + "'"; }

std::string quotedText(std::string_view text) {
  std::string quoted = "'";
  for (const char character : text) quoted.append(character == '\'' ? 2 : 1, character);
  return visibleText(quoted) + "'";
}

Json jsonOfList(const ValueList& list) {
  Json json = Json::array();
  for (const Value& value : list) json.push_back(jsonOfValue(value));
  return json;
}

Json jsonOfDictionary(const Dictionary& dictionary) {
  Json json = Json::object();
  for (const Dictionary::Entry& entry : dictionary) appendMember(json, entry.name, jsonOfValue(entry.value));
  return json;
}

}  // namespace

std::optional<Value> valueOfJson(const Json& json) {
  switch (json.type()) {
    case Json::value_t::boolean:
      return Value(json.get<bool>());
    case Json::value_t::number_integer:
      return Value(json.get<std::int64_t>());
    case Json::value_t::number_unsigned:
      return Value::ofUnsigned(json.get<std::uint64_t>());
    case Json::value_t::number_float:
      return Value(json.get<double>());
    case Json::value_t::string:
      return Value(json.get<std::string>());
    case Json::value_t::array:
      return listOf(json);
    case Json::value_t::object:
      return dictionaryOf(json);
    default:
      return Value();
  }
}

Json jsonOfValue(const Value& value) {
  switch (value.type()) {
    case ValueType::Integer:
      return *value.integer();
    case ValueType::Real:
      return *value.real();
    case ValueType::Text:
      return std::string(*value.text());
    case ValueType::Blob:
      return blobText(*value.blob());
    case ValueType::List:
      return jsonOfList(*value.list());
    case ValueType::Dictionary:
      return jsonOfDictionary(*value.dictionary());
    default:
      return nullptr;
  }
}

std::string sqlOfValue(const ValueView& value) {
  switch (value.type()) {
    case ValueType::Integer:
    case ValueType::Real:
      return textOfNumber(value);
    case ValueType::Text:
      return quotedText(value.bytes());
    case ValueType::Blob:
      return blobText(value.bytes());
    default:
      return "NULL";
  }
}

}  // namespace korvex
