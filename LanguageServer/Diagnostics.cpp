#include "LanguageServer/Diagnostics.h"

#include <algorithm>
#include <string>

#include "Loader/DefinitionLoader.h"
#include "Tool/Finding.h"

namespace korvex::lsp {

namespace {

constexpr int severityError = 1;
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

// The tag's "<" and name where an element is at fault, else the rest of the line.
Span spanAt(const MarkedDocument& document, const XMLPosition& position, const SourceText& source) {
  const std::size_t begin = source.offset(position);
  const MarkupElement* element = document.markup().startTagAt(begin + 1);
  if (element && element->startTag.begin == begin) return {begin, element->name.end};
  const std::size_t end = std::min(source.text().find_first_of("\r\n", begin), source.text().size());
  return {begin, end};
}

Json diagnostic(const MarkedDocument& document, const Finding& finding, const SourceText& source) {
  return {{"range", document.text().rangeOf(spanAt(document, finding.position, source))},
          {"severity", severityError},
          {"source", "korvex-dao"},
          {"message", finding.message}};
}

}  // namespace

Json diagnosticsOf(const MarkedDocument& document) {
  Json diagnostics = Json::array();
  const Document::Result result = Document::fromBytes(withoutEncoding(document.text().text()));
  if (result.error) {
    static const SourceText noSource{""};  // of a text that was refused unread
    diagnostics.push_back(
        diagnostic(document, findingOf({}, *result.error), result.source ? *result.source : noSource));
    return diagnostics;
  }
  for (const Definition& definition : loadDefinitions(*result.document)) {
    if (!definition.error) continue;
    diagnostics.push_back(diagnostic(document, findingOf({}, definition), *result.source));
    if (diagnostics.size() == mostDiagnostics) break;
  }
  return diagnostics;
}

}  // namespace korvex::lsp
