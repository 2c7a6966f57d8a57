// The variants of a unit: every SQL that some arguments can give it.
//
// A condition is tried both ways, a list with 0, 1 and 2 entries, a format with none and one. Outcomes that no
// arguments can have together are left out: each value is followed through all conditions that compare it with literals
// and with nothing else. Conditions that combine several values or calculate count as independent, unless they are
// written alike.
//
// The decisions only depend on the unit, so the same set has the same variants in the same order every time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "korvex/Export.h"
#include "korvex/Plan.h"

namespace korvex {

struct VariantOptions {
  // With more variants, those of a covering choice are given instead.
  std::size_t maxVariants = std::size_t{1} << 16U;
  // The instructions to walk through before giving up.
  std::size_t maxWork = std::size_t{1} << 26U;
  bool firstOnly = false;        // gives one variant only
  std::string_view table = "t";  // stands in for the assigned table
  std::string_view key = "k";    // for the key of a format
};

// What was decided for a question, where both answers were possible.
struct VariantDecision {
  std::uint32_t question = 0;
  std::uint32_t answer = 0;  // 0 or 1 for a condition, otherwise a number of entries

  bool operator==(const VariantDecision&) const = default;
};

struct Variant {
  std::string key;  // as in Assembly
  std::vector<VariantDecision> decisions;
};

struct UnitVariants {
  // With different keys. Without those that are not run: the unit quits, has no SQL, or is refused by the assembly.
  std::vector<Variant> variants;
  // False for a covering choice: all conditions true, all false, each true alone, and every three decisions in each
  // combination that is possible. Whether a list has an entry, and whether it has a second one, are two decisions.
  bool complete = true;
  // Whether even that took too much work, so that some of these are missing.
  bool stopped = false;
  // In words, by question.
  struct Question {
    std::string text;   // "withDeleted", "age > 3"
    bool list = false;  // the answer is a number of entries
    bool null = false;  // the text is compared with null, which answer 1 confirms
  };
  std::vector<Question> questions;

  // "withDeleted is false", "name is not null", "groupIds has 2 entries".
  [[nodiscard]] KORVEX_EXPORT std::string inWords(const VariantDecision& decision) const;
};

[[nodiscard]] KORVEX_EXPORT UnitVariants variantsOf(const PlanUnit& unit, const VariantOptions& options = {});

// The SQL of a variant, with the places that its bytes come from.
class KORVEX_EXPORT VariantText {
 public:
  VariantText(const PlanUnit& unit, std::string_view key);

  [[nodiscard]] const std::string& sql() const { return _sql; }

  // The text or element that the byte at an offset comes from.
  struct Origin {
    std::string_view document;
    XMLPosition begin;        // of the text's first visible character, or of the element
    std::size_t decoded = 0;  // the bytes of the parsed text before the meant one
    std::size_t left = 0;     // and from it to the end of the piece
  };
  [[nodiscard]] Origin originOf(std::size_t offset) const;
  // Whether the SQL contains that byte.
  [[nodiscard]] bool contains(const Origin& origin) const;

 private:
  struct Piece {
    std::size_t offset;
    Origin origin;
  };
  std::string _sql;
  std::vector<Piece> _pieces;
  Origin _unit;
};

}  // namespace korvex
