// Any bytes as a packed value, unpacked into an object with a field of every kind, and read by the tool's reader. Both
// must stop where a simple reader does, and the bytes after that position must not affect the object.
#include <sstream>

#include "fuzz/Disagreement.h"
#include "fuzz/Fields.h"
#include "fuzz/Input.h"
#include "fuzz/Units.h"
#include "korvex/QXDAOPack.h"
#include "korvex/QXDAOPackReader.h"
#include "tests/support/Packs.h"
#include "tool/PackedTable.h"
#include "tool/PackedValue.h"

namespace korvex {
namespace {

// How far a value can be read.
struct Reading {
  std::size_t end = 0;  // of the last whole record
  std::size_t records = 0;
  bool stopped = false;  // by an encode, not by the end of the value
};

// Takes a little-endian number off the front; false when the bytes do not suffice.
bool takeNumber(std::string_view& bytes, std::size_t width, std::size_t& number) {
  if (bytes.size() < width) return false;
  number = 0;
  for (std::size_t at = width; at > 0; --at) number = number * 256 + static_cast<unsigned char>(bytes[at - 1]);
  bytes.remove_prefix(width);
  return true;
}

bool skip(std::string_view& bytes, std::size_t count) {
  if (bytes.size() < count) return false;
  bytes.remove_prefix(count);
  return true;
}

// Takes a record off the front; false when it is cut short or its encode ends the reading.
bool takeRecord(std::string_view& bytes, bool& stopped) {
  constexpr std::size_t stringEncode = 0xFFFF;
  std::size_t length = 0;
  std::size_t encode = 0;
  if (!takeNumber(bytes, 1, length) || !skip(bytes, length + 1) || !takeNumber(bytes, 2, encode)) return false;
  if (encode == stringEncode) return takeNumber(bytes, 4, length) && skip(bytes, length);
  stopped = encode == 0 || encode > 0x7FFF;
  return !stopped && skip(bytes, encode % 16);
}

Reading readPlainly(std::string_view value) {
  Reading reading;
  for (std::string_view rest = value; !rest.empty() && takeRecord(rest, reading.stopped); ++reading.records) {
    reading.end = value.size() - rest.size();
  }
  return reading;
}

const QXDAOPack& packOfEverything() {
  static const auto pack = packOf(std::string(AllTypes::propertyNames) + ",missing,text,i");
  return *pack;
}

void unpack(AllTypes& object, std::string_view value) { packOfEverything().unpackWithObject(&object, value); }

std::vector<std::string> fieldsAfter(std::string_view value) {
  AllTypes object;
  object.fill();
  unpack(object, value);
  expectThat(isWhollyUTF8(object.plain) && isWhollyUTF8(object.text.value_or("")), "texts that are stored are UTF-8");
  static_cast<void>(packOfEverything().packWithObject(&object));
  return fieldsOf(object);
}

void compareReader(std::string_view value, const Reading& reading, const PackedValue& read) {
  expectSame("records read", std::to_string(read.records.size()), std::to_string(reading.records));
  expectSame("read to the end", read.stop ? "no" : "yes", reading.end == value.size() ? "yes" : "no");
  if (read.stop) {
    expectThat(read.stop->offset >= reading.end && read.stop->offset <= value.size(), "the stop is past the records");
    expectSame("stopped by an encode", read.stop->reason.starts_with("encode ") ? "yes" : "no",
               reading.stopped ? "yes" : "no");
  }
}

// A single record must have the same effect as among others.
void compareSingleRecords(std::string_view value, const PackedValue& read, const std::vector<std::string>& fields) {
  AllTypes object;
  object.fill();
  for (const QXDAOPackRecord& record : read.records) {
    const auto end = static_cast<std::size_t>(record.bytes.data() + record.bytes.size() - value.data());
    unpack(object, value.substr(record.offset, end - record.offset));
  }
  expectSame("fields, record by record", fieldsOf(object), fields);
}

// Appended bytes have an effect if and only if the value could be read completely. A truncated record may include the
// appended bytes.
void compareWithRecordBehind(std::string_view value, const Reading& reading, const std::vector<std::string>& fields) {
  const bool whole = reading.end == value.size();
  if (!whole && !reading.stopped) return;
  for (const char* code : {"01", "02"}) {
    std::vector<std::string> wanted = fields;
    if (whole) wanted.at(13) = std::string("color ") + code;
    const std::string record = bytesOfHex(std::string("05 636F6C6F72 00 2100") + code).bytes;
    expectSame("fields with a record behind", fieldsAfter(std::string(value) + record), wanted);
  }
}

void showToUsers(const PackedValue& read) {
  std::ostringstream out;
  printPackedTable(out, read);
  expectThat(Json::accept(jsonText(packedValueJson(read))), "the tool prints JSON");
}

void compare(std::string_view value) {
  const Reading reading = readPlainly(value);
  const PackedValue read = readPackedValue(value);
  const std::vector<std::string> fields = fieldsAfter(value);
  compareReader(value, reading, read);
  expectSame("fields of the whole records", fieldsAfter(value.substr(0, reading.end)), fields);
  compareSingleRecords(value, read, fields);
  compareWithRecordBehind(value, reading, fields);
  showToUsers(read);
}

}  // namespace
}  // namespace korvex

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  korvex::compare(korvex::inputOf(data, size));
  return 0;
}
