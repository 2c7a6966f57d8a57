// The documents of a session: those that are open in the editor, and the files of its folders.
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

// A text with its markup, which is scanned again when it is requested after a change.
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
  // Stores the folders that an "initialize" request names.
  void addFolders(const Json& initializeParams);

  // An open document replaces the file of its name until it is closed.
  MarkedDocument& open(const std::string& uri, std::string text);
  void close(const std::string& uri) { _open.erase(uri); }
  // Null when it is not open.
  [[nodiscard]] MarkedDocument* find(const std::string& uri);

  [[nodiscard]] const std::vector<std::string>& folders() const { return _folders; }

  // Visits the open documents, and then the *.xml files below the folders that are not open, which have no URI here.
  // Files of more than 4 MiB are left out, and so is everything beyond 10,000 files or 16 MiB.
  using TextVisitor = std::function<void(const std::string& path, const std::string& uri, const std::string& text)>;
  void forEachText(const TextVisitor& visit) const;

  // Visits the names of maps in every open document, then those in the *.xml files below the folders that are not open.
  // Files that cannot be read or have more than 4 MiB are left out, and so is everything beyond 10,000 files or 128
  // MiB.
  void forEachMapName(const std::function<void(const std::string& uri, const MapName& name)>& visit) const;

 private:
  // The content of a file when it was last read.
  struct ReadFile {
    std::filesystem::file_time_type time;
    std::uintmax_t size = 0;
    std::vector<MapName> mapNames;
  };
  using ReadFiles = std::map<std::string, ReadFile, std::less<>>;  // by path

  // Reads the files that have changed since the last call.
  void readFiles() const;

  std::map<std::string, std::unique_ptr<MarkedDocument>> _open;
  std::vector<std::string> _folders;
  mutable ReadFiles _files;
};

// "file:///a%20b" ↔ "/a b". Empty for a URI of another scheme.
[[nodiscard]] std::string pathOfUri(std::string_view uri);
[[nodiscard]] std::string uriOfPath(std::string_view path);

}  // namespace korvex::lsp
