#include "lsp/Workspace.h"

#include <algorithm>
#include <fstream>
#include <set>
#include <system_error>
#include <utility>

#include "files/FileSearch.h"
#include "files/Uri.h"

namespace korvex::lsp {

namespace {

constexpr std::string_view fileScheme = "file://";

constexpr std::uintmax_t maxFileBytes = std::uintmax_t{4} * 1024 * 1024;
constexpr std::uintmax_t maxTotalBytes = std::uintmax_t{128} * 1024 * 1024;
constexpr std::size_t maxFiles = 10'000;

std::string bytesOf(const std::string& path, std::uintmax_t size) {
  std::ifstream file(path, std::ios::binary);
  std::string bytes(static_cast<std::size_t>(size), '\0');
  file.read(bytes.data(), static_cast<std::streamsize>(size));
  bytes.resize(static_cast<std::size_t>(file.gcount()));
  return bytes;
}

}  // namespace

std::string pathOfUri(std::string_view uri) {
  if (!uri.starts_with(fileScheme)) return {};
  uri.remove_prefix(std::min(uri.find('/', fileScheme.size()), uri.size()));  // and skip the host
  return percentDecoded(uri);
}

std::string uriOfPath(std::string_view path) { return std::string(fileScheme) + uriPathOf(path); }

void Workspace::addFolders(const Json& initializeParams) {
  const auto add = [this](const Json& uri) {
    if (std::string path = pathOfUri(stringOf(uri)); !path.empty()) _folders.push_back(std::move(path));
  };
  const Json& folders = member(initializeParams, "workspaceFolders");
  if (folders.is_array()) {
    for (const Json& folder : folders) add(member(folder, "uri"));
  } else {
    add(member(initializeParams, "rootUri"));
  }
}

MarkedDocument& Workspace::open(const std::string& uri, std::string text) {
  return *(_open[uri] = std::make_unique<MarkedDocument>(uri, std::move(text)));
}

MarkedDocument* Workspace::find(const std::string& uri) {
  const auto found = _open.find(uri);
  return found == _open.end() ? nullptr : found->second.get();
}

void Workspace::forEachMapName(const std::function<void(const std::string& uri, const MapName& name)>& visit) const {
  std::set<std::string, std::less<>>
      openPaths;  // compared as paths: editors may encode more of a URI than this server does
  for (const auto& [uri, document] : _open) {
    for (const MapName& name : document->mapNames()) visit(uri, name);
    openPaths.insert(pathOfUri(uri));
  }
  readFiles();
  for (const auto& [path, file] : _files) {
    if (file.mapNames.empty() || openPaths.contains(path)) continue;
    const std::string uri = uriOfPath(path);
    for (const MapName& name : file.mapNames) visit(uri, name);
  }
}

void Workspace::forEachText(const TextVisitor& visit) const {
  constexpr std::uintmax_t maxTextBytes = std::uintmax_t{16} * 1024 * 1024;
  std::set<std::string, std::less<>> openPaths;
  for (const auto& [uri, document] : _open) {
    const std::string path = pathOfUri(uri);
    openPaths.insert(path);
    visit(path.empty() ? uri : path, uri, document->text().text());
  }
  if (_folders.empty()) return;
  std::uintmax_t bytes = 0;
  std::size_t files = 0;
  for (const std::string& path : findInputFiles(_folders).files) {
    std::error_code error;
    const std::uintmax_t size = std::filesystem::file_size(path, error);
    if (error || openPaths.contains(path) || size > maxFileBytes || bytes + size > maxTextBytes) continue;
    if (files++ == maxFiles) return;
    bytes += size;
    visit(path, {}, bytesOf(path, size));
  }
}

void Workspace::readFiles() const {
  if (_folders.empty()) return;
  ReadFiles before = std::exchange(_files, {});
  std::uintmax_t bytes = 0;
  for (const std::string& path : findInputFiles(_folders).files) {
    std::error_code error;
    ReadFile file;
    file.size = std::filesystem::file_size(path, error);  // fails for anything but a regular file
    if (!error) file.time = std::filesystem::last_write_time(path, error);
    if (error || file.size > maxFileBytes || bytes + file.size > maxTotalBytes) continue;
    if (_files.size() == maxFiles) return;
    bytes += file.size;
    const auto known = before.find(path);
    if (known != before.end() && known->second.time == file.time && known->second.size == file.size) {
      file.mapNames = std::move(known->second.mapNames);
    } else {
      file.mapNames = MarkedDocument(path, bytesOf(path, file.size)).mapNames();
    }
    _files.emplace(path, std::move(file));
  }
}

}  // namespace korvex::lsp
