#include "lsp/Diagnostics.h"

#include <algorithm>
#include <string>
#include <string_view>

#include "checks/DocumentCheck.h"
#include "korvex/Definition.h"
#include "korvex/Document.h"
#include "markup/TagReader.h"

namespace korvex::lsp {

namespace {

constexpr int severityError = 1;
constexpr int severityWarning = 2;
constexpr std::size_t maxDiagnostics = 1000;

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

// The size of the byte order mark before a text, which the loader removes.
std::size_t sizeOfMark(std::string_view text) { return text.starts_with(byteOrderMark) ? byteOrderMark.size() : 0; }

}  // namespace

// The declaration is overwritten with spaces, so that all offsets stay the same.
std::string withoutEncoding(std::string text) {
  const std::size_t begin = sizeOfMark(text);
  if (!std::string_view(text).substr(begin).starts_with("<?xml")) return text;
  for (const MarkupAttribute& attribute : readTag(text, begin).attributes) {
    if (!attribute.value || attribute.name.of(text) != "encoding") continue;
    const std::size_t end = std::min(attribute.value->end + 1, text.size());  // with its quote
    std::fill(text.begin() + static_cast<std::ptrdiff_t>(attribute.name.begin),
              text.begin() + static_cast<std::ptrdiff_t>(end), ' ');
  }
  return text;
}

namespace {

// Editors show a message on one line.
std::string messageOf(const Finding& finding) {
  return finding.help.empty() ? finding.message : finding.message + " (" + finding.help + ")";
}

// Findings of a document for the protocol.
class DiagnosticWriter {
 public:
  DiagnosticWriter(const TextDocument& text, bool withRelated)
      : _text(text), _withRelated(withRelated), _shift(sizeOfMark(text.text())) {}

  [[nodiscard]] Json diagnostic(const Finding& finding) const {
    Json result = {{"range", rangeOf(finding.location.span)},
                   {"severity", finding.severity == Severity::Error ? severityError : severityWarning},
                   {"code", finding.rule->name},
                   {"source", "korvex-dao"},
                   {"message", messageOf(finding)}};
    if (_withRelated && !finding.related.empty()) result["relatedInformation"] = relatedTo(finding);
    return result;
  }

 private:
  // Where the related places of a finding begin.
  [[nodiscard]] Json relatedTo(const Finding& finding) const {
    Json related = Json::array();
    for (const Related& other : finding.related) {
      related.push_back({{"location", placeOf(finding, other.location)}, {"message", other.message}});
    }
    return related;
  }

  // In another document, columns count code points, which are the same as UTF-16 for almost all text.
  [[nodiscard]] Json placeOf(const Finding& finding, const Location& location) const {
    if (location.path() == finding.location.path()) {
      return {{"uri", _text.uri()}, {"range", rangeOf({location.span.begin, location.span.begin})}};
    }
    const XMLPosition begin = location.begin();
    const Json place = {{"line", begin.line - 1}, {"character", begin.column - 1}};
    return {{"uri", uriOfPath(location.path())}, {"range", {{"start", place}, {"end", place}}}};
  }

  [[nodiscard]] Json rangeOf(Span span) const { return _text.rangeOf({_shift + span.begin, _shift + span.end}); }

  const TextDocument& _text;
  bool _withRelated;
  std::size_t _shift;  // of offsets, from the source without the byte order mark to the text
};

std::vector<Finding> findingsIn(const Document::Result& result) {
  if (result.error) return {findingOf({}, *result.error, result.source)};
  return findingsOf({}, *result.document, loadDefinitions(*result.document));
}

}  // namespace

Json diagnosticsOf(const MarkedDocument& document, bool withRelated, std::span<const Finding> more) {
  const Document::Result result = Document::fromBytes(withoutEncoding(document.text().text()));
  const DiagnosticWriter writer(document.text(), withRelated);
  Json diagnostics = Json::array();
  const auto write = [&](std::span<const Finding> findings) {
    for (const Finding& finding : findings) {
      if (diagnostics.size() < maxDiagnostics) diagnostics.push_back(writer.diagnostic(finding));
    }
  };
  write(findingsIn(result));
  write(more);
  return diagnostics;
}

}  // namespace korvex::lsp
