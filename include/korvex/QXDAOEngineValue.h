#pragma once

#include <memory>
#include <vector>

#include "korvex/Export.h"

namespace korvex {

// The base of the values that an engine keeps in the slots that elements hold for it. The slots own their
// values; an element destroys them on the thread that destroys it.
class KORVEX_EXPORT QXDAOEngineValue {
 public:
  QXDAOEngineValue() = default;
  QXDAOEngineValue(const QXDAOEngineValue&) = delete;
  QXDAOEngineValue& operator=(const QXDAOEngineValue&) = delete;
  virtual ~QXDAOEngineValue() = default;
};

using QXDAOEngineList = std::vector<std::unique_ptr<QXDAOEngineValue>>;

}  // namespace korvex
