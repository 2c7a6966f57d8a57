// The names that the definitions of several documents bear.
#pragma once

#include <array>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "Checks/WarningList.h"

namespace korvex {

class SetNames {
 public:
  // Gives a warning for each definition that bears the name of an earlier one of its kind.
  void add(const std::vector<Definition>& definitions, WarningList& list);

  // A map that was refused counts, too.
  [[nodiscard]] bool hasMap(const std::string& name) const { return _maps.contains(name); }
  [[nodiscard]] std::vector<std::string_view> mapNames() const;

 private:
  static constexpr std::size_t kinds = 4;  // of definitions that have names

  void addNamed(std::size_t kind, const Definition& definition, WarningList& list);

  // Where a name came first.
  struct Place {
    std::size_t document;
    XMLPosition position;
  };

  std::vector<std::string> _documents;  // their paths
  std::array<std::unordered_map<std::string, Place>, kinds> _first;
  std::unordered_set<std::string> _maps;
};

}  // namespace korvex
