#include "tool/PackedValue.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstring>
#include <optional>
#include <type_traits>

#include "korvex/QXDAOPackEncode.h"
#include "korvex/ScalarTypes.h"
#include "platform/Strings.h"
#include "tool/Hex.h"
#include "tool/VisibleText.h"

namespace korvex {
namespace {

// -------------------------------------------------------------------------------------------
// Scalars

template <typename Scalar>
Scalar scalarOf(std::string_view bytes) {
  Scalar scalar;
  std::memcpy(&scalar, bytes.data(), sizeof scalar);
  return scalar;
}

// The names of NaN and the infinities; null for any other number.
template <typename Float>
const char* nameOfSpecial(Float number) {
  if (std::isnan(number)) return "NaN";
  if (std::isinf(number)) return number < 0 ? "-Infinity" : "Infinity";
  return nullptr;
}

template <typename Scalar>
Json json(std::string_view bytes) {
  const auto scalar = scalarOf<Scalar>(bytes);
  if constexpr (std::is_floating_point_v<Scalar>) {
    if (const char* name = nameOfSpecial(scalar)) return name;
  }
  return scalar;
}

template <typename Scalar>
std::string text(std::string_view bytes) {
  const auto scalar = scalarOf<Scalar>(bytes);
  if constexpr (std::is_floating_point_v<Scalar>) {
    if (const char* name = nameOfSpecial(scalar)) return name;
  }
  std::array<char, 32> digits{};
  return {digits.data(), std::to_chars(digits.begin(), digits.end(), scalar).ptr};
}

// Any byte except 0 is true, but only 1 is ever written.
template <>
Json json<bool>(std::string_view bytes) {
  return bytes.front() != 0;
}

template <>
std::string text<bool>(std::string_view bytes) {
  if (bytes.front() == 0) return "false";
  return bytes.front() == 1 ? "true" : "true (" + hexText(bytes) + ')';
}

template <typename Scalar>
std::string nameOfType() {
  if constexpr (std::is_same_v<Scalar, bool>) return "boolean";
  if constexpr (std::is_floating_point_v<Scalar>) return sizeof(Scalar) == 4 ? "single precision" : "double precision";
  return (std::is_signed_v<Scalar> ? "signed " : "unsigned ") + std::to_string(8 * sizeof(Scalar)) + "-bit";
}

// How the values of one encode are shown.
struct ScalarForm {
  std::string (*name)();
  Json (*json)(std::string_view bytes);
  std::string (*text)(std::string_view bytes);
};

std::optional<ScalarForm> scalarForm(QXDAOPackEncode encode) {
  std::optional<ScalarForm> form;
  anyScalarType([&]<typename Scalar>(const ScalarType<Scalar>& row) {
    if (row.encode == encode) form = ScalarForm{nameOfType<Scalar>, json<Scalar>, text<Scalar>};
    return form.has_value();
  });
  return form;
}

std::string stringText(std::string_view bytes) {
  return isValidUTF8(bytes) ? '"' + visibleText(bytes) + '"' : hexText(bytes, " ") + " (not UTF-8)";
}

// -------------------------------------------------------------------------------------------
// Why reading stopped

// The name of the record that could not be read, in quotes.
std::string quotedName(const QXDAOPackRecord& record) { return '"' + visibleText(record.name) + '"'; }

constexpr const char* partName(QXDAOPackPart part) {
  constexpr const char* names[] = {"name", "encode", "length of the text", "text", "value"};
  return names[static_cast<std::size_t>(part)];
}

std::string reasonOf(QXDAOPackReadStatus status, QXDAOPackPart part, const QXDAOPackRecord& record) {
  if (status == QXDAOPackReadStatus::Stopped) {
    return "encode " + std::to_string(record.encode) + " of " + quotedName(record) + " has no known length";
  }
  const std::string place = std::string("the value ends inside the ") + partName(part);
  return part == QXDAOPackPart::Name ? place + " of a property" : place + " of " + quotedName(record);
}

// -------------------------------------------------------------------------------------------
// JSON

// Null if the bytes are not UTF-8, which JSON cannot represent.
Json utf8Json(std::string_view bytes) { return isValidUTF8(bytes) ? Json(bytes) : Json(); }

Json jsonContent(const QXDAOPackRecord& record) {
  if (record.encode == QXDAOPackEncodeString) return utf8Json(record.bytes);
  const auto form = scalarForm(record.encode);
  return form ? form->json(record.bytes) : Json();
}

Json recordJson(const QXDAOPackRecord& record) {
  return {{"property", utf8Json(record.name)},     {"propertyBytes", hexText(record.name)},
          {"type", packedTypeName(record.encode)}, {"encode", record.encode},
          {"value", jsonContent(record)},          {"offset", record.bytesOffset},
          {"bytes", hexText(record.bytes)}};
}

Json stopJson(const std::optional<PackedStop>& stop) {
  if (!stop) return {};
  return {{"offset", stop->offset}, {"reason", stop->reason}};
}

}  // namespace

PackedValue readPackedValue(std::string_view value) {
  PackedValue read;
  read.size = value.size();
  QXDAOPackReader reader(value);
  QXDAOPackRecord record;
  QXDAOPackReadStatus status = reader.next(record);
  for (; status == QXDAOPackReadStatus::Record; status = reader.next(record)) read.records.push_back(record);
  if (status != QXDAOPackReadStatus::End) {
    read.stop = PackedStop{reader.offset(), reasonOf(status, reader.part(), record)};
  }
  return read;
}

std::string packedTypeName(QXDAOPackEncode encode) {
  if (encode == QXDAOPackEncodeString) return "string";
  const auto form = scalarForm(encode);
  return form ? form->name() : "unknown (" + std::to_string(encode) + ')';
}

std::string packedContentText(const QXDAOPackRecord& record) {
  if (record.encode == QXDAOPackEncodeString) return stringText(record.bytes);
  const auto form = scalarForm(record.encode);
  return form ? form->text(record.bytes) : hexText(record.bytes, " ");
}

Json packedValueJson(const PackedValue& value) {
  Json records = Json::array();
  for (const QXDAOPackRecord& record : value.records) records.push_back(recordJson(record));
  return {{"size", value.size}, {"records", records}, {"stop", stopJson(value.stop)}};
}

}  // namespace korvex
