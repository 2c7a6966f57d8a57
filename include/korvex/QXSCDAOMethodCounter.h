// Per-method statistics. A method element keeps one counter for the engine; the mapping layer
// declares it and never counts.
#pragma once

#include <cstdint>
#include <map>
#include <string>

namespace korvex {

// A plain record: the engine decides how it counts, writes every field and orders its own threads.
class QXSCDAOMethodCounter {
 public:
  double _allCost = 0;  // seconds
  double _maxCost = 0;  // seconds
  std::uint32_t _invocationCount = 0;
  std::uint32_t _mainThreadCount = 0;
  std::uint32_t _bootupCount = 0;
  std::uint32_t _failureCount = 0;
  std::map<std::string, std::uint32_t> _failureCodes;
};

}  // namespace korvex
