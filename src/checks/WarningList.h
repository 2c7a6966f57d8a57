// Collects all warnings of a document, whether they are switched on or not.
#pragma once

#include <memory>
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
  // The places are those of the file's source.
  WarningList(const Places& places, std::shared_ptr<const CheckedFile> file)
      : _places(places), _file(std::move(file)) {}

  [[nodiscard]] const Places& places() const { return _places; }
  [[nodiscard]] std::vector<FoundWarning>& warnings() { return _warnings; }

  // Those added from now on are about this definition.
  void setDefinition(const Definition& definition);
  // Adds a warning about an element at a place. The reference is valid until the next one is added.
  Finding& add(Warning warning, const XMLNode& element, Span place, std::string message);

  // Without a message.
  [[nodiscard]] Finding findingAt(const Rule& rule, Span place) const;
  [[nodiscard]] Location locationOf(Span place) const { return {_file, place}; }

 private:
  const Places& _places;
  std::shared_ptr<const CheckedFile> _file;
  const Definition* _definition = nullptr;
  std::shared_ptr<const Finding::InDefinition> _inDefinition;  // null before its first warning
  std::vector<FoundWarning> _warnings;
};

// The part of a finding that describes its definition.
[[nodiscard]] std::shared_ptr<const Finding::InDefinition> inDefinition(const Definition& definition);

}  // namespace korvex
