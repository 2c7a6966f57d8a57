// Checks definition documents, one by one and as a set.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "checks/Finding.h"
#include "checks/SetNames.h"
#include "checks/WarningSelection.h"
#include "korvex/Definition.h"
#include "korvex/Document.h"
#include "korvex/QXDAOPackReader.h"
#include "korvex/SourceText.h"

namespace korvex {

class Suppressions;
struct Suppression;

// The finding for a document that cannot be read. `source` is null if its text could not be read either.
[[nodiscard]] Finding findingOf(const std::string& path, const DocumentError& error,
                                const std::shared_ptr<const SourceText>& source);

// Finds the errors and warnings of documents that belong together. They are passed in one after the other. Their source
// texts are kept, since later findings may refer to them.
class SetCheck {
 public:
  explicit SetCheck(WarningSelection selection = {}) : _selection(std::move(selection)) {}

  // The findings of the next document and its definitions, in the order of their places.
  [[nodiscard]] std::vector<Finding> check(const std::string& path, const Document& document,
                                           const std::vector<Definition>& definitions);
  // Declares that there are no other documents, so that what none of them defines is undefined.
  void treatAsComplete() { _whole = true; }
  // Records a document of the set that cannot be read, so that its definitions are unknown.
  void addUnread() { _complete = false; }

  // The findings that depend on the whole set. Call it once all documents have been checked.
  [[nodiscard]] std::vector<Finding> finish();

 private:
  // A result that names a map, or a class that may be meant to be one. Whether that is wrong is known at the end, and
  // so is whether a comment that suppresses the warning is needed.
  struct MapReference {
    std::string map;
    Warning warning{};
    Finding finding;
    bool suppressed = false;
    std::optional<Finding> unusedSuppression;
  };

  // A comment that suppresses a duplicate-name warning, with the warning to give if the name is unique.
  struct NameSuppression {
    SetNames::Name name;
    Finding unused;
  };

  void addReferences(const std::vector<Definition>& definitions, WarningList& list, Suppressions& suppressions);
  MapReference& addReference(const Definition& definition, std::string_view map, WarningList& list,
                             Suppressions& suppressions, Warning warning = Warning::UndefinedMap);
  [[nodiscard]] bool isFaulty(const MapReference& reference) const;
  void report(Finding finding, std::vector<Finding>& findings) const;
  void reportSuppressions(const std::vector<Definition>& definitions, const WarningList& list,
                          const Suppressions& suppressions, std::vector<Finding>& findings);
  void reportUnused(const Suppression& suppression, const Definition* definition, const WarningList& list,
                    std::vector<Finding>& findings);

  WarningSelection _selection;
  SetNames _names;
  std::vector<MapReference> _references;
  std::vector<NameSuppression> _nameSuppressions;
  bool _whole = false;
  bool _complete = true;
};

// The findings of a single document.
[[nodiscard]] std::vector<Finding> findingsOf(const std::string& path, const Document& document,
                                              const std::vector<Definition>& definitions);

}  // namespace korvex
