#include "LanguageServer/Diagnostics.h"

#include <algorithm>
#include <string>

#include "Checks/DocumentCheck.h"
#include "Loader/DefinitionLoader.h"

namespace korvex::lsp {

namespace {

constexpr int severityError = 1;
constexpr int severityWarning = 2;
constexpr std::size_t mostDiagnostics = 1000;

// What an editor hands over is UTF-8, whatever its declaration says the file is: the encoding's place is filled with
// spaces, so that every offset stays.
std::string withoutEncoding(std::string text) {
  const std::size_t end = text.find("?>");
  const std::size_t begin = text.find(" encoding");
  if (!text.starts_with("<?xml") || end == std::string::npos || begin > end) return text;
  const std::size_t quote = std::min(text.find_first_of("\"'", begin), end);
  const std::size_t close = text.find(text[quote], quote + 1);
  if (close < end) text.replace(begin, close + 1 - begin, close + 1 - begin, ' ');
  return text;
}

// Editors show a message on one line.
std::string messageOf(const Finding& finding) {
  return finding.help.empty() ? finding.message : finding.message + " (" + finding.help + ")";
}

// Where the other place of a finding begins; all of them are in this document.
Json relatedTo(const MarkedDocument& document, const Finding& finding, const SourceText& source) {
  Json related = Json::array();
  for (const Related& other : finding.related) {
    const std::size_t place = source.offset(other.position);
    related.push_back(
        {{"location", {{"uri", document.text().uri()}, {"range", document.text().rangeOf({place, place})}}},
         {"message", other.message}});
  }
  return related;
}

Json diagnostic(const MarkedDocument& document, const Finding& finding, const SourceText& source) {
  const Span span{source.offset(finding.position), source.offset(finding.end)};
  Json result = {{"range", document.text().rangeOf(span)},
                 {"severity", finding.severity == Severity::Error ? severityError : severityWarning},
                 {"code", finding.rule->name},
                 {"source", "korvex-dao"},
                 {"message", messageOf(finding)}};
  if (!finding.related.empty()) result["relatedInformation"] = relatedTo(document, finding, source);
  return result;
}

std::vector<Finding> findingsIn(const Document::Result& result) {
  if (result.error) return {findingOf({}, *result.error, result.source.get())};
  return findingsOf({}, *result.document, loadDefinitions(*result.document));
}

}  // namespace

Json diagnosticsOf(const MarkedDocument& document) {
  static const SourceText noSource{""};  // of a text that was refused unread
  const Document::Result result = Document::fromBytes(withoutEncoding(document.text().text()));
  const SourceText& source = result.source ? *result.source : noSource;
  Json diagnostics = Json::array();
  for (const Finding& finding : findingsIn(result)) {
    diagnostics.push_back(diagnostic(document, finding, source));
    if (diagnostics.size() == mostDiagnostics) break;
  }
  return diagnostics;
}

}  // namespace korvex::lsp
