#include "korvex/Value.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <limits>

namespace korvex {

namespace {

constexpr std::array<std::string_view, 8> typeNames = {"null",   "an integer", "a real",       "a text",
                                                       "a blob", "a list",     "a dictionary", "an object"};

bool sameReals(double left, double right) { return left == right || (std::isnan(left) && std::isnan(right)); }

bool sameEntries(const Dictionary& left, const Dictionary& right) {
  if (left.size() != right.size()) return false;
  return std::all_of(left.begin(), left.end(), [&right](const Dictionary::Entry& entry) {
    const Value* other = right.find(entry.name);
    return other && *other == entry.value;
  });
}

// Below that many entries, linear search is as fast as a hash table.
constexpr std::size_t fewEntries = 12;

}  // namespace

std::string_view nameOf(ValueType type) { return typeNames[static_cast<std::size_t>(type)]; }

bool ValueView::operator==(const ValueView& other) const {
  if (_type != other._type) return false;
  switch (_type) {
    case ValueType::Null:
      return true;
    case ValueType::Integer:
      return _integer == other._integer;
    case ValueType::Real:
      return sameReals(_real, other._real);
    case ValueType::Text:
    case ValueType::Blob:
      return bytes() == other.bytes();
    case ValueType::List:
      return list() == other.list();
    case ValueType::Dictionary:
      return sameEntries(dictionary(), other.dictionary());
    case ValueType::Object:
      return _pointer == other._pointer;
  }
  return false;
}

Value::Value(Dictionary dictionary) : _content(std::make_shared<const Dictionary>(std::move(dictionary))) {}

std::optional<Value> Value::ofUnsigned(std::uint64_t integer) {
  if (!std::in_range<std::int64_t>(integer)) return std::nullopt;
  return Value(static_cast<std::int64_t>(integer));
}

Value Value::copyOf(const ValueView& view) {
  switch (view.type()) {
    case ValueType::Null:
      return {};
    case ValueType::Integer:
      return view.integer();
    case ValueType::Real:
      return view.real();
    case ValueType::Text:
      return view.bytes();
    case ValueType::Blob:
      return blob(std::string(view.bytes()));
    case ValueType::List:
      return view.list();
    case ValueType::Dictionary:
      return view.dictionary();
    case ValueType::Object:
      return reference(view.object());
  }
  return {};
}

ValueView Value::view() const {
  switch (type()) {
    case ValueType::Null:
      return {};
    case ValueType::Integer:
      return ValueView::ofInteger(*std::get_if<std::int64_t>(&_content));
    case ValueType::Real:
      return ValueView::ofReal(*std::get_if<double>(&_content));
    case ValueType::Text:
      return ValueView::ofText(*std::get_if<std::string>(&_content));
    case ValueType::Blob:
      return ValueView::ofBlob(std::get_if<Bytes>(&_content)->bytes);
    case ValueType::List:
      return ValueView::ofList(*list());
    case ValueType::Dictionary:
      return ValueView::ofDictionary(*dictionary());
    case ValueType::Object:
      return ValueView::ofObject(*object());
  }
  return {};
}

Dictionary::Dictionary(std::initializer_list<Entry> entries) {
  _entries.reserve(entries.size());
  for (const Entry& entry : entries) set(entry.name, entry.value);
}

void Dictionary::set(std::string name, Value value) {
  const std::size_t index = indexOf(name);
  if (index < _entries.size()) {
    _entries[index].value = std::move(value);
    return;
  }
  _entries.push_back({std::move(name), std::move(value)});
  if (_entries.size() <= fewEntries) return;
  if (_entries.size() * 2 > _slots.size()) return rebuildSlots();
  remember(index);
}

const Value* Dictionary::find(std::string_view name) const {
  const std::size_t index = indexOf(name);
  return index < _entries.size() ? &_entries[index].value : nullptr;
}

// The entry of that name, or the number of entries.
std::size_t Dictionary::indexOf(std::string_view name) const {
  if (_slots.empty()) {
    const auto found =
        std::find_if(_entries.begin(), _entries.end(), [name](const Entry& entry) { return entry.name == name; });
    return static_cast<std::size_t>(found - _entries.begin());
  }
  const std::size_t mask = _slots.size() - 1;
  for (std::size_t slot = std::hash<std::string_view>()(name) & mask;; slot = (slot + 1) & mask) {
    if (_slots[slot] == 0) return _entries.size();
    if (_entries[_slots[slot] - 1].name == name) return _slots[slot] - 1;
  }
}

void Dictionary::remember(std::size_t index) {
  const std::size_t mask = _slots.size() - 1;
  std::size_t slot = std::hash<std::string_view>()(_entries[index].name) & mask;
  while (_slots[slot] != 0) slot = (slot + 1) & mask;
  _slots[slot] = static_cast<std::uint32_t>(index + 1);
}

void Dictionary::rebuildSlots() {
  std::size_t size = fewEntries * 4;
  while (size < _entries.size() * 4) size *= 2;
  _slots.assign(std::size_t{1} << static_cast<unsigned>(std::ceil(std::log2(size))), 0);
  for (std::size_t index = 0; index < _entries.size(); ++index) remember(index);
}

}  // namespace korvex
