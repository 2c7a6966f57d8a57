#include "verification/ModelList.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <optional>
#include <set>

#include "korvex/SourceText.h"
#include "plan/SqlText.h"
#include "verification/TextFile.h"

namespace korvex::verification {
namespace {

using Json = nlohmann::ordered_json;
using Classes = std::map<std::string, ModelInfo, std::less<>>;

constexpr int maxBases = 64;  // more than any program has, so that a circle ends

std::string textOf(const Json& object, const char* key) {
  const auto found = object.find(key);
  return found != object.end() && found->is_string() ? found->get<std::string>() : std::string();
}

const Json& listOf(const Json& object, const char* key) {
  static const Json none = Json::array();
  const auto found = object.find(key);
  return found != object.end() && found->is_array() ? *found : none;
}

// Stops where a text is no JSON.
class JsonFault final : public nlohmann::json_sax<Json> {
 public:
  bool null() override { return true; }
  bool boolean(bool) override { return true; }
  bool number_integer(number_integer_t) override { return true; }
  bool number_unsigned(number_unsigned_t) override { return true; }
  bool number_float(number_float_t, const string_t&) override { return true; }
  bool string(string_t&) override { return true; }
  bool binary(binary_t&) override { return true; }
  bool start_object(std::size_t) override { return true; }
  bool key(string_t&) override { return true; }
  bool end_object() override { return true; }
  bool start_array(std::size_t) override { return true; }
  bool end_array() override { return true; }
  bool parse_error(std::size_t position, const std::string&, const nlohmann::detail::exception&) override {
    end = position;
    return false;
  }

  std::size_t end = 0;  // one past the byte at fault
};

std::string faultOfJson(const std::string& text) {
  JsonFault fault;
  static_cast<void>(Json::sax_parse(text, &fault));
  const XMLPosition at = SourceText(text).position(std::max<std::size_t>(fault.end, 1) - 1);
  return std::to_string(at.line) + ':' + std::to_string(at.column) + ": not JSON from here on";
}

// Returns what is wrong.
std::string readJson(const std::string& text, Classes& classes) {
  const Json parsed = Json::parse(text, nullptr, false);
  if (parsed.is_discarded()) return faultOfJson(text);
  for (const Json& listed : listOf(parsed, "classes")) {
    const std::string name = textOf(listed, "name");
    if (name.empty()) return R"(a class without a name: write {"classes": [{"name": "…", "properties": […]}]})";
    ModelInfo& model = classes[name];
    model.name = name;
    for (const Json& property : listOf(listed, "properties")) {
      const std::string propertyName = property.is_string() ? property.get<std::string>() : textOf(property, "name");
      if (propertyName.empty()) return "a property of class '" + name + R"(' without a name: write {"name": "…"})";
      model.properties[propertyName] = textOf(property, "class");
    }
  }
  return {};
}

// Finds the descriptions of model classes in C++: Model<Class, Base>, className("…") and property("…", …).
class DescriptionScanner {
 public:
  DescriptionScanner(std::string_view text, Classes& classes) : _text(text), _classes(classes) {}

  void scan() {
    while (_at < _text.size()) {
      if (skipComment() || skipLiteral()) continue;
      isNameCharacter(_text[_at]) ? take(word()) : static_cast<void>(++_at);
    }
  }

 private:
  void take(std::string_view word) {
    if (word == "Model" && skipped('<')) return takeClass();
    if (word == "className" && skipped('(')) return named(literal());
    if (word != "property" && word != "propertyWithoutField") return;
    if (skipped('<')) _at = std::min(_text.find('>', _at), _text.size() - 1) + 1;
    if (skipped('(')) declared(literal());
  }

  void takeClass() {
    const std::string name(qualifiedWord());
    if (name.empty()) return;
    _model = &_classes[name];
    if (skipped(',')) _model->base = qualifiedWord();
  }

  void named(const std::optional<std::string>& name) {
    if (name && _model) _model->name = *name;
  }
  void declared(const std::optional<std::string>& property) {
    if (property && _model) _model->properties.emplace(*property, std::string());
  }

  bool skipComment() {
    if (startsWith("//")) return _at = std::min(_text.find('\n', _at), _text.size()), true;
    if (!startsWith("/*")) return false;
    _at = std::min(_text.find("*/", _at + 2), _text.size() - 2) + 2;
    return true;
  }
  bool skipLiteral() {
    const char quote = _text[_at];
    if (quote != '"' && quote != '\'') return false;
    for (++_at; _at < _text.size() && _text[_at] != quote && _text[_at] != '\n'; ++_at)
      _at += _text[_at] == '\\' ? 1 : 0;
    ++_at;
    return true;
  }

  [[nodiscard]] bool startsWith(std::string_view mark) const { return _text.substr(_at, mark.size()) == mark; }
  void skipSpace() { _at = std::min(_text.find_first_not_of(" \t\r\n", _at), _text.size()); }
  bool skipped(char mark) {
    skipSpace();
    const bool found = _at < _text.size() && _text[_at] == mark;
    _at += found ? 1 : 0;
    return found;
  }

  std::string_view word() {
    const std::size_t begin = _at;
    while (_at < _text.size() && isNameCharacter(_text[_at])) ++_at;
    return _text.substr(begin, _at - begin);
  }
  // The last part of a name such as app::Person.
  std::string_view qualifiedWord() {
    skipSpace();
    std::string_view last = word();
    while (startsWith("::")) {
      _at += 2;
      last = word();
    }
    return last;
  }
  std::optional<std::string> literal() {
    skipSpace();
    const std::size_t begin = _at;
    if (_at >= _text.size() || _text[_at] != '"') return std::nullopt;
    skipLiteral();
    return std::string(_text.substr(begin + 1, std::min(_at, _text.size()) - begin - 2));
  }

  std::string_view _text;
  Classes& _classes;
  std::size_t _at = 0;
  ModelInfo* _model = nullptr;
};

}  // namespace

ModelList::Reading ModelList::read(const std::string& path) {
  Reading reading;
  std::ifstream file(path, std::ios::binary);
  std::string text;
  if (!appendRest(file, text)) {
    reading.fault = "no list of model classes can be read there";
    return reading;
  }
  const std::size_t begin = text.find_first_not_of(" \t\r\n");
  if (begin != std::string::npos && text[begin] == '{') {
    reading.fault = readJson(text, reading.models._classes);
  } else {
    DescriptionScanner(text, reading.models._classes).scan();
  }
  if (reading.fault.empty() && reading.models.classes().empty()) {
    reading.fault =
        "no model class: give the JSON that ModelRegistry::json() prints, or a C++ file with className(\"…\")";
  }
  return reading;
}

const ModelInfo* ModelList::find(std::string_view name) const {
  for (const auto& [cppName, model] : _classes) {
    if (!name.empty() && model.name == name) return &model;
  }
  return nullptr;
}

const ModelInfo* ModelList::baseOf(const ModelInfo& model) const {
  const auto found = _classes.find(model.base);
  return found == _classes.end() ? nullptr : &found->second;
}

const std::string* ModelList::property(const ModelInfo& model, std::string_view property) const {
  int bases = 0;
  for (const ModelInfo* declaring = &model; declaring && bases < maxBases; declaring = baseOf(*declaring), ++bases) {
    const auto found = declaring->properties.find(property);
    if (found != declaring->properties.end()) return &found->second;
  }
  return nullptr;
}

std::vector<std::string_view> ModelList::propertiesOf(const ModelInfo& model) const {
  std::set<std::string_view> properties;
  int bases = 0;
  for (const ModelInfo* declaring = &model; declaring && bases < maxBases; declaring = baseOf(*declaring), ++bases) {
    for (const auto& [property, type] : declaring->properties) properties.insert(property);
  }
  return {properties.begin(), properties.end()};
}

std::vector<const ModelInfo*> ModelList::classes() const {
  std::vector<const ModelInfo*> named;
  for (const auto& [cppName, model] : _classes) {
    if (!model.name.empty()) named.push_back(&model);
  }
  return named;
}

std::string ModelList::json() const {
  Json list = Json::array();
  for (const ModelInfo* model : classes()) {
    Json properties = Json::array();
    for (const std::string_view name : propertiesOf(*model)) {
      const std::string* type = property(*model, name);
      const bool isPlain = !type || type->empty();
      properties.push_back(isPlain ? Json(name) : Json{{"name", name}, {"class", *type}});
    }
    list.push_back({{"name", model->name}, {"properties", std::move(properties)}});
  }
  return Json{{"classes", std::move(list)}}.dump(2, ' ', false, Json::error_handler_t::replace) + '\n';
}

}  // namespace korvex::verification
