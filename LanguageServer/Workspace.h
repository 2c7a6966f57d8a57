// The documents that a session can see: those that the editor has open, and the files of its folders.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Language/Markup.h"
#include "LanguageServer/TextDocument.h"

namespace korvex::lsp {

// A text with its markup, which is found anew when it is asked for after a change.
class MarkedDocument {
 public:
  MarkedDocument(std::string uri, std::string text) : _text(std::move(uri), std::move(text)) {}
  MarkedDocument(const MarkedDocument&) = delete;
  MarkedDocument& operator=(const MarkedDocument&) = delete;

  [[nodiscard]] const TextDocument& text() const { return _text; }
  // Valid until the next change.
  [[nodiscard]] const Markup& markup() const {
    if (!_markup) _markup.emplace(_text.text());
    return *_markup;
  }
  void change(const Json& contentChange) {
    _text.change(contentChange);
    _markup.reset();
  }

 private:
  TextDocument _text;
  mutable std::optional<Markup> _markup;
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

  // Visits every open document, and then each *.xml file below the folders that is not open. Files that cannot be read,
  // and those of more than 4 MiB, are left out.
  void forEach(const std::function<void(const MarkedDocument& document)>& visit) const;

 private:
  std::map<std::string, std::unique_ptr<MarkedDocument>> _open;
  std::vector<std::string> _folders;
};

// "file:///a%20b" ↔ "/a b". Empty for a URI of another scheme.
[[nodiscard]] std::string pathOfUri(std::string_view uri);
[[nodiscard]] std::string uriOfPath(std::string_view path);

}  // namespace korvex::lsp
