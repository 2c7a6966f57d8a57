// Mutated documents by the million, in one process without sanitizers: what a fuzzer that is guided by coverage does
// too slowly.
#pragma once

#include <string_view>

namespace korvex {

enum class Verdict { Doubted, Trusted };

// Aborts with a message when the text is trusted but malformed.
[[nodiscard]] Verdict judge(std::string_view text);

}  // namespace korvex
