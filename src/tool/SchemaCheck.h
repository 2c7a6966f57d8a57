// Checks the SQL of definitions against a schema.
#pragma once

#include <cstddef>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "checks/Finding.h"
#include "korvex/Document.h"
#include "verification/RunnableSet.h"
#include "verification/SchemaDatabase.h"
#include "verification/Verification.h"

namespace korvex {

struct SchemaCheckResult {
  std::vector<Finding> findings;
  std::string unreadable;  // why the schema cannot be read; empty if it can
  verification::VerificationTotals totals;
};

class SchemaCheck {
 public:
  // The documents of the set, in their order.
  void add(const std::string& path, std::unique_ptr<Document> document);

  // `source` is "upgrades", or the path of an SQL script or of a database.
  [[nodiscard]] SchemaCheckResult run(const std::string& source, const verification::AppExtensions& extensions);

 private:
  [[nodiscard]] bool isInRejected(const verification::VerifiedDocument& document, std::size_t offset) const;

  void removeSuppressed(std::vector<Finding>& findings) const;

  std::vector<verification::NamedDocument> _documents;
  verification::VerifiedDocuments _verified;
  std::set<const Finding::InDefinition*> _rejected;
};

// "12 methods in 96 variants agree with ...", as a line.
[[nodiscard]] std::string describe(const verification::VerificationTotals& totals);

}  // namespace korvex
