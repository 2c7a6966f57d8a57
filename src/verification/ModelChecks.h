// Checks the classes and properties that definitions name against the model classes of the app.
#pragma once

#include <vector>

#include "checks/Finding.h"
#include "korvex/DefinitionSet.h"
#include "verification/ModelList.h"
#include "verification/VerifiedDocuments.h"

namespace korvex::verification {

// Arguments have no declared type. One is taken for an object if its name is that of a class, as in :person and
// :newPerson, or if a class declares more than half of the properties that are read from it; otherwise it may be a
// dictionary, with any keys.
[[nodiscard]] std::vector<Finding> findingsOfModels(const DefinitionSet* set, const VerifiedDocuments& documents,
                                                    const ModelList& models);

}  // namespace korvex::verification
