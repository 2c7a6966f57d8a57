// Values as a cipher sees them.
#pragma once

#include <string>

#include "korvex/Value.h"
#include "korvex/sqlite/Cipher.h"
#include "korvex/sqlite/Outcome.h"

namespace korvex {

// What is stored for a value that is no null. There is no cipher when it is null.
[[nodiscard]] Outcome<std::string> sealed(Cipher* cipher, const ValueView& value);
// The value that was stored so; null for null.
[[nodiscard]] Outcome<Value> unsealed(Cipher* cipher, const ValueView& stored);

}  // namespace korvex
