// What stands in for the names that only a call knows: the assigned table, and the keys of a format.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "korvex/Plan.h"
#include "plan/Variants.h"
#include "verification/SchemaDatabase.h"

namespace korvex::verification {

class StandIns {
 public:
  // The schema must outlive the object.
  explicit StandIns(SchemaDatabase& schema) : _schema(schema) {}

  // The tables and columns of the schema, which are tried; call it when the schema is complete.
  void readNames();
  // Names with which the first variant of a unit can be prepared, if there are any. They live as long as the object.
  [[nodiscard]] VariantOptions optionsFor(const PlanUnit& unit, std::size_t maxVariants);

 private:
  [[nodiscard]] bool isFine(const PlanUnit& unit, VariantOptions options);

  SchemaDatabase& _schema;
  std::vector<std::string> _tables;
  std::vector<std::string> _columns;
  std::size_t _trials = 0;
};

}  // namespace korvex::verification
