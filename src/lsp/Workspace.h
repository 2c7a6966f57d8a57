// The documents that a session can see: those that the editor has open, and the files of its folders.
#pragma once

#include <cstddef>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "korvex/QXDAOPackReader.h"
#include "lsp/MapNames.h"
#include "lsp/TextDocument.h"
#include "markup/Markup.h"

namespace korvex::lsp {

// A text with what stands in it, which is found anew when it is asked for after a change.
class MarkedDocument {
 public:
  MarkedDocument(std::string uri, std::string text) : _text(std::move(uri), std::move(text)) {}
  MarkedDocument(const MarkedDocument&) = delete;
  MarkedDocument& operator=(const MarkedDocument&) = delete;

  [[nodiscard]] const TextDocument& text() const { return _text; }
  // Both are valid until the next change.
  [[nodiscard]] const Markup& markup() const {
    if (!_markup) _markup.emplace(_text.text());
    return *_markup;
  }
  [[nodiscard]] const std::vector<MapName>& mapNames() const {
    if (!_mapNames) _mapNames = mapNamesIn(_text, markup());
    return *_mapNames;
  }
  void change(const Json& contentChange) {
    _text.change(contentChange);
    _markup.reset();
    _mapNames.reset();
  }

 private:
  TextDocument _text;
  mutable std::optional<Markup> _markup;
  mutable std::optional<std::vector<MapName>> _mapNames;
};

class Workspace {
 public:
  // Remembers the folders that an "initialize" request names.
  void addFolders(const Json& initializeParams);

  // What the editor opens replaces the file of that name until it closes it.
  MarkedDocument& open(const std::string& uri, std::string text);
  void close(const std::string& uri) { _open.erase(uri); }
  // Null when the editor does not have it open.
  [[nodiscard]] MarkedDocument* find(const std::string& uri);

  // Visits the names of maps in every open document, and then those in the *.xml files below the folders that are not
  // open. Files that cannot be read are left out, and so are those of more than 4 MiB, and what is more than 10,000
  // files or 128 MiB.
  void forEachMapName(const std::function<void(const std::string& uri, const MapName& name)>& visit) const;

 private:
  // What was in a file when it was read last.
  struct ReadFile {
    std::filesystem::file_time_type time;
    std::uintmax_t size = 0;
    std::vector<MapName> mapNames;
  };
  using ReadFiles = std::map<std::string, ReadFile, std::less<>>;  // by path

  // Reads the files that have changed since the last time.
  void readFiles() const;

  std::map<std::string, std::unique_ptr<MarkedDocument>> _open;
  std::vector<std::string> _folders;
  mutable ReadFiles _files;
};

// "file:///a%20b" ↔ "/a b". Empty for a URI of another scheme.
[[nodiscard]] std::string pathOfUri(std::string_view uri);
[[nodiscard]] std::string uriOfPath(std::string_view path);

}  // namespace korvex::lsp
