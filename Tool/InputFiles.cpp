#include "Tool/InputFiles.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <deque>
#include <filesystem>
#include <fstream>
#include <istream>
#include <ostream>
#include <set>
#include <system_error>

#include "Tool/VisibleText.h"

namespace korvex {
namespace {

namespace fs = std::filesystem;

// The same for every path to one file; the path itself where the system cannot tell.
fs::path identityOf(const fs::path& path) {
  std::error_code error;
  fs::path identity = fs::canonical(path, error);
  return error ? path : identity;
}

// One search for *.xml files below a directory.
class Search {
 public:
  explicit Search(const fs::path& directory) : _pending{directory} {}

  void run() {
    while (!_pending.empty()) {
      const fs::path directory = _pending.front();
      _pending.pop_front();
      if (_searched.insert(identityOf(directory)).second) searchDirectory(directory);
    }
    std::sort(_files.begin(), _files.end());
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

  // Links come last, so that a directory is met under its own path where it has one here.
  void takeDirectory(const fs::directory_entry& entry) {
    std::error_code error;
    if (entry.is_symlink(error)) {
      _pending.push_back(entry.path());
    } else {
      _pending.push_front(entry.path());
    }
  }

  // A link without a target counts, so that reading it fails aloud; pipes and devices do not.
  static bool isDefinitionFile(const fs::path& path, const fs::file_status& status) {
    return path.native().ends_with(".xml") && (fs::is_regular_file(status) || !fs::is_other(status));
  }

  std::deque<fs::path> _pending;
  std::set<fs::path> _searched;
  std::vector<fs::path> _files;
  std::vector<UnreadablePath> _unreadable;
};

// Reads on past `most` bytes by a block at the most: enough to see that the input is too large.
std::string readAll(std::istream& in, std::size_t most) {
  std::string bytes;
  std::array<char, 65536> block{};
  while (in && bytes.size() <= most) {
    in.read(block.data(), block.size());
    bytes.append(block.data(), static_cast<std::size_t>(in.gcount()));
  }
  return bytes;
}

constexpr std::size_t longestValue = 1'000'000'000;

InputBytes readStream(const std::string& name, std::istream& in) {
  if (!in) return {name, "", std::generic_category().message(errno)};
  std::string bytes = readAll(in, longestValue);
  if (in.bad()) return {name, "", std::generic_category().message(errno)};
  if (bytes.size() > longestValue) return {name, "", "larger than " + std::to_string(longestValue) + " bytes"};
  return {name, std::move(bytes), std::nullopt};
}

Document::Result readStandardInput(std::istream& in, const LoadOptions& options) {
  std::string bytes = readAll(in, options.maximumBytes);
  if (!in.bad()) return Document::fromBytes(std::move(bytes), options);
  return {nullptr, DocumentError{DocumentErrorKind::Unreadable, "cannot read standard input", {}}, nullptr};
}

}  // namespace

std::string shownPath(const std::string& path) { return path == standardInput ? "<stdin>" : path; }

void printUnreadable(std::ostream& err, const UnreadablePath& path) {
  err << "korvex-dao: " << visibleText(path.path) << ": " << visibleText(path.message) << '\n';
}

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

InputBytes readBytes(const std::string& path, std::istream& in) {
  if (path == standardInput) return readStream(shownPath(path), in);
  std::ifstream file(path, std::ios::binary);
  return readStream(path, file);
}

Document::Result readDocument(const std::string& path, std::istream& in, const LoadOptions& options) {
  return path == standardInput ? readStandardInput(in, options) : Document::fromFile(path, options);
}

}  // namespace korvex
