#pragma once

#include <memory>
#include <vector>

#include "korvex/Export.h"

namespace korvex {

// The base of values that an engine stores in the slots of elements. A slot owns its value, which is destroyed with the
// element, on the same thread.
class KORVEX_EXPORT QXDAOEngineValue {
 public:
  QXDAOEngineValue() = default;
  QXDAOEngineValue(const QXDAOEngineValue&) = delete;
  QXDAOEngineValue& operator=(const QXDAOEngineValue&) = delete;
  virtual ~QXDAOEngineValue() = default;
};

using QXDAOEngineList = std::vector<std::unique_ptr<QXDAOEngineValue>>;

}  // namespace korvex
