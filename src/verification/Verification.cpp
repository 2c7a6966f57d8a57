#include "verification/Verification.h"

#include <sqlite3.h>

#include <algorithm>
#include <optional>
#include <set>
#include <utility>

#include "korvex/Plan.h"
#include "plan/Variants.h"
#include "verification/FaultReport.h"
#include "verification/QueryPlan.h"
#include "verification/SetChecks.h"
#include "verification/SqlFault.h"
#include "verification/StandIns.h"
#include "verification/StatementChecks.h"
#include "verification/VariantFailures.h"

namespace korvex::verification {
namespace {

// Bounds for documents with very many faults.
// The place of a fault is searched by preparing parts of the statement, at a cost that grows with its square. The
// budget is some seconds, in square bytes.
constexpr std::size_t searchBudget = 50'000'000;
// After so many variants of all methods, those with more than a few are covered by choice.
constexpr std::size_t variantBudget = std::size_t{1} << 20U;
constexpr std::size_t fewVariants = 1024;
// The SQL of all variants in bytes; when it is used up, every unit still gets a share.
constexpr std::size_t textBudget = std::size_t{1} << 30U;
constexpr std::size_t textShare = std::size_t{1} << 20U;

constexpr const char* quotedHelp = "A name is in double quotes; write a text in single quotes.";

}  // namespace

class Verification::Work {
 public:
  Work(const DefinitionSet& set, SchemaDatabase& schema, const VerifiedDocuments& documents)
      : _set(set), _schema(schema), _documents(documents), _report(documents), _standIns(schema) {}

  void runUpgrades() {
    for (const Plan* plan : _set.upgrades()) {
      const bool tries = plan->structure() == PlanStructure::Try;
      for (const PlanUnit& unit : plan->units()) {
        const bool last = &unit == &plan->units().back();
        const bool ran = runUnit(unit, !tries || last);
        if (tries && ran) break;
      }
    }
  }

  void checkSet(bool isWhole) {
    _seen.isComplete = _seen.isComplete && isWhole;
    for (Finding& finding : findingsOfSet(_set, _documents, _seen, &_schema)) _report.add(std::move(finding));
  }

  bool checkMethods(const std::function<bool()>& goesOn) {
    _standIns.readNames();
    _schema.forgetUsedTables();
    for (const Plan* plan : _set.plans()) {
      if (goesOn && !goesOn()) return false;
      checkPlan(*plan);
    }
    return true;
  }

  [[nodiscard]] std::vector<Finding> takeFindings() { return _report.take(); }

  VerificationTotals totals;

 private:
  // An upgrade has no arguments, so each unit has one text.
  bool runUnit(const PlanUnit& unit, bool reports) {
    const UnitVariants variants = variantsOf(unit);
    for (const Variant& variant : variants.variants) {
      const VariantText text(unit, variant.key);
      const auto fault = runText(text.sql());
      if (fault && reports) {
        _seen.isComplete = false;
        _report.add(unit, text, *fault, {});
      }
      if (fault) return false;
    }
    return true;
  }

  // A unit of an upgrade is a script.
  std::optional<Defect> runText(const std::string& sql) {
    for (std::size_t begin = 0; begin < sql.size();) {
      const std::string_view rest = std::string_view(sql).substr(begin);
      const Prepared prepared = _schema.prepare(rest);
      if (!prepared.message.empty()) return moved(searched(rest, sqlDefect(prepared.message), prepared.offset), begin);
      const auto message = prepared.statement ? _schema.run(*prepared.statement) : std::nullopt;
      if (message) return moved({&ruleOf(SchemaRule::Sql), *message, {}, codeOf(rest.substr(0, prepared.end))}, begin);
      if (prepared.end == 0) break;
      begin += prepared.end;
    }
    return std::nullopt;
  }

  static Defect moved(Defect defect, std::size_t distance) {
    defect.place->begin += distance;
    defect.place->end += distance;
    return defect;
  }

  static Defect sqlDefect(const std::string& message) { return {&ruleOf(SchemaRule::Sql), message, {}, {}}; }

  void checkPlan(const Plan& plan) {
    ++totals.methods;
    bool chosen = false;
    bool stopped = false;
    bool changes = false;
    for (const PlanUnit& unit : plan.units()) {
      const std::size_t most = _variantCost > variantBudget ? fewVariants : VariantOptions().maxVariants;
      const VariantOptions options = _standIns.optionsFor(unit, most);
      const UnitVariants variants = variantsOf(unit, options);
      _variantCost += variants.complete ? variants.variants.size() : options.maxVariants;
      const std::size_t checked = checkUnit(unit, variants);
      totals.variants += checked;
      chosen = chosen || !variants.complete;
      stopped = stopped || variants.stopped || checked < variants.variants.size();
      // Later steps meet the tables that this one creates.
      if (plan.units().size() > 1) changes = changeSchema(unit, variants, changes) || changes;
    }
    if (changes) _schema.rollBack();
    totals.chosen += chosen ? 1 : 0;
    totals.stopped += stopped ? 1 : 0;
  }

  bool changeSchema(const PlanUnit& unit, const UnitVariants& variants, bool begun) {
    if (variants.variants.empty()) return false;
    const VariantText text(unit, variants.variants.front().key);
    if (!_schema.prepare(text.sql()).changesSchema) return false;
    if (!begun && !_schema.begin()) return false;
    const Prepared again = _schema.prepare(text.sql());
    if (again.statement) static_cast<void>(_schema.run(*again.statement));
    return true;
  }

  // The defects of a unit. That of variants without a condition counts only if others have one.
  struct UnitDefects {
    VariantFailures failures;
    VariantFailures withoutWhere;
    bool hasWhere = false;
  };

  // The number of variants that were prepared.
  std::size_t checkUnit(const PlanUnit& unit, const UnitVariants& variants) {
    UnitDefects defects;
    std::size_t checked = 0;
    std::size_t bytes = 0;
    for (const Variant& variant : variants.variants) {
      if (bytes > textShare && _textCost + bytes > textBudget) break;
      const VariantText text(unit, variant.key);
      bytes += text.sql().size();
      ++checked;
      checkVariant(unit.plan(), variant, text, defects);
    }
    _textCost += bytes;
    for (const VariantFailure& failure : defects.failures.failures()) reportFailure(unit, variants, failure);
    if (!defects.hasWhere) return checked;
    for (const VariantFailure& failure : defects.withoutWhere.failures()) reportFailure(unit, variants, failure);
    return checked;
  }

  void checkVariant(const Plan& plan, const Variant& variant, const VariantText& text, UnitDefects& defects) {
    const Prepared prepared = _schema.prepare(text.sql());
    seeColumns(plan, prepared);
    if (!prepared.message.empty()) {
      _seen.isComplete = false;
      return defects.failures.add(variant, text, sqlDefect(prepared.message), prepared.offset);
    }
    for (const Defect& defect : defectsOf(plan, text.sql(), prepared)) {
      defects.failures.add(variant, text, defect, static_cast<int>(defect.place->begin));
    }
    if (const auto empty = emptyList(text.sql()); empty && isOneText(text, *empty->place)) {
      defects.failures.add(variant, text, *empty, static_cast<int>(empty->place->begin));
    }
    for (const std::string& table : _schema.indexedTables()) {
      if (scansTable(_schema, text.sql(), table)) defects.failures.add(variant, text, fullScan(text.sql(), table), 0);
    }
    const WhereClause where = whereClauseOf(text.sql());
    defects.hasWhere = defects.hasWhere || where == WhereClause::Present;
    if (where == WhereClause::Missing) defects.withoutWhere.add(variant, text, lostWhere(text.sql()), 0);
  }

  // Whether no loop or other element comes between the two ends.
  static bool isOneText(const VariantText& text, const ByteRange& range) {
    const VariantText::Origin begin = text.originOf(range.begin);
    const VariantText::Origin last = text.originOf(range.end - 1);
    return begin.document == last.document && begin.begin.line == last.begin.line &&
           begin.begin.column == last.begin.column && last.decoded - begin.decoded == range.end - 1 - range.begin;
  }

  void seeColumns(const Plan& plan, const Prepared& prepared) {
    if (plan.method().resultType() != QXDAOSelectResultTypeMappedObject) return;
    const std::string map(plan.method().resultTypeName().value_or(std::string_view()));
    if (!prepared.statement) return void(_seen.unknownMaps.insert(map));
    std::set<std::string>& columns = _seen.columnsOfMaps[map];
    for (int column = 0; column < sqlite3_column_count(prepared.statement.get()); ++column) {
      columns.insert(sqlite3_column_name(prepared.statement.get(), column));
    }
  }

  void reportFailure(const PlanUnit& unit, const UnitVariants& variants, const VariantFailure& failure) {
    const VariantText text(unit, failure.example->key);
    const std::string share = shareOf(failure, variants);
    if (_report.addNoteToKnown(unit, text, failure.defect.message, share)) return;
    const bool isPlaced = failure.defect.place.has_value();
    _report.add(unit, text, isPlaced ? failure.defect : searched(text.sql(), failure.defect, failure.offset), share);
  }

  Defect searched(std::string_view sql, Defect defect, int offset) {
    const std::string_view statement = shortStatement(sql, offset);
    const std::size_t begin = offset < 0 ? codeOf(statement).begin : static_cast<std::size_t>(offset);
    defect.place = {begin, std::min(begin + 1, sql.size())};
    const std::size_t cost = statement.size() * statement.size();
    if (!statement.empty() && _searchCost + cost < searchBudget) {
      _searchCost += cost;
      if (const auto found = faultOf(_schema.handle(), statement); found && found->message == defect.message) {
        defect.place = found->place;
        defect.help = found->help;
      }
    }
    if (defect.help.empty() && defect.place->begin < sql.size() && sql[defect.place->begin] == '"')
      defect.help = quotedHelp;
    return defect;
  }

  const DefinitionSet& _set;
  SchemaDatabase& _schema;
  const VerifiedDocuments& _documents;
  FaultReport _report;
  StandIns _standIns;
  SeenUse _seen;
  std::size_t _searchCost = 0;
  std::size_t _variantCost = 0;
  std::size_t _textCost = 0;
};

Verification::Verification(const DefinitionSet& set, SchemaDatabase& schema, const VerifiedDocuments& documents)
    : _work(std::make_unique<Work>(set, schema, documents)) {}

Verification::~Verification() = default;

void Verification::runUpgrades() { _work->runUpgrades(); }

bool Verification::checkMethods(const std::function<bool()>& goesOn) { return _work->checkMethods(goesOn); }

void Verification::checkSet(bool isWhole) { _work->checkSet(isWhole); }

const VerificationTotals& Verification::totals() const { return _work->totals; }

std::vector<Finding> Verification::takeFindings() { return _work->takeFindings(); }

}  // namespace korvex::verification
