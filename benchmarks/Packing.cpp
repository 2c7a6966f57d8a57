// Objects to packed columns and back: one object beside the peers, wide objects, several threads.
#include <memory>
#include <string>

#include "benchmarks/PackFormat.h"

namespace korvex::benchmarks {

namespace {

// A pack of these properties, built from its definition.
std::unique_ptr<QXDAOPack> packOf(const std::string& properties) {
  std::vector<Definition> definitions = load("<pack as=\"info\" properties=\"" + properties + "\"/>", true);
  auto* pack = QXDAOElementCast<QXDAOPack>(definitions.front().element.get());
  require(pack != nullptr, "the pack was refused");
  static_cast<void>(definitions.front().element.release());
  return std::unique_ptr<QXDAOPack>(pack);
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

// The records as one writes them by hand for a class that is known: names and encodes are constants,
// each part is appended to a string. Texts are taken as they are, unchecked.
class RecordsByHand {
 public:
  RecordsByHand() { _bytes.reserve(1024); }

  template <typename Scalar>
  void append(std::string_view name, QXDAOPackEncode encode, Scalar value) {
    appendName(name, encode);
    appendBytes(value);
  }

  void append(std::string_view name, std::string_view text) {
    appendName(name, QXDAOPackEncodeString);
    appendBytes(static_cast<QXDAOPackStringLengthType>(text.size()));
    _bytes.append(text);
  }

  std::string bytes() && { return std::move(_bytes); }

 private:
  void appendName(std::string_view name, QXDAOPackEncode encode) {
    _bytes.push_back(static_cast<char>(name.size()));
    _bytes.append(name);
    _bytes.push_back('\0');
    appendBytes(encode);
  }

  template <typename Value>
  void appendBytes(Value value) {
    _bytes.append(reinterpret_cast<const char*>(&value), sizeof value);
  }

  std::string _bytes;
};

std::string packByHand(const Person& person) {
  RecordsByHand records;
  records.append("accountNumber", QXDAOPackEncodeInt64, person.accountNumber);
  if (person.company) records.append("company", *person.company);
  if (person.discount) records.append("discount", QXDAOPackEncodeDouble, *person.discount->value<double>());
  if (person.jobTitle) records.append("jobTitle", *person.jobTitle);
  records.append("rating", QXDAOPackEncodeDouble, person.rating);
  records.append("subscribed", QXDAOPackEncodeBOOL, person.subscribed);
  records.append("visits", QXDAOPackEncodeInt32, person.visits);
  records.append("website", person.website);
  return std::move(records).bytes();
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
  benchmark::RegisterBenchmark(("layout/wide/" + count).c_str(), layOutWide<Count>)->UseManualTime();
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
