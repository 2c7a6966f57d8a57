// Reads a packed column value record by record; the value describes itself, so no class is needed.
// docs/packed-format.md gives the bytes.
#pragma once

#include <cstddef>
#include <string_view>

#include "korvex/Export.h"
#include "korvex/QXDAOElement.h"
#include "korvex/QXDAOPackEncode.h"

namespace korvex {

// One property of a packed value. The views point into the value.
struct QXDAOPackRecord {
  std::size_t offset = 0;  // of the record's first byte in the value
  std::string_view name;
  QXDAOPackEncode encode = QXDAOPackEncodeNone;  // may be a positive number that is no known encode
  std::size_t bytesOffset = 0;                   // of the first byte of `bytes` in the value
  std::string_view bytes;                        // the string, or the scalar in little-endian order
};

enum class QXDAOPackReadStatus {
  Record,     // a record was read
  End,        // the value ends after the last record
  Stopped,    // an encode that ends the reading: 0, or negative other than -1
  Truncated,  // the value ends inside a record
};

// What was being read when a reader ended with Stopped or Truncated.
enum class QXDAOPackPart { Name, Encode, StringLength, String, Scalar };

// Never reads outside the value, whatever its bytes are. The value must outlive the reader.
class KORVEX_EXPORT QXDAOPackReader {
 public:
  explicit QXDAOPackReader(std::string_view value) : _value(value) {}

  // The next record, or why there is none; once that is not Record, it stays so. On Stopped the
  // record holds the offset, the name and the encode; on Truncated what was read before the cut.
  [[nodiscard]] QXDAOPackReadStatus next(QXDAOPackRecord& record);

  // The bytes of the next record's value if the record begins with exactly `head`, all that stands before the value of
  // a scalar or a string of that encode. Otherwise, and when the value ends inside the record, false: nothing has then
  // been read, and next() tells what is there.
  [[nodiscard]] bool nextWithHead(std::string_view head, QXDAOPackEncode encode, std::string_view& bytes);

  // Where the part that ended the reading begins: a byte offset in the value.
  [[nodiscard]] std::size_t offset() const { return _at; }
  [[nodiscard]] QXDAOPackPart part() const { return _part; }

 private:
  // Each reads one part and moves past it; false, without moving, when the value ends inside it.
  [[nodiscard]] inline bool take(QXDAOPackPart part, std::size_t count, std::string_view& bytes);
  template <typename Integer>
  [[nodiscard]] inline bool takeInteger(QXDAOPackPart part, Integer& integer);
  [[nodiscard]] inline bool takeName(std::string_view& name);
  [[nodiscard]] inline bool takeValue(QXDAOPackEncode encode, std::string_view& bytes);

  std::string_view _value;
  std::size_t _at = 0;
  QXDAOPackPart _part = QXDAOPackPart::Name;
  QXDAOPackReadStatus _status = QXDAOPackReadStatus::Record;
};

}  // namespace korvex
