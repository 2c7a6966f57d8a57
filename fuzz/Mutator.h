// Millions of mutated documents in one process without sanitizers, for which a coverage-guided fuzzer is too slow.
#pragma once

#include <string_view>

namespace korvex {

enum class Verdict { Doubted, Trusted };

// Aborts with a message if the quick check trusts a malformed text.
[[nodiscard]] Verdict judge(std::string_view text);

}  // namespace korvex
