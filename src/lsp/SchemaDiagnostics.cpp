#include "lsp/SchemaDiagnostics.h"

#include <filesystem>
#include <utility>

#include "korvex/Document.h"
#include "lsp/Diagnostics.h"
#include "verification/SchemaCheck.h"

namespace korvex::lsp {

namespace {

std::vector<std::string> namesIn(const Json& options, const char* key) {
  std::vector<std::string> names;
  const Json& list = member(options, key);
  if (!list.is_array()) return names;
  for (const Json& name : list) {
    if (name.is_string()) names.push_back(name.get<std::string>());
  }
  return names;
}

// A relative path is that of a file in the first folder.
std::string inFirstFolder(const std::string& path, const Workspace& workspace) {
  if (path.empty() || workspace.folders().empty()) return path;
  return (std::filesystem::path(workspace.folders().front()) / path).string();
}

}  // namespace

void SchemaDiagnostics::configure(const Json& initializeParams, const Workspace& workspace) {
  const Json& options = member(initializeParams, "initializationOptions");
  _source = stringOf(member(options, "schema"));
  _extensions = {namesIn(options, "functions"), namesIn(options, "collations"), namesIn(options, "modules"),
                 namesIn(options, "indexed")};
  _models = inFirstFolder(stringOf(member(options, "models")), workspace);
  if (_source != verification::schemaOfUpgrades) _source = inFirstFolder(_source, workspace);
}

std::optional<SchemaDiagnostics::Findings> SchemaDiagnostics::check(const Workspace& workspace,
                                                                    const std::function<bool()>& goesOn) const {
  verification::SchemaCheck check;
  std::map<std::string, std::string, std::less<>> openUris;  // by path
  workspace.forEachText([&](const std::string& path, const std::string& uri, const std::string& text) {
    Document::Result result = Document::fromBytes(uri.empty() ? text : withoutEncoding(text));
    if (!uri.empty()) openUris.emplace(path, uri);
    if (result.document) check.add(path, std::move(result.document));
  });
  if (!_models.empty()) check.useModels(verification::ModelList::read(_models).models);
  verification::SchemaCheckResult result = check.run(_source, _extensions, goesOn);
  if (!result.whole || !result.unreadable.empty()) return std::nullopt;
  Findings findings;
  for (Finding& finding : result.findings) {
    const auto open = openUris.find(finding.location.path());
    if (open != openUris.end()) findings[open->second].push_back(std::move(finding));
  }
  return findings;
}

}  // namespace korvex::lsp
