#include "fuzz/PlainListReferences.h"

#include <cstddef>
#include <optional>
#include <vector>

namespace korvex {

namespace {

Units withStar(const Units& format, const Units& star) {
  Units filled;
  for (const char32_t unit : format) {
    if (unit == U'*') {
      filled += star;
    } else {
      filled += unit;
    }
  }
  return filled;
}

Units joined(const Units& format, const std::vector<Units>& stars) {
  Units list;
  for (std::size_t star = 0; star < stars.size(); ++star) {
    if (star > 0) list += U", ";
    list += withStar(format, stars[star]);
  }
  return list;
}

}  // namespace

Units trimmedPlainly(Units units) {
  const Units unwanted = U" \n\t";
  while (!units.empty() && unwanted.find(units.back()) != Units::npos) units.pop_back();
  while (!units.empty() && unwanted.find(units.front()) != Units::npos) units.erase(0, 1);
  return units;
}

std::string expandedPlainly(std::string_view text) {
  const Units expression = unitsOf(text);
  const std::size_t len = expression.size();
  if (len < 8) return std::string(text);

  std::size_t copyBegin = 0;
  char32_t refSymbol = 0;
  std::size_t refBegin = 0;
  std::size_t formatBegin = 0;
  std::optional<Units> format;
  std::vector<Units> stars;
  std::size_t commaCount = 0;
  std::size_t lastComma = 0;
  Units final;
  bool replaced = false;
  const auto range = [&](std::size_t begin, std::size_t end) { return expression.substr(begin, end - begin); };

  for (std::size_t i = 0; i < len; ++i) {
    const char32_t c = expression[i];
    if (c == U'%') {
      refSymbol = U'%';
      continue;
    }
    if (c == U'\'') {
      if (refBegin == 0) {
        refSymbol = 0;
      } else if (formatBegin == 0) {
        formatBegin = i + 1;
      } else {
        format = range(formatBegin, i);
        formatBegin = 0;
      }
      continue;
    }
    if (c == U',') {
      if (refBegin == 0) {
        refSymbol = 0;
      } else if (format) {
        if (commaCount > 0) stars.push_back(trimmedPlainly(range(lastComma + 1, i)));
        commaCount += 1;
        lastComma = i;
      }
      continue;
    }
    if (c == U'{') {
      if (refSymbol == 0 || formatBegin != 0) continue;
      refBegin = i + 1;
      stars.clear();
      commaCount = 0;
      continue;
    }
    if (c == U'}' && format && refBegin != 0) {
      final += range(copyBegin, refBegin - 2);
      if (commaCount > 0) stars.push_back(trimmedPlainly(range(lastComma + 1, i)));
      final += joined(*format, stars);
      format.reset();
      copyBegin = i + 1;
      refBegin = 0;
      replaced = true;
    }
    if (refBegin == 0) refSymbol = 0;
  }

  if (!replaced) return std::string(text);
  if (copyBegin < len) final += range(copyBegin, len);
  return textOf(final);
}

}  // namespace korvex
