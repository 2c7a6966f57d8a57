// The findings about SQL: each fault once, with notes on the methods and variants that have it.
#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "checks/Finding.h"
#include "korvex/Plan.h"
#include "markup/Span.h"
#include "plan/Variants.h"
#include "verification/Defect.h"
#include "verification/VerifiedDocuments.h"

namespace korvex::verification {

class FaultReport {
 public:
  // Without documents, nothing is reported. They must outlive the object.
  explicit FaultReport(const VerifiedDocuments& documents) : _documents(documents) {}

  void add(Finding finding) { _findings.push_back(std::move(finding)); }
  // A defect in the text of a variant, whose place is known. `share` says in which variants it is; it may be empty.
  void add(const PlanUnit& unit, const VariantText& text, const Defect& defect, const std::string& share);
  // False if the text has no fault with that message that is reported already.
  bool addNoteToKnown(const PlanUnit& unit, const VariantText& text, const std::string& message,
                      const std::string& share);

  // By document and place.
  [[nodiscard]] std::vector<Finding> take();

 private:
  struct Place;

  [[nodiscard]] Place placeOf(const VariantText::Origin& origin) const;
  [[nodiscard]] Place placeOf(const Plan& plan) const;
  [[nodiscard]] Span spanOf(const VariantText& text, const ByteRange& range) const;
  void addNote(const PlanUnit& unit, Finding& finding, const std::string& share) const;

  const VerifiedDocuments& _documents;
  std::vector<Finding> _findings;
  // Their indices, by place and by message.
  std::map<std::tuple<const VerifiedDocument*, std::size_t, std::string>, std::size_t> _byPlace;
  std::map<std::string, std::vector<std::pair<VariantText::Origin, std::size_t>>> _byMessage;
};

}  // namespace korvex::verification
