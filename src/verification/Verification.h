// Prepares every variant of every method against a schema, and says what fails, where and when.
#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "checks/Finding.h"
#include "korvex/DefinitionSet.h"
#include "verification/SchemaDatabase.h"

namespace korvex::verification {

// A document of the set, with its definitions in the order of their places.
struct VerifiedDocument {
  std::shared_ptr<const CheckedFile> file;
  std::vector<std::shared_ptr<const Finding::InDefinition>> definitions;

  // The definition that holds a place; null before the first one.
  [[nodiscard]] const std::shared_ptr<const Finding::InDefinition>* definitionAt(std::size_t offset) const;
};
// By the name under which the set knows it.
using VerifiedDocuments = std::map<std::string, VerifiedDocument, std::less<>>;

struct VerificationTotals {
  std::size_t methods = 0;
  std::size_t variants = 0;
  std::size_t chosen = 0;   // methods with so many variants that only a covering choice was prepared
  std::size_t stopped = 0;  // those among them for which even that was too much
};

// The documents must have a source. All references must outlive the object.
class Verification {
 public:
  Verification(const DefinitionSet& set, SchemaDatabase& schema, const VerifiedDocuments& documents);
  ~Verification();

  // Runs the upgrades from the first to the last, so that the schema becomes theirs.
  void runUpgrades();
  void checkMethods();

  [[nodiscard]] const VerificationTotals& totals() const;
  // By document and place. A fault in a text that several methods insert is one finding.
  [[nodiscard]] std::vector<Finding> takeFindings();

 private:
  class Work;
  std::unique_ptr<Work> _work;
};

// A place in a document as the set tells it; the start of the document if it has no such place.
[[nodiscard]] std::size_t offsetOf(const SourceText& source, const XMLPosition& position);

}  // namespace korvex::verification
