#include "verification/StandIns.h"

#include <string_view>

namespace korvex::verification {
namespace {

// Of all units, for documents with very many that fit no name.
constexpr std::size_t maxTrials = 200000;
// Nearly every table has it.
constexpr std::string_view anyColumn = "rowid";

}  // namespace

void StandIns::readNames() {
  _tables = _schema.tableNames();
  _columns = _schema.columnNames();
}

VariantOptions StandIns::optionsFor(const PlanUnit& unit, std::size_t maxVariants) {
  VariantOptions options;
  options.maxVariants = maxVariants;
  options.key = anyColumn;
  const bool assigned = unit.plan().method().assignedTable();
  if (assigned && !_tables.empty()) options.table = _tables.front();
  if (unit.fixedText() || isFine(unit, options)) return options;
  const VariantOptions usual = options;
  for (std::size_t table = 0; table < (assigned ? _tables.size() : 1); ++table) {
    if (assigned && !_tables.empty()) options.table = _tables[table];
    for (std::size_t column = 0; column <= _columns.size(); ++column) {
      if (_trials > maxTrials) return usual;
      options.key = column == 0 ? anyColumn : std::string_view(_columns[column - 1]);
      if (isFine(unit, options)) return options;
    }
  }
  return usual;
}

bool StandIns::isFine(const PlanUnit& unit, VariantOptions options) {
  ++_trials;
  options.firstOnly = true;
  const UnitVariants first = variantsOf(unit, options);
  return first.variants.empty() || _schema.prepare(VariantText(unit, first.variants.front().key).sql()).message.empty();
}

}  // namespace korvex::verification
