// Comments that keep the checks quiet: <!-- korvex: allow NAME --> directly before an element takes away the warnings
// of that name about it. What stands inside the element is not meant.
#pragma once

#include <vector>

#include "checks/WarningList.h"
#include "korvex/QXDAOPackReader.h"

namespace korvex {

struct Silence {
  static constexpr std::size_t none = static_cast<std::size_t>(-1);

  Span comment;
  std::string_view name;
  const Rule* rule = nullptr;  // null when no warning has that name
  std::size_t element = none;  // where the start tag begins of the element that it stands before
  bool used = false;
};

class Silences {
 public:
  explicit Silences(const Places& places);

  // In document order.
  [[nodiscard]] const std::vector<Silence>& all() const { return _silences; }
  // Notes that the warning was silenced; null when nothing silences it.
  const Silence* use(const FoundWarning& warning);

 private:
  std::vector<Silence> _silences;
};

}  // namespace korvex
