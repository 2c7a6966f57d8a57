// A packed column value, as records and as JSON.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "korvex/QXDAOPackEncode.h"
#include "korvex/QXDAOPackReader.h"
#include "tool/ElementJson.h"

namespace korvex {

// Where and why reading a value stopped early.
struct PackedStop {
  std::size_t offset;
  std::string reason;
};

struct PackedValue {
  std::size_t size = 0;                  // in bytes
  std::vector<QXDAOPackRecord> records;  // their views point into the value
  std::optional<PackedStop> stop;        // absent if the value was read completely
};

[[nodiscard]] PackedValue readPackedValue(std::string_view value);

// "string", "signed 32-bit" and so on, "unknown (35)" for an unknown positive encode.
[[nodiscard]] std::string packedTypeName(QXDAOPackEncode encode);

// The content of a record for people: a number with the fewest digits that restore it, "NaN", "Infinity" or
// "-Infinity", or quoted text; anything else as bytes in hexadecimal digits.
[[nodiscard]] std::string packedContentText(const QXDAOPackRecord& record);

// The value as JSON, described in docs/tool.md.
[[nodiscard]] Json packedValueJson(const PackedValue& value);

}  // namespace korvex
