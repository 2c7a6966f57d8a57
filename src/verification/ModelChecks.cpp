#include "verification/ModelChecks.h"

#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <utility>

#include "checks/NearMiss.h"
#include "korvex/Definition.h"
#include "korvex/Keywords.h"
#include "korvex/Plan.h"
#include "korvex/QXDAOMethod.h"
#include "plan/PathUses.h"
#include "plan/SourcePlaces.h"
#include "plan/SqlText.h"
#include "platform/Strings.h"

namespace korvex::verification {
namespace {

// What the evaluator gives for lists and texts.
bool isBuiltIn(std::string_view member) { return member == "count" || member == "length"; }

// "person" and "newPerson" are names for a Person.
bool isNameFor(std::string_view value, std::string_view modelClass) {
  if (value.size() > modelClass.size()) return value.ends_with(modelClass);
  return asciiLowerCase(value) == asciiLowerCase(modelClass);
}

class ModelChecker {
 public:
  ModelChecker(const VerifiedDocuments& documents, const ModelList& models)
      : _documents(documents), _models(models), _classes(models.classes()) {
    for (const ModelInfo* model : _classes) {
      for (const std::string_view property : models.propertiesOf(*model)) _properties.insert(property);
    }
    for (const auto& [name, document] : documents) {
      for (const Definition& definition : document.built) {
        const auto* pack = QXDAOElementCast<QXDAOPack>(definition.element.get());
        if (pack) _packs.emplace(pack->column().value_or(std::string_view()));
      }
    }
  }

  void checkDefinitions() {
    for (const auto& [name, document] : _documents) {
      _document = &document;
      for (const Definition& definition : document.built) {
        if (definition.element) checkDefinition(definition);
      }
    }
  }

  void checkValues(const DefinitionSet& set) {
    for (const Plan* plan : set.plans()) checkPlan(*plan);
  }

  std::vector<Finding> findings;

 private:
  void checkDefinition(const Definition& definition) {
    const XMLNode& xml = definition.xml;
    const QXDAOElement* element = definition.element.get();
    if (const auto* map = QXDAOElementCast<QXDAOMap>(element)) return checkMap(*map, xml);
    if (const auto* crypt = QXDAOElementCast<QXDAOCryptProperty>(element)) return checkCrypt(*crypt, xml);
    if (const auto* pack = QXDAOElementCast<QXDAOPack>(element)) return checkPack(*pack, xml);
    if (const auto* method = QXDAOElementCast<QXDAOMethod>(element)) return checkResult(*method, xml);
  }

  void checkMap(const QXDAOMap& map, const XMLNode& xml) {
    const ModelInfo* model = knownClass(xml, C_RESULT, map.resultClass());
    for (const XMLNode& child : xml.children()) {
      if (model) checkProperty(*model, child, child.valueOfAttribute(C_PROPERTY));
    }
  }

  void checkCrypt(const QXDAOCryptProperty& crypt, const XMLNode& xml) {
    const ModelInfo* model = knownClass(xml, C_CLASS, crypt.className());
    if (model) checkProperty(*model, xml, crypt.propertyName());
  }

  // A pack serves the objects of any class.
  void checkPack(const QXDAOPack& pack, const XMLNode& xml) {
    for (const std::string_view property : *pack.propertyList()) {
      if (property.empty() || _properties.contains(property)) continue;
      const std::vector<std::string_view> names(_properties.begin(), _properties.end());
      report(SchemaRule::UnknownProperty, spanIn(xml, C_PROPERTIES, property),
             "no model class has a property " + quoted(property), didYouMean(property, names));
    }
  }

  void checkResult(const QXDAOMethod& method, const XMLNode& xml) {
    const bool makesObjects =
        method.operation() == QXDAOOperationSelect && method.resultType() == QXDAOSelectResultTypeObject;
    if (makesObjects) static_cast<void>(knownClass(xml, C_RESULT, method.resultTypeName()));
  }

  // Null after a report, and if no class is named.
  const ModelInfo* knownClass(const XMLNode& xml, std::string_view attribute, OptionalStringView written) {
    const std::string_view name = written.value_or(std::string_view());
    const ModelInfo* model = _models.find(name);
    if (model || name.empty()) return model;
    std::vector<std::string_view> names;
    for (const ModelInfo* known : _classes) names.push_back(known->name);
    report(SchemaRule::UnknownClass, spanIn(xml, attribute, name), "there is no model class " + quoted(name),
           didYouMean(name, names));
    return nullptr;
  }

  void checkProperty(const ModelInfo& model, const XMLNode& xml, OptionalStringView property) {
    if (isEmpty(property) || _models.property(model, *property)) return;
    reportProperty(spanIn(xml, C_PROPERTY, *property), model, *property);
  }

  // Paths by the value that they begin with.
  void checkPlan(const Plan& plan) {
    std::map<std::pair<const void*, std::string>, std::vector<PathUse>> byValue;
    for (const PlanUnit& unit : plan.units()) {
      for (PathUse& use : pathUsesOf(unit)) {
        std::string name = use.path.substr(0, use.path.find('.'));
        byValue[{use.owner, std::move(name)}].push_back(std::move(use));
      }
    }
    for (const auto& [value, uses] : byValue) {
      const ModelInfo* model = classOf(value.second, uses);
      for (const PathUse& use : uses) {
        if (model) checkPath(*model, use);
      }
    }
  }

  [[nodiscard]] const ModelInfo* classOf(std::string_view name, const std::vector<PathUse>& uses) const {
    const auto named = std::find_if(_classes.begin(), _classes.end(),
                                    [name](const ModelInfo* model) { return isNameFor(name, model->name); });
    if (named != _classes.end()) return *named;
    std::set<std::string_view> read;
    for (const PathUse& use : uses) {
      const auto parts = splitAt(use.path, '.');
      if (parts.size() > 1 && !isBuiltIn(parts[1])) read.insert(parts[1]);
    }
    const auto declared = [&](const ModelInfo* model) {
      return std::count_if(read.begin(), read.end(),
                           [&](std::string_view property) { return _models.property(*model, property) != nullptr; });
    };
    const auto best = std::max_element(
        _classes.begin(), _classes.end(),
        [&](const ModelInfo* left, const ModelInfo* right) { return declared(left) < declared(right); });
    const bool isObject = best != _classes.end() && 2 * declared(*best) > static_cast<std::ptrdiff_t>(read.size());
    return isObject ? *best : nullptr;
  }

  // Follows the path as far as the classes of its properties are known.
  void checkPath(const ModelInfo& first, const PathUse& use) {
    const ModelInfo* model = &first;
    const auto parts = splitAt(use.path, '.');
    for (std::size_t part = 1; part < parts.size() && model && !isBuiltIn(parts[part]); ++part) {
      const std::string* type = _models.property(*model, parts[part]);
      if (!type && _packs.contains(parts[part])) return;
      if (!type) return reportPath(*model, use, parts[part]);
      model = _models.find(*type);
    }
  }

  void reportPath(const ModelInfo& model, const PathUse& use, std::string_view part) {
    const auto document = _documents.find(use.place.document);
    if (document == _documents.end()) return;
    _document = &document->second;
    const std::string_view source = _document->file->source->text();
    const std::size_t begin = offsetOf(*_document->file->source, use.place.position);
    const std::size_t found = findPath(source, use.path, begin);
    const std::size_t inside = static_cast<std::size_t>(part.data() - use.path.data());
    const Span span =
        found < source.size() ? Span{found + inside, found + inside + part.size()} : Span{begin, begin + 1};
    if (_seen.emplace(_document, span.begin).second) reportProperty(span, model, part);
  }

  // A path that is not written as it is read, with a character reference in it, is not found.
  static std::size_t findPath(std::string_view whole, std::string_view path, std::size_t from) {
    constexpr std::size_t maxDistance = 65536;
    const std::string_view source = whole.substr(0, from + maxDistance);
    const auto continues = [&](std::size_t at) {
      return at < source.size() && (isNameCharacter(source[at]) || source[at] == '.');
    };
    std::size_t at = source.find(path, from);
    while (at != std::string_view::npos && ((at > 0 && continues(at - 1)) || continues(at + path.size()))) {
      at = source.find(path, at + 1);
    }
    return std::min(at, whole.size());
  }

  void reportProperty(const Span& span, const ModelInfo& model, std::string_view property) {
    report(SchemaRule::UnknownProperty, span, "class " + quoted(model.name) + " has no property " + quoted(property),
           didYouMean(property, _models.propertiesOf(model)));
  }

  // A word in the value of an attribute.
  [[nodiscard]] Span spanIn(const XMLNode& xml, std::string_view attribute, std::string_view word) const {
    const std::string_view value = xml.valueOfAttribute(attribute).value_or(std::string_view());
    const std::size_t at = findSqlWord(value, word, 0);
    const XMLPosition position = placeInAttribute(xml, attribute, at < value.size() ? at : 0);
    const std::size_t begin = offsetOf(*_document->file->source, position);
    return {begin, begin + word.size()};
  }

  void report(SchemaRule rule, const Span& span, std::string message, std::string help) {
    findings.push_back(findingAt(*_document, rule, span, std::move(message), std::move(help)));
  }

  const VerifiedDocuments& _documents;
  const ModelList& _models;
  const std::vector<const ModelInfo*> _classes;
  std::set<std::string_view> _properties;     // of all classes
  std::set<std::string, std::less<>> _packs;  // their columns can be read like properties
  const VerifiedDocument* _document = nullptr;
  std::set<std::pair<const VerifiedDocument*, std::size_t>> _seen;  // the places of paths that are reported
};

}  // namespace

std::vector<Finding> findingsOfModels(const DefinitionSet* set, const VerifiedDocuments& documents,
                                      const ModelList& models) {
  if (models.empty()) return {};
  ModelChecker checker(documents, models);
  checker.checkDefinitions();
  if (set) checker.checkValues(*set);
  return std::move(checker.findings);
}

}  // namespace korvex::verification
