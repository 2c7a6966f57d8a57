// Checks the SQL of definitions against a schema.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "checks/Finding.h"
#include "korvex/Document.h"
#include "verification/ModelList.h"
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
  void add(const std::string& path, std::unique_ptr<Document> document, std::vector<Definition> definitions);

  // The classes and properties that the definitions may name; all, if there are none here.
  void useModels(ModelList models) { _models = std::move(models); }

  // `source` is "upgrades", or the path of an SQL script or of a database. Once goesOn() is false, the rest is left
  // out.
  [[nodiscard]] SchemaCheckResult run(const std::string& source, const AppExtensions& extensions,
                                      const std::function<bool()>& goesOn = {});

  // What needs no schema: classes and properties, the errors that an engine gives when it builds the set, and unused
  // arguments, as warnings. Only the first about documents that seem to be written for an engine with another notation.
  [[nodiscard]] std::vector<Finding> runWithoutSchema(bool isWholeSet) const;

 private:
  void addErrors(const RunnableSet& runnable, const std::function<bool(const DefinitionError&)>& isIgnored,
                 std::vector<Finding>& findings) const;
  [[nodiscard]] bool bindsArguments() const;
  [[nodiscard]] bool bindsByReference(const RunnableSet& runnable) const;
  [[nodiscard]] bool isInRejected(const VerifiedDocument& document, std::size_t offset) const;

  void addModelFindings(const DefinitionSet* set, std::vector<Finding>& findings) const;
  void removeSuppressed(std::vector<Finding>& findings) const;

  std::vector<NamedDocument> _documents;
  VerifiedDocuments _verified;
  ModelList _models;
  std::set<const Finding::InDefinition*> _rejected;
  std::set<std::string, std::less<>> _arguments;  // the names of all
};

}  // namespace korvex::verification
