#include "tool/FindingJson.h"

namespace korvex {
namespace {

Json definitionJson(const Finding& finding) {
  const Finding::InDefinition* definition = finding.definition.get();
  if (!definition) return {};
  return {{"tag", definition->tag},
          {"name", definition->name ? Json(*definition->name) : Json()},
          {"line", finding.location.file->position(definition->offset).line}};
}

Json relatedJson(const std::vector<Related>& related) {
  Json places = Json::array();
  for (const auto& [location, message] : related) {
    const XMLPosition begin = location.begin();
    places.push_back({{"path", location.path()}, {"line", begin.line}, {"column", begin.column}, {"message", message}});
  }
  return places;
}

}  // namespace

Json findingJson(const Finding& finding) {
  const XMLPosition begin = finding.location.begin();
  const XMLPosition end = finding.location.end();
  return {{"path", finding.location.path()},
          {"line", begin.line},
          {"column", begin.column},
          {"endLine", end.line},
          {"endColumn", end.column},
          {"severity", severityName(finding.severity)},
          {"rule", finding.rule->name},
          {"message", finding.message},
          {"help", finding.help.empty() ? Json() : Json(finding.help)},
          {"related", relatedJson(finding.related)},
          {"definition", definitionJson(finding)}};
}

}  // namespace korvex
