#include "verification/FaultReport.h"

#include <algorithm>
#include <string_view>

#include "plan/PlanTitle.h"
#include "plan/SourcePlaces.h"

namespace korvex::verification {
namespace {

constexpr std::size_t maxNotes = 20;
constexpr std::size_t maxFindings = 10000;

bool comesBefore(const Finding& left, const Finding& right) {
  return std::pair(std::string_view(left.location.path()), left.location.span.begin) <
         std::pair(std::string_view(right.location.path()), right.location.span.begin);
}

}  // namespace

// A document with a place in it.
struct FaultReport::Place {
  const VerifiedDocument* document = nullptr;
  std::size_t offset = 0;

  [[nodiscard]] const SharedDefinition* definition() const { return document->definitionAt(offset); }
};

FaultReport::Place FaultReport::placeOf(const VariantText::Origin& origin) const {
  const VerifiedDocument& document = _documents.find(origin.document)->second;
  const SourceText& source = *document.file->source;
  return {&document, sourceOffset(source.text(), offsetOf(source, origin.begin), origin.decoded)};
}
FaultReport::Place FaultReport::placeOf(const Plan& plan) const {
  const SourcePlace place = plan.place();
  const VerifiedDocument& document = _documents.find(place.document)->second;
  return {&document, offsetOf(*document.file->source, place.position)};
}

// The fault up to its end, unless another text follows there.
Span FaultReport::spanOf(const VariantText& text, const ByteRange& range) const {
  const VariantText::Origin origin = text.originOf(range.begin);
  const Place begin = placeOf(origin);
  const std::size_t length = std::min(range.end - range.begin, origin.left);
  const SourceText& source = *begin.document->file->source;
  const std::size_t end = length == 0 ? begin.offset + 1 : sourceOffset(source.text(), begin.offset, length);
  return {begin.offset, std::max(end, begin.offset)};
}

void FaultReport::add(const PlanUnit& unit, const VariantText& text, const Defect& defect, const std::string& share) {
  if (_findings.size() >= maxFindings || _documents.empty()) return;
  const VariantText::Origin origin = text.originOf(defect.place->begin);
  const Place place = placeOf(origin);
  Finding finding;
  finding.rule = defect.rule;
  finding.severity = finding.rule->severity;
  finding.location = {place.document->file, spanOf(text, *defect.place)};
  finding.message = defect.message;
  finding.help = defect.help;
  if (const auto* definition = place.definition()) finding.definition = *definition;
  const auto twin = _byPlace.find({place.document, place.offset, defect.message});
  if (twin != _byPlace.end()) return addNote(unit, _findings[twin->second], share);
  _byPlace.emplace(std::tuple(place.document, place.offset, defect.message), _findings.size());
  _byMessage[defect.message].emplace_back(origin, _findings.size());
  _findings.push_back(std::move(finding));
  addNote(unit, _findings.back(), share);
}

bool FaultReport::addNoteToKnown(const PlanUnit& unit, const VariantText& text, const std::string& message,
                                 const std::string& share) {
  const auto known = _byMessage.find(message);
  if (known == _byMessage.end()) return false;
  for (const auto& [origin, finding] : known->second) {
    if (!text.contains(origin)) continue;
    addNote(unit, _findings[finding], share);
    return true;
  }
  return false;
}

// Tells in which variants, and of which method if the fault is not in the method itself.
void FaultReport::addNote(const PlanUnit& unit, Finding& finding, const std::string& share) const {
  const Place method = placeOf(unit.plan());
  const auto* definition = method.definition();
  const bool own = definition && *definition == finding.definition;
  if (own && share.empty()) return;
  std::string message = own ? share : "breaks " + titleOf(unit.plan());
  if (!own && !share.empty()) message += " " + share;
  const Location location{method.document->file, {method.offset, method.offset + 1}};
  if (finding.related.size() == maxNotes) message = "and others";
  if (finding.related.size() <= maxNotes) finding.related.push_back({location, std::move(message)});
}

std::vector<Finding> FaultReport::take() {
  std::stable_sort(_findings.begin(), _findings.end(), comesBefore);
  return std::move(_findings);
}

}  // namespace korvex::verification
