#include "korvex/QXDAOPackReader.h"

#include <bit>
#include <cstring>
#include <utility>

#include "dao/mapping/PackEncode.h"

namespace korvex {

static_assert(std::endian::native == std::endian::little, "packed values are copied in the platform's byte order");

namespace {

bool endsReading(QXDAOPackEncode encode) {
  return encode == QXDAOPackEncodeNone || (encode < 0 && encode != QXDAOPackEncodeString);
}

}  // namespace

bool QXDAOPackReader::take(QXDAOPackPart part, std::size_t count, std::string_view& bytes) {
  _part = part;
  if (count > _value.size() - _at) return false;
  bytes = std::string_view(_value.data() + _at, count);
  _at += count;
  return true;
}

template <typename Integer>
bool QXDAOPackReader::takeInteger(QXDAOPackPart part, Integer& integer) {
  std::string_view bytes;
  if (!take(part, sizeof integer, bytes)) return false;
  std::memcpy(&integer, bytes.data(), sizeof integer);
  return true;
}

// The length byte, the name and the byte after it are one part, which is read as a whole or not at all.
// The length decides where the name ends; the value of the byte after it does not matter.
bool QXDAOPackReader::takeName(std::string_view& name) {
  const std::size_t length = static_cast<QXDAOPackNameLengthType>(_value[_at]);
  std::string_view bytes;
  if (!take(QXDAOPackPart::Name, length + 2, bytes)) return false;
  name = std::string_view(bytes.data() + 1, length);
  return true;
}

bool QXDAOPackReader::takeValue(QXDAOPackEncode encode, std::string_view& bytes) {
  if (encode != QXDAOPackEncodeString) return take(QXDAOPackPart::Scalar, valueBytes(encode), bytes);
  QXDAOPackStringLengthType length = 0;
  return takeInteger(QXDAOPackPart::StringLength, length) && take(QXDAOPackPart::String, length, bytes);
}

QXDAOPackReadStatus QXDAOPackReader::next(QXDAOPackRecord& record) {
  if (_status != QXDAOPackReadStatus::Record) return _status;
  record = {};
  record.offset = _at;
  if (_at == _value.size()) return _status = QXDAOPackReadStatus::End;
  if (!takeName(record.name) || !takeInteger(QXDAOPackPart::Encode, record.encode)) {
    return _status = QXDAOPackReadStatus::Truncated;
  }
  if (endsReading(record.encode)) {
    _at -= sizeof record.encode;
    return _status = QXDAOPackReadStatus::Stopped;
  }
  if (!takeValue(record.encode, record.bytes)) _status = QXDAOPackReadStatus::Truncated;
  if (_part != QXDAOPackPart::StringLength) record.bytesOffset = _at - record.bytes.size();
  return _status;
}

bool QXDAOPackReader::nextWithHead(std::string_view head, QXDAOPackEncode encode, std::string_view& bytes) {
  if (_status != QXDAOPackReadStatus::Record || head.size() > _value.size() - _at) return false;
  if (!sameBytes(_value.data() + _at, head.data(), head.size())) return false;
  const std::size_t begin = std::exchange(_at, _at + head.size());
  if (takeValue(encode, bytes)) return true;
  _at = begin;
  return false;
}

}  // namespace korvex
