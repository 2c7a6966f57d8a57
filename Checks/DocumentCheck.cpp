#include "Checks/DocumentCheck.h"

#include "Checks/Places.h"

namespace korvex {

namespace {

Finding findingAt(const Places& places, const std::string& path, const Rule& rule, const XMLPosition& position) {
  Finding finding;
  finding.rule = &rule;
  finding.severity = rule.severity;
  finding.path = path;
  finding.position = position;
  finding.end = places.source().position(places.spanAt(places.source().offset(position)).end);
  return finding;
}

// At the node at fault.
Finding findingOf(const Places& places, const std::string& path, const Definition& definition) {
  const QXDAOError& error = *definition.error;
  Finding finding =
      findingAt(places, path, ruleOfError(error), error.origin.position().value_or(definition.position()));
  finding.message = error.message();
  finding.definition = Finding::InDefinition{
      std::string(definition.tag()), ownedString(error.xml().valueOfAttribute(C_ID)), definition.position().line};
  return finding;
}

}  // namespace

Finding findingOf(const std::string& path, const DocumentError& error, const SourceText* source) {
  static const SourceText noSource{""};
  Finding finding = findingAt(Places(source ? *source : noSource), path, ruleOfError(error), error.position);
  finding.message = error.message;
  return finding;
}

std::vector<Finding> findingsOf(const std::string& path, const Document& document,
                                const std::vector<Definition>& definitions) {
  std::vector<Finding> findings;
  const Places places(document.source());
  for (const Definition& definition : definitions) {
    if (definition.error) findings.push_back(findingOf(places, path, definition));
  }
  return findings;
}

}  // namespace korvex
