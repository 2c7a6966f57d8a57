#include "verification/RunnableSet.h"

#include <algorithm>
#include <set>
#include <utility>

namespace korvex::verification {
namespace {

using Position = std::pair<std::size_t, std::size_t>;

Position positionOf(const XMLPosition& position) { return {position.line, position.column}; }

Position positionOf(const Definition& definition) {
  return positionOf(definition.xml.position().value_or(XMLPosition()));
}

// The definitions to leave out, by document and place.
using LeftOut = std::set<std::pair<std::string_view, Position>>;

// Leaves out the definitions that errors are in; false if all of them were left out before.
bool leaveOut(const NamedDocument& document, std::span<const DefinitionError> errors, LeftOut& leftOut) {
  std::vector<Position> begins;
  for (const Definition& definition : loadDefinitions(*document.document)) begins.push_back(positionOf(definition));
  bool more = false;
  for (const DefinitionError& error : errors) {
    if (error.document != document.name) continue;
    const auto behind = std::upper_bound(begins.begin(), begins.end(), positionOf(error.position));
    if (behind != begins.begin()) more = leftOut.emplace(document.name, *std::prev(behind)).second || more;
  }
  return more;
}

DefinitionSetBuilder::Result built(std::span<const NamedDocument> documents, const LeftOut& leftOut) {
  DefinitionSetBuilder builder;
  for (const NamedDocument& document : documents) {
    std::vector<Definition> definitions = loadDefinitions(*document.document);
    std::erase_if(definitions, [&](const Definition& definition) {
      return leftOut.contains({document.name, positionOf(definition)});
    });
    builder.add(document.name, std::move(definitions));
  }
  return std::move(builder).build();
}

}  // namespace

// Leaving out a block makes errors of those who use it, so that it takes some rounds.
RunnableSet runnableSetOf(std::span<const NamedDocument> documents) {
  constexpr int maxRounds = 8;
  LeftOut leftOut;
  DefinitionSetBuilder::Result result = built(documents, leftOut);
  RunnableSet runnable{result.set, result.errors};
  for (int round = 0; !result.set && round < maxRounds; ++round) {
    bool more = false;
    for (const NamedDocument& document : documents) more = leaveOut(document, result.errors, leftOut) || more;
    if (!more) break;
    result = built(documents, leftOut);
    runnable.set = result.set;
  }
  return runnable;
}

}  // namespace korvex::verification
