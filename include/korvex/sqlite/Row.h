// From the rows of a select to what the caller wants of them.
#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "korvex/Export.h"
#include "korvex/ModelClass.h"
#include "korvex/Value.h"
#include "korvex/sqlite/Outcome.h"

namespace korvex {

// The row at which a select stands. Valid until the select goes on, and so is what it shows.
class KORVEX_EXPORT Row {
 public:
  class Source;
  explicit Row(Source& source) : _source(&source) {}

  // What the method's "result" says that a row is: a scalar, a Dictionary, an object.
  [[nodiscard]] Outcome<Value> value() const;
  // The first column as the scalar that "result" declares. A failure for other results.
  [[nodiscard]] Outcome<ValueView> scalar() const;
  // Columns by their names; of several columns of one name the last. For results of any kind.
  [[nodiscard]] Dictionary dictionary() const;
  // Fills an object of the class that "result" declares, or of one that derives from it.
  [[nodiscard]] Failure fill(ModelObject& object) const;

  // A failure of this row: what was wanted of it and what is wrong.
  [[nodiscard]] DatabaseError failure(std::string message) const;

 private:
  Source* _source;
};

// How a row becomes a T.
template <typename T>
struct RowReader;

template <>
struct RowReader<Value> {
  static Failure read(const Row& row, Value& value) {
    Outcome<Value> read = row.value();
    if (!read) return std::move(read.error());
    value = std::move(*read);
    return std::nullopt;
  }
};

template <>
struct RowReader<Dictionary> {
  static Failure read(const Row& row, Dictionary& dictionary) {
    dictionary = row.dictionary();
    return std::nullopt;
  }
};

// The scalars; a NULL is a failure, for it has a type of its own: std::optional.
template <typename T>
concept RowScalar = std::is_arithmetic_v<T> || std::same_as<T, std::string> || std::same_as<T, std::vector<std::byte>>;

// Whether a T can hold a view's value; if so, it does.
template <RowScalar T>
[[nodiscard]] bool storeScalar(const ValueView& view, T& scalar) {
  if constexpr (std::same_as<T, std::string>) {
    if (view.type() != ValueType::Text && view.type() != ValueType::Blob) return false;
    scalar.assign(view.bytes());
  } else if constexpr (std::same_as<T, std::vector<std::byte>>) {
    if (view.type() != ValueType::Text && view.type() != ValueType::Blob) return false;
    const auto* begin = reinterpret_cast<const std::byte*>(view.bytes().data());
    scalar.assign(begin, begin + view.bytes().size());
  } else if constexpr (std::same_as<T, bool>) {
    if (view.type() != ValueType::Integer) return false;
    scalar = view.integer() != 0;
  } else if constexpr (std::is_floating_point_v<T>) {
    if (view.type() != ValueType::Real && view.type() != ValueType::Integer) return false;
    scalar = static_cast<T>(view.type() == ValueType::Real ? view.real() : static_cast<double>(view.integer()));
  } else {
    if (view.type() != ValueType::Integer || !std::in_range<T>(view.integer())) return false;
    scalar = static_cast<T>(view.integer());
  }
  return true;
}

template <RowScalar T>
struct RowReader<T> {
  static Failure read(const Row& row, T& scalar) {
    const Outcome<ValueView> view = row.scalar();
    if (!view) return view.error();
    if (view->isNull()) return row.failure("is NULL, and the caller takes no std::optional");
    if (!storeScalar(*view, scalar)) return row.failure("does not fit the type that the caller wants");
    return std::nullopt;
  }
};

template <ModelType T>
struct RowReader<T> {
  static Failure read(const Row& row, T& object) { return row.fill(object); }
};

template <ModelType T>
struct RowReader<std::shared_ptr<T>> {
  static Failure read(const Row& row, std::shared_ptr<T>& object) {
    object = std::make_shared<T>();
    return row.fill(*object);
  }
};

template <RowScalar T>
struct RowReader<std::optional<T>> {
  static Failure read(const Row& row, std::optional<T>& scalar) {
    const Outcome<ValueView> view = row.scalar();
    if (!view) return view.error();
    scalar.reset();
    if (view->isNull()) return std::nullopt;
    return RowReader<T>::read(row, scalar.emplace());
  }
};

template <typename T>
requires(!RowScalar<T>) struct RowReader<std::optional<T>> {
  static Failure read(const Row& row, std::optional<T>& value) { return RowReader<T>::read(row, value.emplace()); }
};

template <typename T>
concept ReadableFromRow = std::default_initializable<T> && requires(const Row& row, T& value) {
  { RowReader<T>::read(row, value) } -> std::same_as<Failure>;
};

// What a call collects its rows in. A T takes one row, and wants it; an optional takes one or none; a vector takes all.
template <typename T>
struct RowCollector {
  static_assert(ReadableFromRow<T>, "a row cannot become this type");
  static constexpr bool takesList = false;
  static constexpr bool mayBeAbsent = false;
  static Failure take(const Row& row, void* target) { return RowReader<T>::read(row, *static_cast<T*>(target)); }
  static void keep(void* target, std::size_t /*rows*/) { *static_cast<T*>(target) = T{}; }
};

template <typename T>
struct RowCollector<std::optional<T>> {
  static_assert(ReadableFromRow<std::optional<T>>, "a row cannot become this type");
  static constexpr bool takesList = false;
  static constexpr bool mayBeAbsent = true;
  static Failure take(const Row& row, void* target) {
    return RowReader<std::optional<T>>::read(row, *static_cast<std::optional<T>*>(target));
  }
  static void keep(void* target, std::size_t /*rows*/) { static_cast<std::optional<T>*>(target)->reset(); }
};

template <typename T>
requires(!RowScalar<std::vector<T>>) struct RowCollector<std::vector<T>> {
  static_assert(ReadableFromRow<T>, "a row cannot become this type");
  static constexpr bool takesList = true;
  static constexpr bool mayBeAbsent = true;
  static Failure take(const Row& row, void* target) {
    auto& list = *static_cast<std::vector<T>*>(target);
    if constexpr (std::same_as<T, bool>) {
      bool value = false;
      Failure failure = RowReader<bool>::read(row, value);
      list.push_back(value);
      return failure;
    } else {
      return RowReader<T>::read(row, list.emplace_back());
    }
  }
  static void keep(void* target, std::size_t rows) { static_cast<std::vector<T>*>(target)->resize(rows); }
};

// Where a call hands its rows to.
struct RowTaker {
  Failure (*take)(const Row& row, void* target);
  void (*keep)(void* target, std::size_t rows);  // forgets the rows behind the first ones; of one row, that one
  void* target;
  bool takesList;
  bool mayBeAbsent;
};

template <typename T>
[[nodiscard]] RowTaker rowTakerOf(T& target) {
  using Collector = RowCollector<T>;
  return {&Collector::take, &Collector::keep, &target, Collector::takesList, Collector::mayBeAbsent};
}

}  // namespace korvex
