#include "LanguageServer/Workspace.h"

#include <array>
#include <filesystem>
#include <fstream>
#include <system_error>

#include "Files/FileSearch.h"

namespace korvex::lsp {

namespace {

constexpr std::string_view fileScheme = "file://";
constexpr std::size_t largestFile = std::size_t{4} * 1024 * 1024;

int valueOfHexDigit(char digit) {
  if (digit >= '0' && digit <= '9') return digit - '0';
  const int letter = digit | 0x20;
  return letter >= 'a' && letter <= 'f' ? letter - 'a' + 10 : -1;
}

// Letters, digits and what RFC 3986 calls unreserved, and the slashes between names.
bool standsForItself(char character) {
  const bool letter = (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z');
  const bool digit = character >= '0' && character <= '9';
  return letter || digit || std::string_view("-._~/").find(character) != std::string_view::npos;
}

std::string bytesOf(const std::string& path) {
  std::error_code error;
  const auto size = std::filesystem::file_size(path, error);  // an error for what is no regular file
  if (error || size > largestFile) return {};
  std::ifstream file(path, std::ios::binary);
  std::string bytes(size, '\0');
  file.read(bytes.data(), static_cast<std::streamsize>(size));
  bytes.resize(static_cast<std::size_t>(file.gcount()));
  return bytes;
}

}  // namespace

std::string pathOfUri(std::string_view uri) {
  if (!uri.starts_with(fileScheme)) return {};
  uri.remove_prefix(std::min(uri.find('/', fileScheme.size()), uri.size()));  // and the host, which is nobody else's
  std::string path;
  for (std::size_t at = 0; at < uri.size(); ++at) {
    const int high = at + 2 < uri.size() && uri[at] == '%' ? valueOfHexDigit(uri[at + 1]) : -1;
    const int low = high < 0 ? -1 : valueOfHexDigit(uri[at + 2]);
    path += low < 0 ? uri[at] : static_cast<char>(high * 16 + low);
    if (low >= 0) at += 2;
  }
  return path;
}

std::string uriOfPath(std::string_view path) {
  constexpr std::string_view digits = "0123456789ABCDEF";
  std::string uri(fileScheme);
  for (const char character : path) {
    if (standsForItself(character)) {
      uri += character;
    } else {
      const auto byte = static_cast<unsigned char>(character);
      uri.append({'%', digits[byte >> 4U], digits[byte & 15U]});
    }
  }
  return uri;
}

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

void Workspace::forEach(const std::function<void(const MarkedDocument& document)>& visit) const {
  for (const auto& [uri, document] : _open) visit(*document);
  if (_folders.empty()) return;
  for (const std::string& path : findInputFiles(_folders).files) {
    const std::string uri = uriOfPath(path);
    if (!_open.contains(uri)) visit(MarkedDocument(uri, bytesOf(path)));
  }
}

}  // namespace korvex::lsp
