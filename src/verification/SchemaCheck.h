// Checks the SQL of definitions against a schema.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "checks/Finding.h"
#include "korvex/Document.h"
#include "verification/RunnableSet.h"
#include "verification/SchemaDatabase.h"
#include "verification/SchemaSource.h"
#include "verification/Verification.h"

namespace korvex::verification {

struct SchemaCheckResult {
  std::vector<Finding> findings;
  std::string unreadable;  // why the schema cannot be read; empty if it can
  VerificationTotals totals;
  bool whole = true;  // nothing was left out
};

class SchemaCheck {
 public:
  // The documents of the set, in their order.
  void add(const std::string& path, std::unique_ptr<Document> document);

  // `source` is "upgrades", or the path of an SQL script or of a database. Once goesOn() is false, the rest is left
  // out.
  [[nodiscard]] SchemaCheckResult run(const std::string& source, const AppExtensions& extensions,
                                      const std::function<bool()>& goesOn = {});

 private:
  [[nodiscard]] bool isInRejected(const VerifiedDocument& document, std::size_t offset) const;

  void removeSuppressed(std::vector<Finding>& findings) const;

  std::vector<NamedDocument> _documents;
  VerifiedDocuments _verified;
  std::set<const Finding::InDefinition*> _rejected;
};

}  // namespace korvex::verification
