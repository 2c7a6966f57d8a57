// A packed column value as the tool reads it, and as data.
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

// Where in a value the reading had to stop, and why.
struct PackedStop {
  std::size_t offset;
  std::string reason;
};

struct PackedValue {
  std::size_t size = 0;                  // in bytes
  std::vector<QXDAOPackRecord> records;  // their views point into the value
  std::optional<PackedStop> stop;        // absent when it was read to its end
};

[[nodiscard]] PackedValue readPackedValue(std::string_view value);

// "string", "signed 32-bit" and so on, "unknown (35)" for a positive number that is no encode.
[[nodiscard]] std::string packedTypeName(QXDAOPackEncode encode);

// What a record holds, for people: a number in as few digits as give it back, "NaN", "Infinity" or
// "-Infinity", a text in quotes; what is no such thing as its bytes in hexadecimal digits.
[[nodiscard]] std::string packedContentText(const QXDAOPackRecord& record);

// The value for programs; docs/tool.md describes it.
[[nodiscard]] Json packedValueJson(const PackedValue& value);

}  // namespace korvex
