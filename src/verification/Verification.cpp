#include "verification/Verification.h"

#include <sqlite3.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <iterator>
#include <map>
#include <optional>
#include <tuple>
#include <utility>

#include "korvex/Plan.h"
#include "plan/SourcePlaces.h"
#include "plan/Variants.h"
#include "verification/QueryPlan.h"
#include "verification/SetChecks.h"
#include "verification/SqlFault.h"
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
constexpr std::size_t maxNotes = 20;
constexpr std::size_t maxFindings = 10000;
constexpr std::size_t maxStandInTrials = 200000;

constexpr const char* quotedHelp = "A name is in double quotes; write a text in single quotes.";

std::string titleOf(const Plan& plan) {
  if (plan.operation() != QXDAOOperationUpgrade) return "method '" + std::string(plan.name()) + "'";
  std::array<char, 32> digits{};
  const auto end = std::to_chars(digits.begin(), digits.end(), plan.method().toVersion()).ptr;
  return "the upgrade to " + std::string(digits.data(), end);
}

bool comesBefore(const Finding& left, const Finding& right) {
  return std::pair(std::string_view(left.location.path()), left.location.span.begin) <
         std::pair(std::string_view(right.location.path()), right.location.span.begin);
}

}  // namespace

class Verification::Work {
 public:
  Work(const DefinitionSet& set, SchemaDatabase& schema, const VerifiedDocuments& documents)
      : _set(set), _schema(schema), _documents(documents) {}

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

  void checkSet() {
    std::vector<Finding> found = findingsOfSet(_set, _documents, _seen, &_schema);
    std::move(found.begin(), found.end(), std::back_inserter(findings));
  }

  bool checkMethods(const std::function<bool()>& goesOn) {
    _tables = _schema.tableNames();
    _columns = _schema.columnNames();
    for (const Plan* plan : _set.plans()) {
      if (goesOn && !goesOn()) return false;
      checkPlan(*plan);
    }
    return true;
  }

  VerificationTotals totals;
  std::vector<Finding> findings;

 private:
  // An upgrade has no arguments, so each unit has one text.
  bool runUnit(const PlanUnit& unit, bool reports) {
    const UnitVariants variants = variantsOf(unit);
    for (const Variant& variant : variants.variants) {
      const VariantText text(unit, variant.key);
      const auto fault = runText(text.sql());
      if (fault && reports) report(unit, text, *fault, {});
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
      VariantOptions options = optionsFor(unit);
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

  // The number of variants that were prepared.
  std::size_t checkUnit(const PlanUnit& unit, const UnitVariants& variants) {
    VariantFailures failures;
    VariantFailures withoutWhere;
    bool hasWhere = false;
    std::size_t checked = 0;
    std::size_t bytes = 0;
    for (const Variant& variant : variants.variants) {
      if (bytes > textShare && _textCost + bytes > textBudget) break;
      const VariantText text(unit, variant.key);
      bytes += text.sql().size();
      ++checked;
      const Prepared prepared = _schema.prepare(text.sql());
      seeColumns(unit.plan(), prepared);
      if (!prepared.message.empty()) {
        failures.add(variant, text, sqlDefect(prepared.message), prepared.offset);
        continue;
      }
      for (const Defect& defect : defectsOf(unit.plan(), text.sql(), prepared)) {
        failures.add(variant, text, defect, static_cast<int>(defect.place->begin));
      }
      const WhereClause where = variants.variants.size() > 1 ? whereClauseOf(text.sql()) : WhereClause::NotNeeded;
      hasWhere = hasWhere || where == WhereClause::Present;
      for (const std::string& table : _schema.indexedTables()) {
        if (scansTable(_schema, text.sql(), table)) failures.add(variant, text, fullScan(text.sql(), table), 0);
      }
      if (where == WhereClause::Missing) withoutWhere.add(variant, text, lostWhere(text.sql()), 0);
    }
    _textCost += bytes;
    for (const VariantFailure& failure : failures.failures()) reportFailure(unit, variants, failure);
    if (!hasWhere) return checked;
    for (const VariantFailure& failure : withoutWhere.failures()) reportFailure(unit, variants, failure);
    return checked;
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
    if (noteKnown(unit, text, failure.defect.message, share)) return;
    report(unit, text, failure.defect.place ? failure.defect : searched(text.sql(), failure.defect, failure.offset),
           share);
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

  // A table for "@T" and a column for the keys of formats, with which the first variant can be prepared.
  VariantOptions optionsFor(const PlanUnit& unit) {
    VariantOptions options;
    if (_variantCost > variantBudget) options.maxVariants = fewVariants;
    options.key = "rowid";
    const bool assigned = unit.plan().method().assignedTable();
    if (assigned && !_tables.empty()) options.table = _tables.front();
    if (unit.fixedText() || isFine(unit, options)) return options;
    const VariantOptions usual = options;
    for (std::size_t table = 0; table < (assigned ? _tables.size() : 1); ++table) {
      if (assigned && !_tables.empty()) options.table = _tables[table];
      for (std::size_t column = 0; column <= _columns.size(); ++column) {
        if (_trials > maxStandInTrials) return usual;
        options.key = column == 0 ? std::string_view("rowid") : std::string_view(_columns[column - 1]);
        if (isFine(unit, options)) return options;
      }
    }
    return usual;
  }

  bool isFine(const PlanUnit& unit, VariantOptions options) {
    ++_trials;
    options.firstOnly = true;
    const UnitVariants first = variantsOf(unit, options);
    return first.variants.empty() ||
           _schema.prepare(VariantText(unit, first.variants.front().key).sql()).message.empty();
  }

  // A document with the definition that holds a place.
  struct Place {
    const VerifiedDocument* document = nullptr;
    std::size_t offset = 0;

    [[nodiscard]] const std::shared_ptr<const Finding::InDefinition>* definition() const {
      return document->definitionAt(offset);
    }
  };

  [[nodiscard]] Place placeOf(const VariantText::Origin& origin) const {
    const VerifiedDocument& document = _documents.find(origin.document)->second;
    const SourceText& source = *document.file->source;
    return {&document, sourceOffset(source.text(), offsetOf(source, origin.begin), origin.decoded)};
  }
  [[nodiscard]] Place placeOf(const Plan& plan) const {
    const SourcePlace place = plan.place();
    const VerifiedDocument& document = _documents.find(place.document)->second;
    return {&document, offsetOf(*document.file->source, place.position)};
  }

  // The fault up to its end, unless another text follows there.
  [[nodiscard]] Span spanOf(const VariantText& text, const ByteRange& range) const {
    const VariantText::Origin origin = text.originOf(range.begin);
    const Place begin = placeOf(origin);
    const std::size_t length = std::min(range.end - range.begin, origin.left);
    const SourceText& source = *begin.document->file->source;
    const std::size_t end = length == 0 ? begin.offset + 1 : sourceOffset(source.text(), begin.offset, length);
    return {begin.offset, std::max(end, begin.offset)};
  }

  void report(const PlanUnit& unit, const VariantText& text, const Defect& fault, const std::string& share) {
    if (findings.size() >= maxFindings || _documents.empty()) return;
    const VariantText::Origin origin = text.originOf(fault.place->begin);
    const Place place = placeOf(origin);
    Finding finding;
    finding.rule = fault.rule;
    finding.severity = finding.rule->severity;
    finding.location = {place.document->file, spanOf(text, *fault.place)};
    finding.message = fault.message;
    finding.help = fault.help;
    if (const auto* definition = place.definition()) finding.definition = *definition;
    const auto twin = _byPlace.find({place.document, place.offset, fault.message});
    if (twin != _byPlace.end()) return addNote(unit, findings[twin->second], share);
    _byPlace.emplace(std::tuple(place.document, place.offset, fault.message), findings.size());
    _origins[fault.message].emplace_back(origin, findings.size());
    findings.push_back(std::move(finding));
    addNote(unit, findings.back(), share);
  }

  // Whether the text has a fault that is reported already.
  bool noteKnown(const PlanUnit& unit, const VariantText& text, const std::string& message, const std::string& share) {
    const auto known = _origins.find(message);
    if (known == _origins.end()) return false;
    for (const auto& [origin, finding] : known->second) {
      if (!text.contains(origin)) continue;
      addNote(unit, findings[finding], share);
      return true;
    }
    return false;
  }

  // Tells in which variants, and of which method if the fault is not in the method itself.
  void addNote(const PlanUnit& unit, Finding& finding, const std::string& share) const {
    const Place method = placeOf(unit.plan());
    const auto* definition = method.definition();
    const bool own = definition && *definition == finding.definition;
    if (own && share.empty()) return;
    std::string message = own ? share : "breaks " + titleOf(unit.plan());
    if (!own && !share.empty()) message += " " + share;
    const Location location{method.document->file, {method.offset, method.offset + 1}};
    if (finding.related.size() == maxNotes) message = "and others";
    if (finding.related.size() <= maxNotes) finding.related.push_back({location, std::move(message)});
  }

  const DefinitionSet& _set;
  SchemaDatabase& _schema;
  const VerifiedDocuments& _documents;
  std::vector<std::string> _tables;
  std::vector<std::string> _columns;
  SeenUse _seen;
  std::size_t _searchCost = 0;
  std::size_t _variantCost = 0;
  std::size_t _textCost = 0;
  std::size_t _trials = 0;
  // The findings, by their places and by their messages.
  std::map<std::tuple<const VerifiedDocument*, std::size_t, std::string>, std::size_t> _byPlace;
  std::map<std::string, std::vector<std::pair<VariantText::Origin, std::size_t>>> _origins;
};

Verification::Verification(const DefinitionSet& set, SchemaDatabase& schema, const VerifiedDocuments& documents)
    : _work(std::make_unique<Work>(set, schema, documents)) {}

Verification::~Verification() = default;

void Verification::runUpgrades() { _work->runUpgrades(); }

bool Verification::checkMethods(const std::function<bool()>& goesOn) { return _work->checkMethods(goesOn); }

void Verification::checkSet() { _work->checkSet(); }

const VerificationTotals& Verification::totals() const { return _work->totals; }

std::vector<Finding> Verification::takeFindings() {
  std::stable_sort(_work->findings.begin(), _work->findings.end(), comesBefore);
  return std::move(_work->findings);
}

}  // namespace korvex::verification
