#include "files/FileSearch.h"

#include <algorithm>
#include <deque>
#include <filesystem>
#include <set>
#include <system_error>
#include <utility>

namespace korvex {
namespace {

namespace fs = std::filesystem;

// The same for every path to a file; the path itself when it cannot be resolved.
fs::path identityOf(const fs::path& path) {
  std::error_code error;
  fs::path identity = fs::canonical(path, error);
  return error ? path : identity;
}

// One search for *.xml files below a directory.
class Search {
 public:
  explicit Search(fs::path directory) : _root(std::move(directory)), _pending{_root} {}

  void run() {
    while (!_pending.empty()) {
      const fs::path directory = _pending.front();
      _pending.pop_front();
      if (_searched.insert(identityOf(directory)).second) searchDirectory(directory);
    }
    std::sort(_files.begin(), _files.end());
    if (_files.empty() && _unreadable.empty()) _unreadable.push_back({_root.string(), "no *.xml file in it"});
  }

  [[nodiscard]] const std::vector<fs::path>& files() const { return _files; }
  [[nodiscard]] const std::vector<UnreadablePath>& unreadable() const { return _unreadable; }

 private:
  void searchDirectory(const fs::path& directory) {
    std::error_code error;
    for (fs::directory_iterator entry(directory, error), end; !error && entry != end; entry.increment(error)) {
      take(*entry);
    }
    if (error) _unreadable.push_back({directory.string(), error.message()});
  }

  void take(const fs::directory_entry& entry) {
    std::error_code error;
    const fs::file_status status = entry.status(error);
    if (fs::is_directory(status)) {
      takeDirectory(entry);
    } else if (isDefinitionFile(entry.path(), status)) {
      _files.push_back(entry.path());
    }
  }

  // Links come last, so that a directory is found under its own path if it has one here.
  void takeDirectory(const fs::directory_entry& entry) {
    std::error_code error;
    if (entry.is_symlink(error)) {
      _pending.push_back(entry.path());
    } else {
      _pending.push_front(entry.path());
    }
  }

  // A broken link counts, so that reading it reports an error; pipes and devices do not.
  static bool isDefinitionFile(const fs::path& path, const fs::file_status& status) {
    return path.native().ends_with(".xml") && (fs::is_regular_file(status) || !fs::is_other(status));
  }

  fs::path _root;
  std::deque<fs::path> _pending;
  std::set<fs::path> _searched;
  std::vector<fs::path> _files;
  std::vector<UnreadablePath> _unreadable;
};

}  // namespace

InputFiles findInputFiles(const std::vector<std::string>& paths) {
  InputFiles inputs;
  std::set<fs::path> taken;
  const auto take = [&](const fs::path& file) {
    if (taken.insert(identityOf(file)).second) inputs.files.push_back(file.string());
  };
  for (const std::string& path : paths) {
    std::error_code error;
    if (path == standardInput || !fs::is_directory(path, error)) {
      take(path);
      continue;
    }
    Search search(path);
    search.run();
    for (const fs::path& file : search.files()) take(file);
    inputs.unreadable.insert(inputs.unreadable.end(), search.unreadable().begin(), search.unreadable().end());
  }
  return inputs;
}

}  // namespace korvex
