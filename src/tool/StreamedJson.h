// JSON with one long array, written entry by entry.
#pragma once

#include <cstddef>
#include <iosfwd>
#include <string_view>

#include "tool/ElementJson.h"

namespace korvex {

class StreamedJson {
 public:
  // The array is the member of that name, which is nested that deep and empty in what begin() and end() are given.
  // Without a name, it is the whole.
  StreamedJson(std::ostream& out, std::string_view name, std::size_t depth) : _out(out), _name(name), _depth(depth) {}

  // Writes what stands before the entries. What stands behind them may change until end().
  void begin(const Json& json);
  void add(const Json& entry);
  // Writes what stands behind the entries.
  void end(const Json& json);

 private:
  std::ostream& _out;
  std::string_view _name;
  std::size_t _depth;
  bool _isEmpty = true;
};

}  // namespace korvex
