// The names that the definitions of several documents bear.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "checks/WarningList.h"
#include "korvex/Definition.h"
#include "korvex/QXDAOPackReader.h"
#include "korvex/XMLNode.h"

namespace korvex {

class SetNames {
 public:
  // Gives a warning for each definition that bears the name of an earlier one of its kind.
  void add(const std::vector<Definition>& definitions, WarningList& list);

  // A map that was refused counts, too.
  [[nodiscard]] bool hasMap(const std::string& name) const { return _maps.contains(name); }
  [[nodiscard]] std::vector<std::string_view> mapNames() const;

  // A definition by what it shares its name with.
  struct Name {
    std::size_t kind = 0;
    std::string name;
  };
  // Absent for a definition that has no name to share.
  [[nodiscard]] static std::optional<Name> nameOf(const Definition& definition);
  // Whether several definitions bear that name, or may once those that were refused are mended.
  [[nodiscard]] bool isRepeated(const Name& name) const;

 private:
  static constexpr std::size_t kinds = 4;  // of definitions that have names

  void addRefused(const XMLNode& definition);
  void addNamed(const Name& name, const Definition& definition, WarningList& list);

  // Where a name came first.
  struct Place {
    std::size_t document;
    XMLPosition position;
  };

  std::vector<std::string> _documents;  // their paths
  std::array<std::unordered_map<std::string, Place>, kinds> _first;
  std::array<std::unordered_set<std::string>, kinds> _repeated;
  std::unordered_set<std::string> _refused;  // what definitions that were refused may be called
  std::unordered_set<std::string> _maps;
};

}  // namespace korvex
