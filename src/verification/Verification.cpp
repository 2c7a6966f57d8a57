#include "verification/Verification.h"

#include <sqlite3.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>
#include <tuple>
#include <utility>

#include "korvex/Plan.h"
#include "plan/SourcePlaces.h"
#include "plan/Variants.h"
#include "verification/SqlFault.h"
#include "verification/VariantFailures.h"

namespace korvex::verification {
namespace {

// Bounds for documents with very many faults.
constexpr std::size_t maxSearches = 2000;
constexpr std::size_t maxNotes = 20;
constexpr std::size_t maxFindings = 10000;
constexpr std::size_t maxStandInTrials = 200000;

constexpr std::string_view severalStatements = "the SQL goes on after its first statement, which alone would run";
constexpr std::string_view severalStatementsHelp = "Make each statement a step of its own.";
constexpr std::string_view writingSelect = "a select cannot change data";
constexpr std::string_view writingSelectHelp = "Make the method an insert, an update or a delete.";

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

std::size_t offsetOf(const SourceText& source, const XMLPosition& position) {
  const std::string_view line = source.line(position.line);
  if (!line.data()) return 0;
  std::size_t at = 0;
  for (std::size_t column = 1; at < line.size(); ++at) {
    const bool begins = (static_cast<unsigned char>(line[at]) & 0xC0U) != 0x80U;
    if (begins && column++ == position.column) break;
  }
  return static_cast<std::size_t>(line.data() - source.text().data()) + at;
}

const std::shared_ptr<const Finding::InDefinition>* VerifiedDocument::definitionAt(std::size_t offset) const {
  const auto behind = std::upper_bound(definitions.begin(), definitions.end(), offset,
                                       [](std::size_t at, const auto& next) { return at < next->offset; });
  return behind == definitions.begin() ? nullptr : &*std::prev(behind);
}

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

  void checkMethods() {
    _tables = _schema.tableNames();
    _columns = _schema.columnNames();
    for (const Plan* plan : _set.plans()) checkPlan(*plan);
  }

  VerificationTotals totals;
  std::vector<Finding> findings;

 private:
  // What failed, in the text of a variant.
  struct Fault {
    std::string message;
    std::string help;
    ByteRange place;
  };

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

  std::optional<Fault> runText(const std::string& sql) {
    const Prepared prepared = _schema.prepare(sql);
    if (!prepared.message.empty()) return faultIn(sql, prepared.message, prepared.offset);
    if (const auto rest = statementAfter(sql, prepared.end)) {
      return Fault{std::string(severalStatements), std::string(severalStatementsHelp), *rest};
    }
    if (!prepared.statement) return std::nullopt;
    const auto message = _schema.run(*prepared.statement);
    return message ? std::optional(Fault{*message, {}, wholeOf(sql)}) : std::nullopt;
  }

  void checkPlan(const Plan& plan) {
    ++totals.methods;
    bool chosen = false;
    bool stopped = false;
    bool changes = false;
    for (const PlanUnit& unit : plan.units()) {
      VariantOptions options = optionsFor(unit);
      const UnitVariants variants = variantsOf(unit, options);
      chosen = chosen || !variants.complete;
      stopped = stopped || variants.stopped;
      totals.variants += variants.variants.size();
      checkUnit(unit, variants);
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

  void checkUnit(const PlanUnit& unit, const UnitVariants& variants) {
    VariantFailures failures;
    for (const Variant& variant : variants.variants) {
      const VariantText text(unit, variant.key);
      const Prepared prepared = _schema.prepare(text.sql());
      if (!prepared.message.empty()) {
        failures.add(variant, text, prepared.message, prepared.offset);
      } else {
        checkPrepared(unit, variant, text, prepared, failures);
      }
    }
    for (const VariantFailure& failure : failures.failures()) reportFailure(unit, variants, failure);
  }

  static void checkPrepared(const PlanUnit& unit, const Variant& variant, const VariantText& text,
                            const Prepared& prepared, VariantFailures& failures) {
    if (const auto rest = statementAfter(text.sql(), prepared.end)) {
      return failures.add(variant, text, std::string(severalStatements), static_cast<int>(rest->begin));
    }
    const bool select = unit.plan().operation() == QXDAOOperationSelect;
    if (!select || !prepared.statement || sqlite3_stmt_readonly(prepared.statement.get()) != 0) return;
    failures.add(variant, text, std::string(writingSelect), static_cast<int>(wholeOf(text.sql()).begin));
  }

  void reportFailure(const PlanUnit& unit, const UnitVariants& variants, const VariantFailure& failure) {
    const VariantText text(unit, failure.example->key);
    const std::string share = shareOf(failure, variants);
    if (noteKnown(unit, text, failure.message, share)) return;
    report(unit, text, faultOfFailure(text.sql(), failure), share);
  }

  Fault faultOfFailure(const std::string& sql, const VariantFailure& failure) {
    if (failure.message == severalStatements) {
      return {failure.message, std::string(severalStatementsHelp), *statementAfter(sql, failure.offset)};
    }
    if (failure.message == writingSelect) return {failure.message, std::string(writingSelectHelp), firstToken(sql)};
    return faultIn(sql, failure.message, failure.hasOffset ? static_cast<int>(failure.offset) : -1);
  }

  Fault faultIn(const std::string& sql, const std::string& message, int offset) {
    if (_searches++ < maxSearches) {
      if (const auto found = faultOf(_schema.handle(), sql); found && found->message == message) {
        return {message, found->help, found->place};
      }
    }
    const std::size_t begin = offset < 0 ? wholeOf(sql).begin : static_cast<std::size_t>(offset);
    return {message, {}, {begin, std::min(begin + 1, sql.size())}};
  }

  static ByteRange wholeOf(std::string_view sql) {
    const auto tokens = tokensOf(sql);
    return tokens.empty() ? ByteRange{} : ByteRange{tokens.front().begin, tokens.back().end};
  }
  static ByteRange firstToken(std::string_view sql) {
    const auto tokens = tokensOf(sql);
    return tokens.empty() ? ByteRange{} : tokens.front();
  }

  // What follows a statement and its ";".
  static std::optional<ByteRange> statementAfter(std::string_view sql, std::size_t end) {
    for (const auto& [begin, tokenEnd] : tokensOf(sql.substr(end))) {
      if (sql[end + begin] != ';') return ByteRange{end + begin, end + tokenEnd};
    }
    return std::nullopt;
  }

  // A table for "@T" and a column for the keys of formats, with which the first variant can be prepared.
  VariantOptions optionsFor(const PlanUnit& unit) {
    VariantOptions options;
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

  void report(const PlanUnit& unit, const VariantText& text, const Fault& fault, const std::string& share) {
    if (findings.size() >= maxFindings) return;
    const VariantText::Origin origin = text.originOf(fault.place.begin);
    const Place place = placeOf(origin);
    Finding finding;
    finding.rule = &ruleOf(SchemaRule::Sql);
    finding.severity = finding.rule->severity;
    finding.location = {place.document->file, spanOf(text, fault.place)};
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
  std::size_t _searches = 0;
  std::size_t _trials = 0;
  // The findings, by their places and by their messages.
  std::map<std::tuple<const VerifiedDocument*, std::size_t, std::string>, std::size_t> _byPlace;
  std::map<std::string, std::vector<std::pair<VariantText::Origin, std::size_t>>> _origins;
};

Verification::Verification(const DefinitionSet& set, SchemaDatabase& schema, const VerifiedDocuments& documents)
    : _work(std::make_unique<Work>(set, schema, documents)) {}

Verification::~Verification() = default;

void Verification::runUpgrades() { _work->runUpgrades(); }

void Verification::checkMethods() { _work->checkMethods(); }

const VerificationTotals& Verification::totals() const { return _work->totals; }

std::vector<Finding> Verification::takeFindings() {
  std::stable_sort(_work->findings.begin(), _work->findings.end(), comesBefore);
  return std::move(_work->findings);
}

}  // namespace korvex::verification
