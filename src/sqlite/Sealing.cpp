#include "sqlite/Sealing.h"

#include <bit>
#include <cstdint>
#include <optional>
#include <string_view>
#include <utility>

#include "sqlite/Errors.h"

namespace korvex {
namespace {

constexpr std::size_t numberBytes = 8;

std::string numberOf(char type, std::uint64_t bits) {
  std::string plain(1, type);
  for (std::size_t byte = 0; byte < numberBytes; ++byte) plain += static_cast<char>(bits >> (8 * byte));
  return plain;
}

std::uint64_t bitsOf(std::string_view bytes) {
  std::uint64_t bits = 0;
  for (std::size_t byte = numberBytes; byte-- > 0;) bits = bits << 8 | static_cast<unsigned char>(bytes[byte]);
  return bits;
}

std::string withType(char type, std::string_view bytes) {
  std::string plain(1, type);
  return plain.append(bytes);
}

std::string plainOf(const ValueView& value) {
  switch (value.type()) {
    case ValueType::Integer:
      return numberOf('I', static_cast<std::uint64_t>(value.integer()));
    case ValueType::Real:
      return numberOf('R', std::bit_cast<std::uint64_t>(value.real()));
    case ValueType::Text:
      return withType('T', value.bytes());
    default:
      return withType('B', value.bytes());
  }
}

std::optional<Value> valueOf(std::string_view plain) {
  if (plain.empty()) return std::nullopt;
  const std::string_view bytes = plain.substr(1);
  const bool number = bytes.size() == numberBytes;
  switch (plain.front()) {
    case 'I':
      return number ? std::optional(Value(static_cast<std::int64_t>(bitsOf(bytes)))) : std::nullopt;
    case 'R':
      return number ? std::optional(Value(std::bit_cast<double>(bitsOf(bytes)))) : std::nullopt;
    case 'T':
      return Value(bytes);
    case 'B':
      return Value::blob(std::string(bytes));
    default:
      return std::nullopt;
  }
}

DatabaseError cipherError(const char* message) { return databaseError(DatabaseErrorKind::Cipher, message); }

constexpr const char* noCipher = "there is no cipher for what is stored encrypted; give one to DatabaseOptions::cipher";

}  // namespace

Outcome<std::string> sealed(Cipher* cipher, const ValueView& value) {
  if (!cipher) return cipherError(noCipher);
  std::optional<std::string> bytes = cipher->encrypt(plainOf(value));
  if (!bytes) return cipherError("the cipher could not encrypt a value");
  return std::move(*bytes);
}

Outcome<Value> unsealed(Cipher* cipher, const ValueView& stored) {
  if (stored.isNull()) return Value();
  if (!cipher) return cipherError(noCipher);
  if (stored.type() != ValueType::Blob) return cipherError("what is to be decrypted is no BLOB: it was not encrypted");
  const std::optional<std::string> plain = cipher->decrypt(stored.bytes());
  std::optional<Value> value = plain ? valueOf(*plain) : std::nullopt;
  if (!value) return cipherError("the cipher could not decrypt a value");
  return std::move(*value);
}

}  // namespace korvex
