#include "verification/VariantFailures.h"

#include <algorithm>

namespace korvex::verification {
namespace {

bool isSamePlace(const VariantText::Origin& left, const VariantText::Origin& right) {
  return left.document == right.document && left.decoded == right.decoded && left.begin.line == right.begin.line &&
         left.begin.column == right.begin.column;
}

}  // namespace

void VariantFailures::add(const Variant& variant, const VariantText& text, const Defect& defect, int offset) {
  const VariantText::Origin origin = text.originOf(static_cast<std::size_t>(std::max(offset, 0)));
  const auto known = std::find_if(_failures.begin(), _failures.end(), [&](const VariantFailure& failure) {
    return failure.defect.rule == defect.rule && failure.defect.message == defect.message &&
           (failure.offset < 0) == (offset < 0) && (offset < 0 || isSamePlace(failure.origin, origin));
  });
  if (known == _failures.end()) {
    _failures.push_back({defect, offset, origin, &variant, variant.decisions, 1});
    return;
  }
  ++known->count;
  std::erase_if(known->decisions, [&variant](const VariantDecision& decision) {
    return std::find(variant.decisions.begin(), variant.decisions.end(), decision) == variant.decisions.end();
  });
}

std::string shareOf(const VariantFailure& failure, const UnitVariants& variants) {
  constexpr std::size_t maxDecisions = 4;
  const std::size_t all = variants.variants.size();
  if (all < 2) return {};
  const std::string total = std::to_string(all) + (variants.complete ? " variants" : " variants tried");
  if (failure.count == all) return "in all " + total;
  std::string share = "in " + std::to_string(failure.count) + " of " + total;
  const auto& decisions = failure.decisions.empty() ? failure.example->decisions : failure.decisions;
  std::size_t told = 0;
  for (const VariantDecision& decision : decisions) {
    if (told == maxDecisions) return share + ", …";
    share += (told++ == 0 ? ", for example when " : " and ") + variants.inWords(decision);
  }
  return share;
}

}  // namespace korvex::verification
