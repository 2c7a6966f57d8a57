// Comments that suppress warnings: <!-- korvex: allow NAME, NAME --> directly before an element suppresses the
// warnings of those names about it, but not about elements inside it.
#pragma once

#include <map>
#include <utility>
#include <vector>

#include "checks/WarningList.h"
#include "korvex/QXDAOPackReader.h"

namespace korvex {

struct Suppression {
  static constexpr std::size_t none = static_cast<std::size_t>(-1);

  Span comment;
  std::string_view name;
  const Rule* rule = nullptr;  // null when no warning has that name
  std::size_t element = none;  // where the start tag begins of the element that it stands before
  bool used = false;
};

class Suppressions {
 public:
  explicit Suppressions(const Places& places);

  // In document order.
  [[nodiscard]] const std::vector<Suppression>& all() const { return _suppressions; }
  // The last suppression of the warning; null if there is none.
  [[nodiscard]] const Suppression* find(const FoundWarning& warning) const;
  // The same, marked as used.
  const Suppression* use(const FoundWarning& warning);

 private:
  std::vector<Suppression> _suppressions;
  std::map<std::pair<std::size_t, const Rule*>, std::size_t> _lastFor;  // an element and a warning about it → index
};

}  // namespace korvex
