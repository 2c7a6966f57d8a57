// Prepares every variant of every method against a schema, and says what fails, where and when.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <vector>

#include "checks/Finding.h"
#include "korvex/DefinitionSet.h"
#include "verification/SchemaDatabase.h"
#include "verification/VerifiedDocuments.h"

namespace korvex::verification {

struct VerificationTotals {
  std::size_t methods = 0;
  std::size_t variants = 0;
  std::size_t chosen = 0;   // methods with so many variants that only a covering choice was prepared
  std::size_t stopped = 0;  // those among them for which even that was too much
};

// The documents must have a source; without any, there are no findings. All references must outlive the object.
class Verification {
 public:
  Verification(const DefinitionSet& set, SchemaDatabase& schema, const VerifiedDocuments& documents);
  ~Verification();

  // Runs the upgrades from the first to the last, so that the schema becomes theirs.
  void runUpgrades();
  // False if goesOn() was false before the last method.
  bool checkMethods(const std::function<bool()>& goesOn = {});
  // What the set does not use, after the methods. Tables only if the set is whole: no definition was left out.
  void checkSet(bool isWhole);

  [[nodiscard]] const VerificationTotals& totals() const;
  // By document and place. A fault in a text that several methods insert is one finding.
  [[nodiscard]] std::vector<Finding> takeFindings();

 private:
  class Work;
  std::unique_ptr<Work> _work;
};

}  // namespace korvex::verification
