#include "loader/ExpansionLimit.h"

#include <algorithm>
#include <string>
#include <vector>

#include "dao/core/Reading.h"
#include "korvex/OptionalString.h"
#include "korvex/QXDAOElement.h"
#include "korvex/QXDAOText.h"
#include "loader/DocumentErrors.h"
#include "platform/Strings.h"

namespace korvex {

namespace {

bool isMark(char character) { return character == ',' || character == '*'; }

std::size_t expandedLength(std::string_view text) {
  return text.find('%') == std::string_view::npos ? 0 : QXDAOText::expandedLength(text);
}

std::size_t expandedLengthOf(const XMLNode& element) {
  std::size_t length = 0;
  forEachText(element, [&length](std::string_view text, TextPlace /*place*/, const XMLNode& /*node*/) {
    length += expandedLength(text);
  });
  return length;
}

DocumentError oversized(const XMLNode& element, const SourceText& source, const LoadOptions& options) {
  return documentErrorAt(source, element.offset(), DocumentRule::ExpansionTooLarge,
                         {std::to_string(options.maximumExpandedBytes)});
}

}  // namespace

void ExpansionBound::addText(std::string_view text) {
  if (!_holdsSymbol) {
    text.remove_prefix(std::min(text.find('%'), text.size()));
    _holdsSymbol = !text.empty();
  }
  _runLength += text.size();
  _runMarks += static_cast<std::size_t>(std::count_if(text.begin(), text.end(), isMark));
}

// Each star stands for one format, each "*" for all stars; a separator adds two bytes to a star.
void ExpansionBound::endRun() {
  if (_holdsSymbol) _bytes += (_runMarks + 1) * (_runLength + 2);
  _holdsSymbol = false;
  _runLength = 0;
  _runMarks = 0;
}

std::optional<DocumentError> findOversizedExpansion(const XMLNode& root, const SourceText& source,
                                                    const LoadOptions& options) {
  std::size_t length = 0;
  std::vector<XMLNode> elements = {root};  // still to be visited, the next one last
  while (!elements.empty()) {
    const XMLNode element = elements.back();
    elements.pop_back();
    length += expandedLengthOf(element);
    if (length > options.maximumExpandedBytes) return oversized(element, source, options);
    const auto firstChild = static_cast<std::ptrdiff_t>(elements.size());
    for (const XMLNode& node : element.children()) {
      if (node.kind() == XMLNodeKind::Element) elements.push_back(node);
    }
    std::reverse(elements.begin() + firstChild, elements.end());
  }
  return std::nullopt;
}

}  // namespace korvex
