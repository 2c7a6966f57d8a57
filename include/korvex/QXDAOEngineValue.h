#pragma once

#include <memory>
#include <vector>

#include "korvex/Export.h"

namespace korvex {

// Whatever an engine keeps in the slots that the elements hold for it: derive from this.
class KORVEX_EXPORT QXDAOEngineValue {
 public:
  QXDAOEngineValue() = default;
  QXDAOEngineValue(const QXDAOEngineValue&) = delete;
  QXDAOEngineValue& operator=(const QXDAOEngineValue&) = delete;
  virtual ~QXDAOEngineValue() = default;
};

using QXDAOEngineList = std::vector<std::unique_ptr<QXDAOEngineValue>>;

}  // namespace korvex
