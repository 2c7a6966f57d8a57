// Reads a packed column value record by record. The value describes itself, so no class is needed.
//
// A value is a sequence of records without header, padding or terminator. All numbers are little-endian:
//
//   1 byte    n, the length of the name in bytes
//   n bytes   the name, UTF-8
//   1 byte    zero
//   2 bytes   QXDAOPackEncode, signed: -1 for a string, else the type of a scalar
//   string:   4 bytes, m, unsigned; then m bytes, UTF-8
//   scalar:   (encode & 15) bytes, floating-point numbers as in IEEE 754
#pragma once

#include <cstddef>
#include <string_view>

#include "korvex/Export.h"
#include "korvex/QXDAOElement.h"
#include "korvex/QXDAOPackEncode.h"

namespace korvex {

// One property of a packed value. The views point into the value and are valid as long as it is.
struct QXDAOPackRecord {
  std::size_t offset = 0;  // of the record's first byte in the value
  std::string_view name;
  QXDAOPackEncode encode = QXDAOPackEncodeNone;  // may be a positive number without a name
  std::size_t bytesOffset = 0;                   // of the first byte of `bytes` in the value
  std::string_view bytes;                        // the string, or the scalar in little-endian order
};

enum class QXDAOPackReadStatus {
  Record,     // a record was read
  End,        // the value ends after the last record
  Stopped,    // the encode of a record ends the reading: 0, or negative other than -1
  Truncated,  // the value ends inside a record
};

// What was being read when a reader ended with Stopped or Truncated.
enum class QXDAOPackPart { Name, Encode, StringLength, String, Scalar };

// Accepts any bytes and never reads outside the value, which must outlive the reader. A reader belongs to
// one thread.
class KORVEX_EXPORT QXDAOPackReader {
 public:
  explicit QXDAOPackReader(std::string_view value) : _value(value) {}

  // Reads the next record, or tells why there is none. After any status but Record, every further call
  // returns that status. On Stopped the record holds the offset, the name and the encode; on Truncated
  // it holds what was read before the end of the value.
  [[nodiscard]] QXDAOPackReadStatus next(QXDAOPackRecord& record);

  // Reads the next record if it begins with exactly `head`, the bytes before the value of a scalar or a
  // string of that encode, and sets `bytes` to its value. Otherwise, and if the value ends inside the
  // record, returns false and reads nothing; next() then tells what is there.
  [[nodiscard]] bool nextWithHead(std::string_view head, QXDAOPackEncode encode, std::string_view& bytes);

  // Where the part that ended the reading begins, as a byte offset in the value, and which part it is.
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
