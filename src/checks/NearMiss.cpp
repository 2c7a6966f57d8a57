#include "checks/NearMiss.h"

#include <algorithm>
#include <numeric>
#include <vector>

#include "platform/Strings.h"

namespace korvex {

namespace {

// The number of letters to insert, delete, replace, or exchange with a neighbour.
std::size_t distanceBetween(std::string_view from, std::string_view to) {
  std::vector<std::size_t> beforeLast(to.size() + 1);
  std::vector<std::size_t> last(to.size() + 1);
  std::vector<std::size_t> row(to.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 0; i < from.size(); ++i) {
    beforeLast.swap(last);
    last.swap(row);
    row[0] = i + 1;
    for (std::size_t j = 0; j < to.size(); ++j) {
      row[j + 1] = std::min({last[j + 1] + 1, row[j] + 1, last[j] + (from[i] == to[j] ? 0 : 1)});
      const bool exchanged = i > 0 && j > 0 && from[i] == to[j - 1] && from[i - 1] == to[j];
      if (exchanged) row[j + 1] = std::min(row[j + 1], beforeLast[j - 1] + 1);
    }
  }
  return row.back();
}

std::size_t differenceOf(std::size_t a, std::size_t b) { return a < b ? b - a : a - b; }

// Longer words are not typing errors, and the time to compare two words is proportional to the product of their
// lengths.
constexpr std::size_t maxWordLength = 64;

}  // namespace

std::string_view nearestOf(std::string_view written, std::span<const std::string_view> words) {
  if (written.size() > maxWordLength) return {};
  const std::string lowered = asciiLowerCase(written);
  std::size_t bound = std::max<std::size_t>(1, written.size() / 3) + 1;
  std::string_view nearest;
  for (const std::string_view word : words) {
    if (differenceOf(word.size(), written.size()) >= bound) continue;
    const std::size_t distance = distanceBetween(lowered, asciiLowerCase(word));
    if (distance >= bound) continue;
    bound = distance;
    nearest = word;
  }
  return nearest;
}

std::string didYouMean(std::string_view written, std::span<const std::string_view> words) {
  const std::string_view nearest = nearestOf(written, words);
  return nearest.empty() ? std::string() : "did you mean '" + std::string(nearest) + "'?";
}

}  // namespace korvex
