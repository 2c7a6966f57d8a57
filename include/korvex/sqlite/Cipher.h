#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace korvex {

// What encrypts the properties that <crypt> declares and the columns of <pack crypt="true">; the app brings it.
//
// The engine stores what `encrypt` returns as a BLOB. What it hands over begins with one byte for the type ('I' integer
// and 'R' real with 8 bytes, least significant first; 'T' text; 'B' bytes), so that a value comes back as what it was.
// NULL is never encrypted. Several threads call both operations at once.
class Cipher {
 public:
  virtual ~Cipher() = default;
  // Absent when it fails; the call then fails with DatabaseErrorKind::Cipher.
  [[nodiscard]] virtual std::optional<std::string> encrypt(std::string_view plain) = 0;
  // What was given to `encrypt`; absent when these bytes did not come from there.
  [[nodiscard]] virtual std::optional<std::string> decrypt(std::string_view stored) = 0;
};

}  // namespace korvex
