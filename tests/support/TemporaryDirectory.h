// A directory for the files of one test.
#pragma once
#include <cstdlib>
#include <filesystem>
#include <string>

#include "korvex/QXDAOPackReader.h"

namespace korvex {

// Made new and empty, removed with all that it holds.
class TemporaryDirectory {
 public:
  TemporaryDirectory() {
    std::string pattern = (std::filesystem::temp_directory_path() / "korvex-XXXXXX").string();
    _path = mkdtemp(pattern.data());
  }
  TemporaryDirectory(const TemporaryDirectory&) = delete;
  TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;
  ~TemporaryDirectory() { std::filesystem::remove_all(_path); }

  [[nodiscard]] const std::filesystem::path& path() const { return _path; }

 private:
  std::filesystem::path _path;
};

}  // namespace korvex
