#include "tool/SqlCommand.h"

#include <algorithm>
#include <optional>
#include <ostream>

#include "checks/NearMiss.h"
#include "plan/Variants.h"
#include "tool/Counted.h"
#include "tool/DefinitionFiles.h"
#include "tool/PrintedSql.h"
#include "tool/VisibleText.h"
#include "verification/QueryPlan.h"
#include "verification/SchemaSource.h"

namespace korvex {
namespace {

class VariantPrinter {
 public:
  VariantPrinter(const SqlOptions& options, const Console& console, verification::SchemaDatabase* schema)
      : _options(options), _out(console.out), _schema(schema) {}

  void print(const Plan& plan) {
    const auto units = plan.units();
    for (std::size_t unit = 0; unit < units.size(); ++unit) print(units[unit], headingOf(plan, std::nullopt, unit));
  }
  [[nodiscard]] bool failed() const { return _failed; }

 private:
  void print(const PlanUnit& unit, const std::string& heading) {
    VariantOptions options;
    options.table = _options.table;
    options.key = "key";
    const UnitVariants variants = variantsOf(unit, options);
    _out << heading << "-- " << counted(variants.variants.size(), "variant")
         << (variants.complete ? "" : ", a covering choice") << '\n';
    for (const Variant& variant : variants.variants) print(unit, variants, variant);
  }

  void print(const PlanUnit& unit, const UnitVariants& variants, const Variant& variant) {
    _out << '\n';
    if (!variant.decisions.empty()) _out << "-- " << conditionsOf(variants, variant) << '\n';
    const std::string sql = VariantText(unit, variant.key).sql();
    _out << sql << '\n';
    if (_schema) printJudgement(sql);
  }

  static std::string conditionsOf(const UnitVariants& variants, const Variant& variant) {
    std::string conditions;
    for (const VariantDecision& decision : variant.decisions) {
      conditions += (conditions.empty() ? "" : ", ") + variants.inWords(decision);
    }
    return visibleText(conditions);
  }

  void printJudgement(const std::string& sql) {
    const std::string message = _schema->prepare(sql).message;
    if (!message.empty()) {
      _failed = true;
      _out << "-- error: " << visibleText(message) << '\n';
    } else if (_options.queryPlans) {
      for (const auto& [depth, detail] : verification::queryPlanOf(*_schema, sql)) {
        _out << "-- plan: " << std::string(2 * static_cast<std::size_t>(depth), ' ') << visibleText(detail) << '\n';
      }
    }
  }

  const SqlOptions& _options;
  std::ostream& _out;
  verification::SchemaDatabase* _schema;
  bool _failed = false;
};

ExitCode failedSql(const Console& console, const std::string& message) {
  console.err << "korvex-dao: " << message << '\n';
  return ExitCodeTrouble;
}

}  // namespace

ExitCode printVariants(const SqlOptions& options, const Console& console) {
  const LoadedDefinitions definitions = loadedDefinitions(options.definitions, console);
  if (!definitions.set) return definitions.code;
  const Plan* plan = definitions.set->plan(options.method);
  if (!plan) return failedSql(console, unknownMethod(options.method, *definitions.set));
  std::optional<verification::SchemaDatabase> schema;
  if (!options.schema.empty()) {
    schema.emplace(options.extensions);
    const std::string unreadable = verification::fillSchema(*schema, options.schema, *definitions.set);
    if (!unreadable.empty()) return failedSql(console, visibleText(unreadable));
  }
  VariantPrinter printer(options, console, schema ? &*schema : nullptr);
  printer.print(*plan);
  return printer.failed() ? ExitCodeSomethingFound : ExitCodeNothingFound;
}

}  // namespace korvex
