#pragma once

#include <memory>
#include <utility>

#include "korvex/Export.h"
#include "korvex/sqlite/Outcome.h"
#include "korvex/sqlite/Row.h"

namespace korvex {

// A select, row by row:
//
//   auto cursor = database.cursor("allPersons");
//   if (!cursor) return report(cursor.error());
//   while (cursor->next()) {
//     auto person = cursor->row<Person>();
//     …
//   }
//   if (cursor->failure()) return report(*cursor->failure());
//
// Used by one thread at a time, and destroyed before its database; it keeps a connection until then.
class KORVEX_EXPORT Cursor {
 public:
  class Implementation;
  explicit Cursor(std::unique_ptr<Implementation> implementation);
  Cursor(Cursor&&) noexcept;
  Cursor& operator=(Cursor&&) noexcept;
  ~Cursor();

  // Goes to the next row, at first to the first. False when there is none, or after a failure.
  [[nodiscard]] bool next();
  // Why there is no next row; absent at the end.
  [[nodiscard]] const Failure& failure() const;

  // The row that next() went to.
  [[nodiscard]] Row row() const;
  template <ReadableFromRow T>
  [[nodiscard]] Outcome<T> row() const {
    T value{};
    if (Failure failure = RowReader<T>::read(row(), value)) return std::move(*failure);
    return value;
  }

 private:
  std::unique_ptr<Implementation> _implementation;
};

}  // namespace korvex
