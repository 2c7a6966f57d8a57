#include "tool/FindingSarif.h"

#include <algorithm>

#include "checks/Rules.h"
#include "files/Uri.h"
#include "korvex/SourceText.h"
#include "tool/RuleText.h"

namespace korvex {
namespace {

constexpr const char* schema = "https://docs.oasis-open.org/sarif/sarif/v2.1.0/os/schemas/sarif-schema-2.1.0.json";

std::string replaced(std::string text, std::string_view what, std::string_view by) {
  for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + by.size()))
    text.replace(at, what.size(), by);
  return text;
}

// Braces would be placeholders.
std::string withoutPlaces(std::string text) { return replaced(replaced(std::move(text), "{", "{{"), "}", "}}"); }

// A literal message: "[text](target)" would be a link.
Json messageText(std::string text) {
  text = withoutPlaces(std::move(text));
  if (text.find("](") != std::string::npos) text = replaced(replaced(std::move(text), "[", "\\["), "]", "\\]");
  return {{"text", text}};
}

Json locationJson(std::string_view path, const Json& region) {
  Json location = {{"artifactLocation", {{"uri", uriReference(path)}}}};
  if (!region.empty()) location["region"] = region;
  return {{"physicalLocation", location}};
}

Json startOf(const XMLPosition& position) { return {{"startLine", position.line}, {"startColumn", position.column}}; }

// The end is one past the last character, as it is in a finding.
Json regionOf(const Location& location) {
  Json region = startOf(location.begin());
  const XMLPosition end = location.end();
  region["endLine"] = end.line;
  region["endColumn"] = end.column;
  return region;
}

Json ruleJson(const Rule& rule) {
  Json help = messageText(std::string(rule.help));
  help["markdown"] = withoutPlaces(markdownOf(rule));
  return {{"id", rule.name},
          {"shortDescription", messageText(filledIn(rule.message))},
          {"fullDescription", messageText(std::string(rule.meaning))},
          {"help", help},
          {"defaultConfiguration", {{"enabled", rule.onByDefault}, {"level", severityName(rule.severity)}}}};
}

Json notificationJson(const UnreadablePath& path) {
  return {{"level", "error"},
          {"message", messageText(path.message)},
          {"locations", Json::array({locationJson(path.path, {})})}};
}

template <typename Items, typename Convert>
Json arrayOf(const Items& items, Convert convert) {
  Json array = Json::array();
  for (const auto& item : items) array.push_back(convert(item));
  return array;
}

}  // namespace

std::string uriReference(std::string_view path) { return (path.starts_with('/') ? "file://" : "") + uriPathOf(path); }

Json sarifResult(const Finding& finding) {
  Json result = {{"ruleId", finding.rule->name},
                 {"ruleIndex", finding.rule - rules().data()},
                 {"level", severityName(finding.severity)},
                 {"message", messageText(messageWithHelp(finding))},
                 {"locations", Json::array({locationJson(finding.location.path(), regionOf(finding.location))})}};
  for (const Related& related : finding.related) {
    Json location = locationJson(related.location.path(), startOf(related.location.begin()));
    location["message"] = messageText(related.message);
    result["relatedLocations"].push_back(location);
  }
  return result;
}

Json sarifLog(const std::vector<UnreadablePath>& unreadable) {
  const Json driver = {{"name", "korvex-dao"}, {"version", KORVEX_VERSION}, {"rules", arrayOf(rules(), ruleJson)}};
  const Json invocation = {{"executionSuccessful", unreadable.empty()},
                           {"toolExecutionNotifications", arrayOf(unreadable, notificationJson)}};
  const Json run = {{"tool", {{"driver", driver}}},
                    {"columnKind", "unicodeCodePoints"},
                    {"results", Json::array()},
                    {"invocations", Json::array({invocation})}};
  return {{"$schema", schema}, {"version", "2.1.0"}, {"runs", Json::array({run})}};
}

}  // namespace korvex
