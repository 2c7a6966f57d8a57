#include "tool/PrintedSql.h"

#include <ostream>
#include <string>

#include "tool/JsonValues.h"
#include "tool/VisibleText.h"

namespace korvex {
namespace {

ExitCode failAt(const Console& console, const PlanError& error) {
  console.err << error.place.document << ':' << error.place.position.line << ':' << error.place.position.column
              << ": error: " << visibleText(error.message) << '\n';
  return ExitCodeTrouble;
}

// The SQL is printed unescaped, because it is the document's own text.
void printUnit(std::ostream& out, const Assembly& assembly) {
  if (assembly.quits() || assembly.empty()) {
    out << (assembly.quits() ? "-- quits: nothing is run\n" : "-- nothing to run\n");
    return;
  }
  out << assembly.sql() << '\n';
  std::size_t number = 0;
  for (const BoundValue& value : assembly.values()) {
    out << "-- " << ++number << ": " << visibleText(value.name) << " = " << sqlOfValue(value.value)
        << (value.encrypted ? ", encrypted" : "") << '\n';
  }
}

}  // namespace

std::string headingOf(const Plan& plan, std::optional<std::size_t> entry, std::size_t unit) {
  std::string heading;
  if (entry) heading += " entry " + std::to_string(*entry + 1);
  if (plan.structure() == PlanStructure::Steps) heading += " step " + std::to_string(unit + 1);
  if (plan.structure() == PlanStructure::Try) heading += unit == 0 ? " try" : " except";
  return heading.empty() ? heading : "--" + heading + '\n';
}

ExitCode printSql(const Plan& plan, const Arguments& arguments, std::string_view table, const Console& console) {
  Assembly assembly;
  if (const auto error = assembly.begin(plan, arguments, table)) return failAt(console, *error);
  const bool loops = plan.method().foreach ();
  const std::size_t entries = loops ? assembly.entryCount() : 1;
  for (std::size_t entry = 0; entry < entries; ++entry) {
    if (loops) assembly.chooseEntry(entry);
    for (std::size_t unit = 0; unit < plan.units().size(); ++unit) {
      if (const auto error = assembly.assemble(plan.units()[unit])) return failAt(console, *error);
      console.out << headingOf(plan, loops ? std::optional(entry) : std::nullopt, unit);
      printUnit(console.out, assembly);
      if (assembly.quits()) break;
    }
  }
  return ExitCodeNothingFound;
}

}  // namespace korvex
