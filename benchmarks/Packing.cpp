// Objects to packed columns and back: one object beside the peers, wide objects, several threads.
#include <memory>
#include <string>
#include <string_view>

#include "benchmarks/PackFormat.h"
#include "korvex/QXDAOPack.h"
#include "korvex/QXDAOPackEncode.h"

namespace korvex::benchmarks {

namespace {

using namespace std::string_view_literals;

// A pack of these properties, built from its definition.
std::unique_ptr<QXDAOPack> packOf(const std::string& properties) {
  const Loaded loaded = load("<pack as=\"info\" properties=\"" + properties + "\"/>", true);
  auto pack = std::make_unique<QXDAOPack>();
  pack->initWithXML(loaded.document->root());
  require(pack->propertyList().has_value(), "the pack was refused");
  return pack;
}

const QXDAOPack& personPack() {
  static const auto pack = packOf("company, jobTitle, website, accountNumber, visits, rating, subscribed, discount");
  return *pack;
}

struct Ours : PersonFormat {
  static std::optional<std::string> pack(const Person& person) { return personPack().packWithObject(&person); }
  static void unpack(Person& person, const std::optional<std::string>& bytes) {
    personPack().unpackWithObject(&person, *bytes);
  }
};

// Written by hand for this one class, field after field, as one does who wants it fast: what stands
// before a value (length of the name in octal, name, zero byte, encode) is a constant. Texts are not checked.
template <typename Value>
void appendRaw(std::string& bytes, Value value) {
  bytes.append(reinterpret_cast<const char*>(&value), sizeof value);
}

template <typename Scalar>
void appendField(std::string& bytes, std::string_view before, Scalar value) {
  bytes.append(before);
  appendRaw(bytes, value);
}

void appendField(std::string& bytes, std::string_view before, const std::string& text) {
  bytes.append(before);
  appendRaw(bytes, static_cast<QXDAOPackStringLengthType>(text.size()));
  bytes.append(text);
}

std::string packByHand(const Person& person) {
  std::string bytes;
  bytes.reserve(256);
  appendField(bytes, "\015accountNumber\0\x78\0"sv, person.accountNumber);
  if (person.company) appendField(bytes, "\007company\0\xFF\xFF"sv, *person.company);
  if (person.discount) appendField(bytes, "\010discount\0\xA8\0"sv, *person.discount->value<double>());
  if (person.jobTitle) appendField(bytes, "\010jobTitle\0\xFF\xFF"sv, *person.jobTitle);
  appendField(bytes, "\006rating\0\xA8\0"sv, person.rating);
  appendField(bytes, "\012subscribed\0\x01\0"sv, person.subscribed);
  appendField(bytes, "\006visits\0\x54\0"sv, person.visits);
  appendField(bytes, "\007website\0\xFF\xFF"sv, person.website);
  return bytes;
}

void registerHand() {
  require(packByHand(somebody()) == Ours::pack(somebody()), "the record writer and the pack differ");
  benchmark::RegisterBenchmark("pack/hand", [](benchmark::State& state) {
    const Person person = somebody();
    for ([[maybe_unused]] auto iteration : state) {
      auto bytes = packByHand(person);
      benchmark::DoNotOptimize(bytes);
    }
  });
}

template <std::size_t Count>
std::unique_ptr<QXDAOPack> widePack() {
  std::string properties;
  for (std::size_t index = 0; index < Count; ++index) {
    properties.append(index > 0 ? ", " : "").append(WideObject<Count>::nameOf(index));
  }
  return packOf(properties);
}

template <std::size_t Count>
void packWide(benchmark::State& state) {
  const auto pack = widePack<Count>();
  WideObject<Count> object;
  object.fill();
  for ([[maybe_unused]] auto iteration : state) {
    auto bytes = pack->packWithObject(&object);
    benchmark::DoNotOptimize(bytes);
  }
}

template <std::size_t Count>
void unpackWide(benchmark::State& state) {
  const auto pack = widePack<Count>();
  WideObject<Count> object;
  object.fill();
  const std::string bytes = *pack->packWithObject(&object);
  for ([[maybe_unused]] auto iteration : state) {
    pack->unpackWithObject(&object, bytes);
    benchmark::DoNotOptimize(object);
  }
}

// The class is described once; what is made anew is the layout of a pack that has not met it.
template <std::size_t Count>
void layOutWide(benchmark::State& state) {
  const WideObject<Count> object;
  for ([[maybe_unused]] auto iteration : state) {
    const auto pack = widePack<Count>();
    const auto begin = std::chrono::steady_clock::now();
    benchmark::DoNotOptimize(pack->getClassInfoWithObject(&object));
    const auto end = std::chrono::steady_clock::now();
    state.SetIterationTime(std::chrono::duration<double>(end - begin).count());
  }
}

template <std::size_t Count>
void registerWide() {
  const std::string count = std::to_string(Count);
  benchmark::RegisterBenchmark(("pack/wide/" + count).c_str(), packWide<Count>);
  benchmark::RegisterBenchmark(("unpack/wide/" + count).c_str(), unpackWide<Count>);
  benchmark::RegisterBenchmark(("layout/wide/" + count).c_str(), layOutWide<Count>)
      ->UseManualTime()
      ->MinTime(timeOfSmallPart);
}

// Every thread packs an object of its own.
void packOnThreads(benchmark::State& state) {
  const Person person = somebody();
  for ([[maybe_unused]] auto iteration : state) {
    auto bytes = personPack().packWithObject(&person);
    benchmark::DoNotOptimize(bytes);
  }
  state.SetItemsProcessed(state.iterations());
}

}  // namespace

void registerPacking() {
  registerFormat<Ours>("ours");
  registerHand();
  registerPackPeers();
  registerWide<25>();
  registerWide<250>();
  benchmark::RegisterBenchmark("pack/threads", packOnThreads)->Threads(1)->Threads(2)->UseRealTime();
}

}  // namespace korvex::benchmarks
