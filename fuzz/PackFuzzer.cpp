// Random objects and random lists of properties: packed, unpacked, equal.
#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <bit>

#include "fuzz/Disagreement.h"
#include "fuzz/Fields.h"
#include "fuzz/Units.h"
#include "korvex/NumberObject.h"
#include "korvex/OptionalString.h"
#include "korvex/QXDAOPackReader.h"
#include "tests/support/Packs.h"
#include "tool/PackedValue.h"

namespace korvex {
namespace {

constexpr std::size_t longestText = 300;

template <typename Scalar>
Scalar scalarFrom(FuzzedDataProvider& source) {
  if constexpr (std::is_same_v<Scalar, bool>)
    return source.ConsumeBool();
  else if constexpr (std::is_same_v<Scalar, float>)
    return std::bit_cast<float>(source.ConsumeIntegral<std::uint32_t>());
  else if constexpr (std::is_same_v<Scalar, double>)
    return std::bit_cast<double>(source.ConsumeIntegral<std::uint64_t>());
  else
    return source.ConsumeIntegral<Scalar>();
}

template <typename... Scalars>
OptionalNumber numberFrom(FuzzedDataProvider& source) {
  using Maker = OptionalNumber (*)(FuzzedDataProvider&);
  constexpr Maker makers[] = {
      [](FuzzedDataProvider& values) { return OptionalNumber(NumberObject(scalarFrom<Scalars>(values))); }...,
      [](FuzzedDataProvider&) { return OptionalNumber(); }};
  return source.PickValueInArray(makers)(source);
}

OptionalString textFrom(FuzzedDataProvider& source) {
  if (source.ConsumeBool()) return std::nullopt;
  return source.ConsumeRandomLengthString(longestText);
}

// A field of an object: how it comes about, and what a packed value keeps of it.
struct Field {
  const char* property;
  void (*fill)(AllTypes& object, FuzzedDataProvider& source);
  void (*keep)(AllTypes& kept, const AllTypes& object);
};

template <auto member>
constexpr Field scalarField(const char* property) {
  return {property,
          [](AllTypes& object, FuzzedDataProvider& source) {
            object.*member = scalarFrom<std::remove_reference_t<decltype(object.*member)>>(source);
          },
          [](AllTypes& kept, const AllTypes& object) { kept.*member = object.*member; }};
}

// Of a text that is UTF-8 what stands before a zero, of any other nothing.
std::string keptOf(const std::string& text) {
  return isWhollyUTF8(text) ? text.substr(0, text.find('\0')) : std::string();
}

constexpr Field fields[] = {
    scalarField<&AllTypes::flag>("flag"),
    scalarField<&AllTypes::c>("c"),
    scalarField<&AllTypes::C>("C"),
    scalarField<&AllTypes::s>("s"),
    scalarField<&AllTypes::S>("S"),
    scalarField<&AllTypes::i>("i"),
    scalarField<&AllTypes::I>("I"),
    scalarField<&AllTypes::l>("l"),
    scalarField<&AllTypes::L>("L"),
    scalarField<&AllTypes::q>("q"),
    scalarField<&AllTypes::Q>("Q"),
    scalarField<&AllTypes::f>("f"),
    scalarField<&AllTypes::d>("d"),
    {"color",
     [](AllTypes& object, FuzzedDataProvider& source) { object.color = Color{source.ConsumeIntegral<std::uint8_t>()}; },
     [](AllTypes& kept, const AllTypes& object) { kept.color = object.color; }},
    {"text", [](AllTypes& object, FuzzedDataProvider& source) { object.text = textFrom(source); },
     [](AllTypes& kept, const AllTypes& object) {
       if (object.text) kept.text = keptOf(*object.text);
     }},
    {"plain", [](AllTypes& object, FuzzedDataProvider& source) { object.plain = textFrom(source).value_or(""); },
     [](AllTypes& kept, const AllTypes& object) { kept.plain = keptOf(object.plain); }},
    {"number",
     [](AllTypes& object, FuzzedDataProvider& source) {
       object.number = numberFrom<bool, std::int8_t, std::uint8_t, std::int16_t, std::uint16_t, std::int32_t,
                                  std::uint32_t, long long, unsigned long long, float, double>(source);
     },
     [](AllTypes& kept, const AllTypes& object) {
       if (object.number) kept.number = object.number;
     }},
    {"friend", [](AllTypes&, FuzzedDataProvider&) {}, [](AllTypes&, const AllTypes&) {}},
    {"missing", [](AllTypes&, FuzzedDataProvider&) {}, [](AllTypes&, const AllTypes&) {}},
};

std::vector<Field> fieldsFrom(FuzzedDataProvider& source) {
  std::vector<Field> chosen;
  const auto count = source.ConsumeIntegralInRange<std::size_t>(2, 24);
  while (chosen.size() < count) chosen.push_back(source.PickValueInArray(fields));
  return chosen;
}

std::string propertiesOf(const std::vector<Field>& chosen) {
  std::string properties;
  for (const Field& field : chosen) properties += (properties.empty() ? "" : ",") + std::string(field.property);
  return properties;
}

void compareRecords(std::string_view value) {
  const PackedValue read = readPackedValue(value);
  expectThat(!read.stop, "the tool reads the value to its end");
  const auto inOrder = [](const QXDAOPackRecord& left, const QXDAOPackRecord& right) { return left.name < right.name; };
  expectThat(std::is_sorted(read.records.begin(), read.records.end(), inOrder),
             "records stand in order of their names");
}

void compare(FuzzedDataProvider& source) {
  const std::vector<Field> chosen = fieldsFrom(source);
  AllTypes object;
  for (const Field& field : fields) field.fill(object, source);
  AllTypes kept;
  for (const Field& field : chosen) field.keep(kept, object);

  const auto pack = packOf(propertiesOf(chosen));
  const std::string value = pack->packWithObject(&object).value();
  AllTypes read;
  pack->unpackWithObject(&read, value);
  expectSame("fields after packing and unpacking", fieldsOf(read), fieldsOf(kept));
  expectSame("the same value once more", hexText(pack->packWithObject(&read).value()), hexText(value));
  compareRecords(value);
}

}  // namespace
}  // namespace korvex

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzedDataProvider source(data, size);
  korvex::compare(source);
  return 0;
}
