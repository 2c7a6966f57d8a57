#include "tool/FindingJson.h"

namespace korvex {
namespace {

Json definitionJson(const std::optional<Finding::InDefinition>& definition) {
  if (!definition) return {};
  return {{"tag", definition->tag},
          {"name", definition->name ? Json(*definition->name) : Json()},
          {"line", definition->line}};
}

Json relatedJson(const std::vector<Related>& related) {
  Json places = Json::array();
  for (const Related& place : related) {
    places.push_back({{"path", place.path},
                      {"line", place.position.line},
                      {"column", place.position.column},
                      {"message", place.message}});
  }
  return places;
}

}  // namespace

Json findingJson(const Finding& finding) {
  return {{"path", finding.path},
          {"line", finding.position.line},
          {"column", finding.position.column},
          {"endLine", finding.end.line},
          {"endColumn", finding.end.column},
          {"severity", severityName(finding.severity)},
          {"rule", finding.rule->name},
          {"message", finding.message},
          {"help", finding.help.empty() ? Json() : Json(finding.help)},
          {"related", relatedJson(finding.related)},
          {"definition", definitionJson(finding.definition)}};
}

}  // namespace korvex
