// The output of a check, in each of the formats.
#pragma once

#include <cstddef>
#include <iosfwd>
#include <memory>

#include "checks/Finding.h"
#include "korvex/QXDAOPackReader.h"
#include "tool/InputFiles.h"

namespace korvex {

enum class CheckFormat { Text, Short, Json, Sarif, Github };

struct CheckTotals {
  std::size_t definitions = 0;
  std::size_t files = 0;  // that could be read
  std::size_t errors = 0;
  std::size_t warnings = 0;
};

// One report, written to the stream that it was created with: finding by finding, or at once at the end.
class CheckReport {
 public:
  CheckReport() = default;
  CheckReport(const CheckReport&) = delete;
  CheckReport& operator=(const CheckReport&) = delete;
  virtual ~CheckReport() = default;

  virtual void add(const Finding& finding) = 0;
  // An input that could not be read; it is also reported on standard error.
  virtual void addUnreadable(const UnreadablePath& /*path*/) {}
  virtual void finish(const CheckTotals& /*totals*/) {}
};

[[nodiscard]] std::unique_ptr<CheckReport> makeCheckReport(CheckFormat format, std::ostream& out, bool color);

}  // namespace korvex
