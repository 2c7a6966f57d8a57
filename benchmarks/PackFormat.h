// Packing and unpacking as every format is measured.
#pragma once

#include <string>

#include "benchmarks/Measuring.h"
#include "benchmarks/Person.h"

namespace korvex::benchmarks {

// A Format has an Object, objects of which somebody() makes and isSomebody() recognises, and
//   static Bytes pack(const Object&);             into bytes that are its own
//   static void unpack(Object&, const Bytes&);    into an object that is still blank
// Made and destroyed inside the clock: the bytes when packing, the object when unpacking.
template <typename Format>
void registerFormat(const std::string& name) {
  using Object = typename Format::Object;
  const auto unpacked = [](const auto& bytes) {
    Object object;
    Format::unpack(object, bytes);
    return object;
  };
  require(Format::isSomebody(unpacked(Format::pack(Format::somebody()))), name + " does not give back what it packs");

  benchmark::RegisterBenchmark(("pack/" + name).c_str(), [](benchmark::State& state) {
    const Object object = Format::somebody();
    for ([[maybe_unused]] auto iteration : state) {
      auto bytes = Format::pack(object);
      benchmark::DoNotOptimize(bytes);
    }
  });
  benchmark::RegisterBenchmark(("unpack/" + name).c_str(), [](benchmark::State& state) {
    const auto bytes = Format::pack(Format::somebody());
    for ([[maybe_unused]] auto iteration : state) {
      Object object;
      Format::unpack(object, bytes);
      benchmark::DoNotOptimize(object);
    }
  });
}

// What a format has that packs the Person itself.
struct PersonFormat {
  using Object = Person;
  static Person somebody() { return benchmarks::somebody(); }
  static bool isSomebody(const Person& person) { return benchmarks::isSomebody(person); }
};

// The peers among the formats.
void registerPackPeers();

}  // namespace korvex::benchmarks
