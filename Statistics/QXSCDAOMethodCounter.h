// Per-method statistics. A method element keeps one counter for the engine; the mapping layer
// declares it and never counts.
#pragma once

#include <cstdint>
#include <map>
#include <string>

namespace korvex {

// A plain record: the engine reads and writes every field and orders its own threads.
class QXSCDAOMethodCounter {
 public:
  double _allCost = 0;                                 // seconds, all invocations together
  double _maxCost = 0;                                 // seconds, the slowest invocation
  std::uint32_t _invocationCount = 0;                  // invocations on any thread
  std::uint32_t _mainThreadCount = 0;                  // invocations on the main thread
  std::uint32_t _bootupCount = 0;                      // invocations while the app starts
  std::uint32_t _failureCount = 0;                     // invocations that failed
  std::map<std::string, std::uint32_t> _failureCodes;  // failure code → how often it was met
};

}  // namespace korvex
