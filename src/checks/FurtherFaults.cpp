#include "checks/FurtherFaults.h"

#include <memory>
#include <optional>
#include <set>
#include <utility>

#include "checks/RepairedTree.h"
#include "korvex/QXDAOElement.h"
#include "korvex/QXDAOError.h"

namespace korvex {

namespace {

// Each fault takes building the definition once more.
constexpr std::size_t maxFurtherFaults = 20;
constexpr std::size_t maxNodesToCopy = 20'000;

// Absent if the tree has no fault.
std::optional<FurtherFault> faultIn(const RepairedTree& tree, const Places& places) {
  std::optional<QXDAOError> error;
  Definition definition{tree.root(), nullptr, nullptr};
  definition.element = QXDAOElement::elementWithXML(definition.xml, &error);
  if (!error) return std::nullopt;
  definition.error = std::make_unique<QXDAOError>(std::move(*error));
  return FurtherFault{definition.error->rule, std::string(definition.error->message()), culpritOf(definition, places)};
}

}  // namespace

std::vector<FurtherFault> furtherFaults(const Definition& definition, const Culprit& first, const Places& places) {
  std::vector<FurtherFault> faults;
  RepairedTree tree(definition.xml, maxNodesToCopy);
  if (!tree.isWhole()) return faults;
  std::set<std::pair<QXDAORule, std::size_t>> known = {{definition.error->rule, first.place.begin}};
  const Repair* repair = &first.repair;
  while (faults.size() < maxFurtherFaults && tree.repair(*repair)) {
    std::optional<FurtherFault> fault = faultIn(tree, places);
    if (!fault || !known.emplace(fault->rule, fault->culprit.place.begin).second) break;
    repair = &faults.emplace_back(std::move(*fault)).culprit.repair;
  }
  return faults;
}

}  // namespace korvex
