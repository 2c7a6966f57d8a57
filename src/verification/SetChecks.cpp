#include "verification/SetChecks.h"

#include <algorithm>
#include <optional>

#include "checks/NearMiss.h"
#include "korvex/Definition.h"
#include "korvex/Keywords.h"
#include "plan/SqlText.h"

namespace korvex::verification {
namespace {

class SetChecker {
 public:
  SetChecker(const DefinitionSet& set, const VerifiedDocuments& documents, const SeenUse& seen, SchemaDatabase* schema)
      : _set(set), _seen(seen), _schema(schema) {
    if (schema) _unusedTables = schema->unusedTables();
    if (schema) _columnTypes = schema->columnTypes();
    for (const auto& [name, document] : documents) _documents.push_back(&document);
  }

  std::vector<Finding> check() {
    collectReferences();
    for (const VerifiedDocument* document : _documents) {
      _document = document;
      for (const Definition& definition : document->built) {
        if (!definition.element) continue;
        _definition = document->definitionAt(definition.xml.offset());
        checkDefinition(definition);
      }
    }
    if (_schema && _seen.isComplete) checkTables();
    return std::move(_findings);
  }

 private:
  void checkDefinition(const Definition& definition) {
    const auto* method = QXDAOElementCast<QXDAOMethod>(definition.element.get());
    if (method) return checkArguments(*method);
    if (!_schema) return;
    if (const auto* map = QXDAOElementCast<QXDAOMap>(definition.element.get())) return checkMap(*map, definition.xml);
    if (const auto* pack = QXDAOElementCast<QXDAOPack>(definition.element.get())) return checkPack(*pack);
    const OptionalStringView name = definition.element->name();
    const bool reusable = definition.tag() == C_SQL || definition.tag() == C_CONST;
    if (reusable && name && !_references.contains(*name)) reportUnused("'@" + std::string(*name) + "'");
  }

  // Every "@name" of the documents, wherever it is.
  void collectReferences() {
    for (const VerifiedDocument* document : _documents) {
      const std::string_view source = document->file->source->text();
      for (std::size_t at = source.find('@'); at != std::string_view::npos; at = source.find('@', at + 1)) {
        std::size_t end = at + 1;
        while (end < source.size() && isNameCharacter(source[end])) ++end;
        _references.insert(source.substr(at + 1, end - at - 1));
      }
    }
    for (const Plan* plan : _set.plans()) {
      if (plan->method().resultType() != QXDAOSelectResultTypeMappedObject) continue;
      _usedMaps.insert(plan->method().resultTypeName().value_or(std::string_view()));
    }
  }

  void checkMap(const QXDAOMap& map, const XMLNode& xml) {
    const std::string_view name = map.name().value_or(std::string_view());
    if (!_usedMaps.contains(name)) return reportUnused("map '" + std::string(name) + "'");
    const auto seen = _seen.columnsOfMaps.find(name);
    if (seen == _seen.columnsOfMaps.end() || _seen.unknownMaps.contains(name)) return;
    for (const XMLNode& child : xml.children()) {
      const OptionalStringView column = child.valueOfAttribute(C_COLUMN);
      if (!column || seen->second.contains(std::string(*column))) continue;
      const std::vector<std::string_view> yielded(seen->second.begin(), seen->second.end());
      report(SchemaRule::UnyieldedColumn, child.offset(),
             "no select with this map yields a column '" + std::string(*column) + "'", didYouMean(*column, yielded));
    }
  }

  void checkPack(const QXDAOPack& pack) {
    const std::string column(pack.column().value_or(std::string_view()));
    bool found = false;
    for (const auto& [name, type] : _columnTypes) {
      if (name != column) continue;
      found = true;
      if (type.empty() || type.find("BLOB") != std::string::npos) continue;
      return report(SchemaRule::PackColumn, (*_definition)->offset,
                    "the packed column '" + column + "' has the type " + type, "Declare the column as BLOB.");
    }
    if (!found)
      report(SchemaRule::PackColumn, (*_definition)->offset, "no table has the packed column '" + column + "'", {});
  }

  // Those that an upgrade creates. The app can assign any of them to a method that has an assigned table.
  void checkTables() {
    const auto plans = _set.plans();
    if (plans.empty() ||
        std::any_of(plans.begin(), plans.end(), [](const Plan* plan) { return plan->method().assignedTable(); }))
      return;
    for (const std::string& table : _unusedTables) reportTable(table);
  }

  void reportTable(const std::string& table) {
    for (const VerifiedDocument* document : _documents) {
      for (const SharedDefinition& definition : document->definitions) {
        const std::string_view source = document->sourceOf(*definition);
        const std::size_t at = definition->tag == C_UPGRADE ? findSqlWord(source, table, 0) : source.size();
        if (at == source.size()) continue;
        _document = document;
        return report(SchemaRule::UnusedTable, definition->offset + at, "no method uses the table '" + table + "'", {},
                      table.size());
      }
    }
  }

  // A name that the method mentions once is only declared. A block can use it, too.
  void checkArguments(const QXDAOMethod& method) {
    const std::string_view source = _document->sourceOf(**_definition);
    for (const QXDAOMethodArgument& argument : *method.arguments()) {
      const std::string_view name = argument.name().value_or(std::string_view());
      const std::size_t first = findSqlWord(source, name, 0);
      if (name.empty() || first == source.size() || findSqlWord(source, name, first + 1) < source.size()) continue;
      if (source.find('@') != std::string_view::npos && isBoundAnywhere(name)) continue;
      report(SchemaRule::UnusedArgument, (*_definition)->offset + first,
             "argument '" + std::string(name) + "' is never used", {}, name.size());
    }
  }

  [[nodiscard]] bool isBoundAnywhere(std::string_view name) const {
    return std::any_of(_documents.begin(), _documents.end(), [name](const VerifiedDocument* document) {
      return document->file->source->text().find(":" + std::string(name)) != std::string_view::npos;
    });
  }

  void reportUnused(const std::string& what) {
    report(SchemaRule::UnusedDefinition, (*_definition)->offset, what + " is never used", {});
  }

  void report(SchemaRule rule, std::size_t offset, std::string message, std::string help, std::size_t length = 1) {
    _findings.push_back(findingAt(*_document, rule, {offset, offset + length}, std::move(message), std::move(help)));
  }

  const DefinitionSet& _set;
  const SeenUse& _seen;
  SchemaDatabase* const _schema;  // may be null
  std::vector<std::string> _unusedTables;
  std::vector<std::pair<std::string, std::string>> _columnTypes;
  std::vector<const VerifiedDocument*> _documents;
  std::set<std::string_view> _references;
  std::set<std::string_view> _usedMaps;
  const VerifiedDocument* _document = nullptr;
  const SharedDefinition* _definition = nullptr;
  std::vector<Finding> _findings;
};

}  // namespace

std::vector<Finding> findingsOfSet(const DefinitionSet& set, const VerifiedDocuments& documents, const SeenUse& seen,
                                   SchemaDatabase* schema) {
  return SetChecker(set, documents, seen, schema).check();
}

}  // namespace korvex::verification
