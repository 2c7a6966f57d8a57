#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <vector>

#include "korvex/Plan.h"
#include "plan/ValueReading.h"

namespace korvex {

namespace {

// Two hashes of 64 bits over the same bytes: FNV-1a, and one that multiplies and rotates.
class DigestMaker {
 public:
  void add(const Dictionary& dictionary) {
    std::vector<const Dictionary::Entry*> entries;
    for (const Dictionary::Entry& entry : dictionary) entries.push_back(&entry);
    std::sort(entries.begin(), entries.end(),
              [](const auto* left, const auto* right) { return left->name < right->name; });
    addNumber(entries.size());
    for (const Dictionary::Entry* entry : entries) {
      addBytes(entry->name);
      add(entry->value.view());
    }
  }

  void add(const ValueView& value) {
    addNumber(static_cast<std::uint64_t>(value.type()));
    switch (value.type()) {
      case ValueType::Null:
        return;
      case ValueType::Integer:
        return addNumber(static_cast<std::uint64_t>(value.integer()));
      case ValueType::Real:
        return addReal(value.real());
      case ValueType::Text:
      case ValueType::Blob:
        return addBytes(value.bytes());
      case ValueType::List:
        return add(value.list());
      case ValueType::Dictionary:
        return add(value.dictionary());
      case ValueType::Object:
        return add(value.object());
    }
  }

  [[nodiscard]] std::string result() const {
    std::string bytes;
    for (const std::uint64_t hash : {_first, _second}) {
      for (unsigned shift = 0; shift < 64; shift += 8) bytes += static_cast<char>(hash >> shift);
    }
    return bytes;
  }

 private:
  void add(const ValueList& list) {
    addNumber(list.size());
    for (const Value& entry : list) add(entry.view());
  }

  // An object that contains itself is counted once.
  void add(const ModelObject& object) {
    if (std::find(_open.begin(), _open.end(), &object) != _open.end()) return addNumber(_open.size());
    _open.push_back(&object);
    const ModelClass& modelClass = getClass(object);
    addBytes(modelClass.name);
    for (const ModelClass* level = &modelClass; level; level = level->superclass) {
      for (const ModelProperty& property : level->properties) addProperty(object, property.name);
    }
    _open.pop_back();
  }

  void addProperty(const ModelObject& object, std::string_view name) {
    ValueScope scope;
    ValueFailure failure;
    const auto read = readMember(scope, ValueView::ofObject(object), name, ValueUse::Expression, failure);
    addBytes(name);
    if (read) add(read->value);
  }

  void addReal(double real) {
    std::uint64_t bits = 0;
    std::memcpy(&bits, &real, sizeof bits);
    addNumber(bits);
  }

  void addBytes(std::string_view bytes) {
    addNumber(bytes.size());
    for (const char byte : bytes) mix(static_cast<unsigned char>(byte));
  }

  void addNumber(std::uint64_t number) {
    for (unsigned shift = 0; shift < 64; shift += 8) mix(static_cast<unsigned char>(number >> shift));
  }

  void mix(unsigned char byte) {
    _first = (_first ^ byte) * 0x100000001B3U;
    _second = (_second + byte) * 0x9E3779B97F4A7C15U;
    _second ^= _second >> 29U;
  }

  std::uint64_t _first = 0xCBF29CE484222325U;
  std::uint64_t _second = 0x2545F4914F6CDD1DU;
  std::vector<const ModelObject*> _open;
};

}  // namespace

std::string digestOf(const Arguments& arguments) {
  DigestMaker maker;
  maker.add(arguments);
  return maker.result();
}

}  // namespace korvex
