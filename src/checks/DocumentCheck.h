// What is to be said about definition documents: one by one, and as a set.
#pragma once

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

class Silences;
struct Silence;

// The finding of a document that cannot be read; `source` is null when there is no text either.
[[nodiscard]] Finding findingOf(const std::string& path, const DocumentError& error, const SourceText* source);

// The errors and warnings of documents that belong together, given one after the other.
class SetCheck {
 public:
  explicit SetCheck(WarningSelection selection = {}) : _selection(std::move(selection)) {}

  // The findings of the next document and its definitions, in the order of their places.
  [[nodiscard]] std::vector<Finding> check(const std::string& path, const Document& document,
                                           const std::vector<Definition>& definitions);
  // The documents are all there are: what none of them has is nowhere.
  void takeForWhole() { _whole = true; }
  // A document that belongs to the set, but cannot be read: what it defines nobody knows.
  void addUnread() { _complete = false; }

  // Whether finish() may have more to say about the document that was checked last.
  [[nodiscard]] bool hasMoreAbout(const std::string& path) const {
    return (!_references.empty() && _references.back().finding.path == path) ||
           (!_nameSilences.empty() && _nameSilences.back().unused.path == path);
  }
  // What only the whole set can tell, when all documents have been checked.
  [[nodiscard]] std::vector<Finding> finish();

 private:
  // A result that names a map, with the warnings for when there is no such map, or for when there is.
  struct MapReference {
    std::string map;
    Finding finding;
    bool silenced = false;
    std::optional<Finding> unusedSilence;
  };

  // A comment that silences the warning about a name that comes twice, with the warning for when it does not.
  struct NameSilence {
    SetNames::Name name;
    Finding unused;
  };

  void addReferences(const std::vector<Definition>& definitions, WarningList& list, Silences& silences);
  void hand(Finding finding, std::vector<Finding>& findings) const;
  void handSilences(const std::vector<Definition>& definitions, const WarningList& list, const Silences& silences,
                    std::vector<Finding>& findings);
  void handUnused(const Silence& silence, const Definition* definition, const WarningList& list,
                  std::vector<Finding>& findings);

  WarningSelection _selection;
  SetNames _names;
  std::vector<MapReference> _references;
  std::vector<NameSilence> _nameSilences;
  bool _whole = false;
  bool _complete = true;
};

// The findings of a document that stands alone.
[[nodiscard]] std::vector<Finding> findingsOf(const std::string& path, const Document& document,
                                              const std::vector<Definition>& definitions);

}  // namespace korvex
