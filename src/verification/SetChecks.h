// What the definitions of a whole set do not use, or use for nothing.
#pragma once

#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "checks/Finding.h"
#include "korvex/DefinitionSet.h"
#include "verification/SchemaDatabase.h"
#include "verification/VerifiedDocuments.h"

namespace korvex::verification {

// What the statements of a set were seen to use.
struct SeenUse {
  std::map<std::string, std::set<std::string>, std::less<>> columnsOfMaps;  // by the map, those of all selects
  std::set<std::string, std::less<>> unknownMaps;  // those with a select that cannot be prepared
  bool isComplete = true;                          // every definition was built and could be prepared
};

// Without a schema: only arguments that are not used.
[[nodiscard]] std::vector<Finding> findingsOfSet(const DefinitionSet& set, const VerifiedDocuments& documents,
                                                 const SeenUse& seen, SchemaDatabase* schema);

}  // namespace korvex::verification
