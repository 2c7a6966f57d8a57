// Collects all warnings of a document, whether they are switched on or not.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "checks/Finding.h"
#include "checks/Places.h"
#include "korvex/Definition.h"
#include "korvex/QXDAOPackReader.h"
#include "korvex/XMLNode.h"

namespace korvex {

struct FoundWarning {
  Finding finding;
  std::size_t element = 0;  // where the start tag begins of the element that it is about
};

class WarningList {
 public:
  WarningList(const Places& places, std::string path) : _places(places), _path(std::move(path)) {}

  [[nodiscard]] const Places& places() const { return _places; }
  [[nodiscard]] const std::string& path() const { return _path; }
  [[nodiscard]] std::vector<FoundWarning>& warnings() { return _warnings; }

  // Those added from now on are about this definition.
  void setDefinition(const Definition& definition) { _definition = &definition; }
  // Adds a warning about an element at a place. The reference is valid until the next one is added.
  Finding& add(Warning warning, const XMLNode& element, Span place, std::string message);

  // Without a message.
  [[nodiscard]] Finding findingAt(const Rule& rule, Span place) const;
  // A place in this document.
  [[nodiscard]] Related relatedAt(Span place, std::string message) const;

 private:
  const Places& _places;
  std::string _path;
  const Definition* _definition = nullptr;
  std::vector<FoundWarning> _warnings;
};

// What a finding says about its definition.
[[nodiscard]] Finding::InDefinition inDefinition(const Definition& definition);

}  // namespace korvex
