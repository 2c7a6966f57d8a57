// Compares the output of the tool with golden files and documents. Set KORVEX_UPDATE_GOLDEN=1 in the environment to
// rewrite the golden files; read their diff before you commit it.
#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "korvex/QXDAOPackReader.h"
#include "tests/support/TemporaryDirectory.h"

namespace {

const std::filesystem::path root = KORVEX_SOURCE_DIR;

std::string contentOf(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  EXPECT_TRUE(stream) << file;
  return {std::istreambuf_iterator<char>(stream), {}};
}

// A directory in which commands find the repository's examples and tests and may leave files.
class Workplace {
 public:
  Workplace() {
    for (const char* linked : {"examples", "tests"}) {
      std::filesystem::create_directory_symlink(root / linked, _directory.path() / linked);
    }
  }

  // Standard output and standard error of a shell command, run in this directory with that of the
  // built programs in front of the path.
  [[nodiscard]] std::string outputOf(const std::string& command) const {
    const std::string line = "cd '" + _directory.path().string() + "' && PATH='" +
                             std::filesystem::path(KORVEX_DAO_TOOL).parent_path().string() +
                             ":'\"$PATH\" NO_COLOR=1 COLUMNS=100 && export PATH NO_COLOR COLUMNS; { " + command +
                             "; } 2>&1";
    FILE* pipe = popen(line.c_str(), "r");
    std::string output;
    std::array<char, 4096> buffer{};
    while (const std::size_t count = std::fread(buffer.data(), 1, buffer.size(), pipe))
      output.append(buffer.data(), count);
    pclose(pipe);
    return output;
  }

 private:
  korvex::TemporaryDirectory _directory;
};

TEST(Golden, ExamplesAreCheckedAndDumpedAsRecorded) {
  const bool update = std::getenv("KORVEX_UPDATE_GOLDEN") != nullptr;
  const std::vector<std::pair<const char*, const char*>> goldens = {
      {"addressbook.check.txt", "korvex-dao check examples/addressbook.xml"},
      {"addressbook.json", "korvex-dao dump examples/addressbook.xml"},
      {"addressbook.tree.txt", "korvex-dao dump --format tree examples/addressbook.xml"},
      {"faults.check.txt", "korvex-dao check examples/faults.xml"},
      {"faults.check.json", "korvex-dao check --format json examples/faults.xml"},
      {"faults.json", "korvex-dao dump examples/faults.xml"},
      {"../../docs/rules.md", "korvex-dao explain --format markdown"},
      {"../../dist/man/korvex-dao.1", "korvex-dao man"},
      {"../../dist/completions/korvex-dao.bash", "korvex-dao completion bash"},
      {"../../dist/completions/korvex-dao.fish", "korvex-dao completion fish"},
      {"../../dist/completions/korvex-dao.zsh", "korvex-dao completion zsh"},
  };
  for (const auto& [name, command] : goldens) {
    SCOPED_TRACE(command);
    const std::filesystem::path file = root / "tests" / "golden" / name;
    const std::string output = Workplace().outputOf(command);
    if (update) std::ofstream(file, std::ios::binary) << output;
    EXPECT_EQ(output, contentOf(file));
  }
}

// The code blocks of a document in one language.
std::vector<std::string> blocksOf(const std::string& document, const std::string& language) {
  std::vector<std::string> blocks;
  std::istringstream lines(document);
  bool inside = false;
  for (std::string line; std::getline(lines, line);) {
    if (line.starts_with("```")) {
      inside = line == "```" + language;
      if (inside) blocks.emplace_back();
    } else if (inside) {
      blocks.back() += line + '\n';
    }
  }
  return blocks;
}

struct Session {
  std::string command;
  std::string output;
};

// The "$ command" lines of a document's console blocks, each with the output shown below it.
std::vector<Session> sessionsOf(const std::string& document) {
  std::vector<Session> sessions;
  for (const std::string& block : blocksOf(document, "console")) {
    std::istringstream lines(block);
    for (std::string line; std::getline(lines, line);) {
      if (line.starts_with("$ ")) {
        sessions.push_back({line.substr(2), ""});
      } else {
        sessions.back().output += line + '\n';
      }
    }
  }
  return sessions;
}

TEST(Golden, DocumentsShowWhatTheToolPrints) {
  std::size_t shown = 0;
  for (const char* document : {"README.md", "docs/tool.md", "docs/packed-format.md"}) {
    const Workplace workplace;
    for (const auto& [command, output] : sessionsOf(contentOf(root / document))) {
      EXPECT_EQ(workplace.outputOf(command), output) << document << ": $ " << command;
      ++shown;
    }
  }
  EXPECT_GE(shown, 4U);
}

// The C++ in the documents comes from compiled examples.
TEST(Golden, ReadmeShowsCompiledExamples) {
  std::string code;
  for (const char* example : {"read_definitions.cpp", "addressbook/Models.h", "addressbook/main.cpp"})
    code += contentOf(root / "examples" / example);
  const std::vector<std::string> blocks = blocksOf(contentOf(root / "README.md"), "cpp");
  EXPECT_EQ(blocks.size(), 3U);
  for (const std::string& block : blocks) EXPECT_NE(code.find(block), std::string::npos) << block;
  EXPECT_NE(Workplace().outputOf("read_definitions examples/faults.xml").find("Element name(id attribute) is empty."),
            std::string::npos);
}

// CONTRIBUTING.md lists every package with its reason.
TEST(Golden, ContributingListsThePackages) {
  const std::string table = contentOf(root / "CONTRIBUTING.md");
  std::istringstream lines(contentOf(root / "scripts" / "packages.txt"));
  std::size_t packages = 0;
  for (std::string line; std::getline(lines, line);) {
    std::istringstream words(line);
    std::string package;
    std::string use;
    if (line.starts_with('#') || !(words >> package >> use >> std::ws)) continue;
    std::string reason;
    std::getline(words, reason);
    EXPECT_NE(table.find("| `" + package + "` | " + reason + " |\n"), std::string::npos) << line;
    ++packages;
  }
  EXPECT_GE(packages, 8U);
}

}  // namespace
