// Definition documents of any size for the benchmarks, the same on every machine.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace korvex::benchmarks {

// The definitions of an app as its developers write them: methods with and without dynamic
// fragments, blocks, constants, maps and the rest, indented and commented. About 310 bytes each. The
// same count and seed give the same bytes.
[[nodiscard]] std::string believableDocument(std::size_t definitions, std::uint64_t seed = 1);

// Methods that can be run, with up to three conditions and a list, on the tables of a hundred upgrades.
[[nodiscard]] std::string runnableDocument(std::size_t methods);

// Documents of one definition that grows in one way.
[[nodiscard]] std::string methodWithFragments(std::size_t count);
[[nodiscard]] std::string methodWithReferences(std::size_t count);
[[nodiscard]] std::string mapWithColumns(std::size_t count);

// Text of about `bytes` bytes for an SQL method: without a "%", and of nothing but list references.
[[nodiscard]] std::string plainText(std::size_t bytes);
[[nodiscard]] std::string referencesAlone(std::size_t bytes);

}  // namespace korvex::benchmarks
