// Packs the properties of objects into column values.
//
// Fields are read directly through the operations of their ModelField. The layout has chosen the operation once per
// class; getObjectField would choose it for every value.
#include <cstring>
#include <limits>
#include <span>

#include "dao/mapping/PackEncode.h"
#include "dao/mapping/PackLayout.h"
#include "korvex/ModelClass.h"
#include "korvex/NumberObject.h"
#include "korvex/OptionalString.h"
#include "korvex/QXDAOElement.h"
#include "korvex/QXDAOPack.h"
#include "korvex/QXDAOPackEncode.h"
#include "korvex/QXDAOPackReader.h"
#include "platform/Strings.h"

namespace korvex {

namespace {

constexpr std::size_t usualValueSize = 1024;

std::span<const QXDAOPackPropertyInfo> entriesOf(const QXDAOPackClassInfo& layout) {
  return {layout.properties, static_cast<std::size_t>(layout.count)};
}

const char* fieldOf(const ModelObject& object, const QXDAOPackPropertyInfo& entry) {
  return reinterpret_cast<const char*>(&object) + entry.offset;
}

OptionalStringView textOf(const ModelObject& object, const QXDAOPackPropertyInfo& entry) {
  return entry.field->text.get(fieldOf(object, entry));
}

bool fitsRecord(std::string_view text) { return text.size() <= std::numeric_limits<QXDAOPackStringLengthType>::max(); }

// The part of a string that is packed: up to its first zero byte; nothing if the string is not valid UTF-8, or if that
// part is too long for a record.
std::string_view packedForm(std::string_view text) {
  const std::string_view form = text.substr(0, text.find('\0'));
  return fitsRecord(form) && isValidUTF8(text) ? form : std::string_view();
}

// The maximum length of an object's records, with padding for copies in blocks.
std::size_t maxBytes(const QXDAOPackClassInfo& layout, const ModelObject& object) {
  std::size_t bytes = layout.bytesWithoutTexts + headBlock;
  for (const QXDAOPackPropertyInfo& entry : entriesOf(layout)) {
    if (entry.encode != QXDAOPackEncodeString) continue;
    if (const OptionalStringView text = textOf(object, entry)) bytes += text->size();
  }
  return bytes;
}

// Writes records in order into a buffer that is large enough for all of them.
class RecordWriter {
 public:
  explicit RecordWriter(char* room) : _at(room) {}

  [[nodiscard]] const char* end() const { return _at; }

  void write(const QXDAOPackPropertyInfo& entry, const ModelObject& object) {
    switch (entry.encode) {
      case QXDAOPackEncodeNone:
        return;
      case QXDAOPackEncodeString:
        if (const OptionalStringView text = textOf(object, entry)) writeString(entry, *text);
        return;
      case QXDAOPackEncodeNumber:
        if (const OptionalNumber number = entry.field->number.get(fieldOf(object, entry))) writeNumber(entry, *number);
        return;
      default:
        writeHead(entry);
        writeScalar(entry.encode, fieldOf(object, entry));
    }
  }

 private:
  void writeHead(const QXDAOPackPropertyInfo& entry) {
    const std::size_t bytes = headBytes(entry.length);
    for (std::size_t done = 0; done < bytes; done += headBlock) {
      std::memcpy(_at + done, entry.head + done, headBlock);
    }
    _at += bytes;
  }

  void writeScalar(QXDAOPackEncode encode, const void* bytes) {
    copyScalar(_at, bytes, valueBytes(encode));
    _at += valueBytes(encode);
  }

  void writeString(const QXDAOPackPropertyInfo& entry, std::string_view text) {
    QXDAOPackStringLengthType length = 0;
    writeHead(entry);
    char* place = _at + sizeof length;
    if (!fitsRecord(text) || !copyASCIIWithoutZero(text, place)) {
      text = packedForm(text);
      text.copy(place, text.size());
    }
    length = static_cast<QXDAOPackStringLengthType>(text.size());
    std::memcpy(_at, &length, sizeof length);
    _at = place + text.size();
  }

  void writeNumber(const QXDAOPackPropertyInfo& entry, const NumberObject& number) {
    const QXDAOPackEncode encode = convertEncode(number.typeCode());
    if (encode == QXDAOPackEncodeNone) return;
    writeHead(entry);
    std::memcpy(_at - sizeof encode, &encode, sizeof encode);
    writeScalar(encode, number.bytes());
  }

  char* _at;
};

}  // namespace

std::optional<std::string> QXDAOPack::packWithObject(const ModelObject* object) const {
  const QXDAOPackClassInfo* layout = getClassInfoWithObject(object);
  if (!layout) return std::nullopt;
  std::optional<std::string> value(std::in_place);
  value->reserve(usualValueSize);
  value->resize(maxBytes(*layout, *object));
  RecordWriter writer(value->data());
  for (const QXDAOPackPropertyInfo& entry : entriesOf(*layout)) writer.write(entry, *object);
  value->resize(static_cast<std::size_t>(writer.end() - value->data()));
  return value;
}

}  // namespace korvex
