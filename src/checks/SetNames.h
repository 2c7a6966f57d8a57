// The names of the definitions in several documents.
#pragma once

#include <array>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "checks/WarningList.h"
#include "korvex/Definition.h"
#include "korvex/QXDAOPackReader.h"
#include "korvex/XMLNode.h"

namespace korvex {

class SetNames {
 public:
  // Adds a warning for each definition that has the name of an earlier one of its kind.
  void add(const std::vector<Definition>& definitions, WarningList& list);

  // Includes maps that were rejected.
  [[nodiscard]] bool hasMap(const std::string& name) const { return _maps.contains(name); }
  // Whether a map makes objects of that class.
  [[nodiscard]] bool hasClass(const std::string& name) const { return _classes.contains(name); }
  // Sorted.
  [[nodiscard]] std::vector<std::string_view> mapNames() const;

  // A definition by what it shares its name with.
  struct Name {
    std::size_t kind = 0;
    std::string name;
  };
  // Absent for a definition that has no name to share.
  [[nodiscard]] static std::optional<Name> nameOf(const Definition& definition);
  // What is given when several definitions have that name.
  [[nodiscard]] static Warning warningAbout(const Name& name);
  // Whether several definitions have that name, or may have it once the rejected ones are fixed.
  [[nodiscard]] bool isRepeated(const Name& name) const;

 private:
  static constexpr std::size_t kinds = 5;  // of definitions that have names

  void addMap(const XMLNode& map);
  void addRefused(const XMLNode& definition);
  void addNamed(const Name& name, const Definition& definition, WarningList& list);

  // Sorted containers, since documents can make hashes collide.
  using Names = std::set<std::string, std::less<>>;

  std::array<std::map<std::string, Location, std::less<>>, kinds> _first;  // where a name came first
  std::array<Names, kinds> _repeated;
  Names _refused;  // the possible names of rejected definitions
  Names _maps;
  Names _classes;
};

}  // namespace korvex
