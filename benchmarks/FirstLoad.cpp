// The first load of a process: fresh memory, cold code. Each figure is the least of several processes.
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <fstream>
#include <pugixml.hpp>
#include <string>

#include "benchmarks/Measuring.h"
#include "korvex/DefinitionIndex.h"

namespace korvex::benchmarks {

namespace {

constexpr std::string_view option = "--first-load=";

void loadByPugixml(const std::string& path) {
  static pugi::xml_document parsed;
  require(parsed.load_file(path.c_str()), "pugixml refused the document");
}

Document::Result loadedDocument(const std::string& path) {
  LoadOptions options;
  options.strict = false;
  Document::Result read = Document::fromFile(path, options);
  require(read.document != nullptr, "the document was refused");
  return read;
}

void loadDefinitionsOfFile(const std::string& path) {
  static Document::Result read = loadedDocument(path);
  static std::vector<Definition> definitions = loadDefinitions(*read.document);
  require(!definitions.empty(), "there are no definitions");
}

void indexDefinitions(const std::string& path) {
  static DefinitionIndex index(loadedDocument(path).document);
  require(index.size() > 0, "there are no definitions");
}

struct Way {
  std::string_view name;
  void (*load)(const std::string& path);
};

constexpr std::array<Way, 3> ways{
    {{"first/pugixml", loadByPugixml}, {"first/load", loadDefinitionsOfFile}, {"first/index", indexDefinitions}}};

struct FileCloser {
  void operator()(std::FILE* file) const { static_cast<void>(std::fclose(file)); }
};

// What this program, started anew, measures and prints.
double measuredAnew(const std::string& program, std::string_view way, const std::string& path) {
  std::array<int, 2> ends{};
  require(pipe(ends.data()) == 0, "no pipe");
  const std::string argument = std::string(option) + std::string(way);
  const pid_t child = fork();
  if (child == 0) {
    dup2(ends[1], STDOUT_FILENO);
    execl(program.c_str(), program.c_str(), argument.c_str(), path.c_str(), nullptr);
    _exit(1);
  }
  close(ends[1]);
  const std::unique_ptr<std::FILE, FileCloser> output(fdopen(ends[0], "r"));
  double seconds = 0;
  const bool printed = std::fscanf(output.get(), "%lf", &seconds) == 1;
  int status = 0;
  waitpid(child, &status, 0);
  require(printed && status == 0, "a first load failed");
  return seconds;
}

}  // namespace

bool measuredFirstLoad(int argc, char** argv) {
  if (argc != 3 || !std::string_view(argv[1]).starts_with(option)) return false;
  const std::string_view name = std::string_view(argv[1]).substr(option.size());
  for (const Way& way : ways) {
    if (way.name != name) continue;
    const double begin = threadSeconds();
    way.load(argv[2]);
    std::printf("%.9f\n", threadSeconds() - begin);
  }
  return true;
}

void measureFirstLoads(Figures& figures, bool brief) {
  std::string path = "/tmp/korvex-benchmark-XXXXXX";
  const int file = mkstemp(path.data());
  require(file >= 0, "no temporary file");
  close(file);
  std::ofstream(path, std::ios::binary) << document();
  for (int repetitions = brief ? 1 : 31; repetitions > 0; --repetitions) {
    for (const Way& way : ways) {
      const double seconds = measuredAnew("/proc/self/exe", way.name, path);
      const auto best = figures.emplace(way.name, seconds).first;
      best->second = std::min(best->second, seconds);
    }
  }
  unlink(path.c_str());
}

}  // namespace korvex::benchmarks
