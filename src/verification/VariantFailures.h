// The defects of a unit's variants, those of one cause together.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "plan/Variants.h"
#include "verification/Defect.h"

namespace korvex::verification {

struct VariantFailure {
  Defect defect;                           // in the SQL of the example
  int offset = -1;                         // where SQLite says it is, or it is known to be
  VariantText::Origin origin;              // of the offset
  const Variant* example = nullptr;        // the first that fails
  std::vector<VariantDecision> decisions;  // what all that fail have in common
  std::size_t count = 0;
};

class VariantFailures {
 public:
  // `offset` is negative if it is unknown. The variant must outlive the object.
  void add(const Variant& variant, const VariantText& text, const Defect& defect, int offset);

  [[nodiscard]] const std::vector<VariantFailure>& failures() const { return _failures; }

 private:
  std::vector<VariantFailure> _failures;
};

// "in 48 of 96 variants, for example when withDeleted is false"; empty for the only variant of a unit.
[[nodiscard]] std::string shareOf(const VariantFailure& failure, const UnitVariants& variants);

}  // namespace korvex::verification
