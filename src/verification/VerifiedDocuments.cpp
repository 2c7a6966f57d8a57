#include "verification/VerifiedDocuments.h"

#include <algorithm>

namespace korvex::verification {

const SharedDefinition* VerifiedDocument::definitionAt(std::size_t offset) const {
  const auto behind = std::upper_bound(definitions.begin(), definitions.end(), offset,
                                       [](std::size_t at, const auto& next) { return at < next->offset; });
  return behind == definitions.begin() ? nullptr : &*std::prev(behind);
}

std::string_view VerifiedDocument::sourceOf(const Finding::InDefinition& definition) const {
  const auto next = std::upper_bound(definitions.begin(), definitions.end(), definition.offset,
                                     [](std::size_t at, const auto& other) { return at < other->offset; });
  const std::string_view source = file->source->text().substr(definition.offset);
  return next == definitions.end() ? source : source.substr(0, (*next)->offset - definition.offset);
}

Finding findingAt(const VerifiedDocument& document, SchemaRule rule, const Span& span, std::string message,
                  std::string help) {
  Finding finding;
  finding.rule = &ruleOf(rule);
  finding.severity = finding.rule->severity;
  finding.location = {document.file, span};
  finding.message = std::move(message);
  finding.help = std::move(help);
  if (const SharedDefinition* definition = document.definitionAt(span.begin)) finding.definition = *definition;
  return finding;
}

std::size_t offsetOf(const SourceText& source, const XMLPosition& position) {
  const std::string_view line = source.line(position.line);
  if (!line.data()) return 0;
  std::size_t at = 0;
  for (std::size_t column = 1; at < line.size(); ++at) {
    const bool begins = (static_cast<unsigned char>(line[at]) & 0xC0U) != 0x80U;
    if (begins && column++ == position.column) break;
  }
  return static_cast<std::size_t>(line.data() - source.text().data()) + at;
}

}  // namespace korvex::verification
