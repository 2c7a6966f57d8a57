// Findings about SQL, which need a schema and all documents of the workspace.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "checks/Finding.h"
#include "lsp/Json.h"
#include "lsp/Workspace.h"
#include "verification/SchemaDatabase.h"

namespace korvex::lsp {

class SchemaDiagnostics {
 public:
  // Reads "schema", "models", "functions", "collations" and "modules" of the client's initializationOptions.
  void configure(const Json& initializeParams, const Workspace& workspace);
  [[nodiscard]] bool isWanted() const { return !_source.empty(); }

  // The findings about open documents, by URI. Absent if goesOn() ended the check, or the schema cannot be read.
  using Findings = std::map<std::string, std::vector<Finding>, std::less<>>;
  [[nodiscard]] std::optional<Findings> check(const Workspace& workspace, const std::function<bool()>& goesOn) const;

 private:
  std::string _source;
  std::string _models;
  verification::AppExtensions _extensions;
};

}  // namespace korvex::lsp
