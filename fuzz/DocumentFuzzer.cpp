// Any bytes as a document, strict and not strict, through loading, check and dump.
#include <sstream>

#include "checks/Rules.h"
#include "fuzz/Disagreement.h"
#include "fuzz/Input.h"
#include "korvex/Document.h"
#include "tool/CheckCommand.h"
#include "tool/DumpCommand.h"
#include "tool/ElementJson.h"
#include "tool/InputFiles.h"

namespace korvex {
namespace {

struct Output {
  ExitCode code;
  std::string text;
};

template <typename Options>
Output outputOf(ExitCode (*run)(const Options&, const Console&), const Options& options, std::string_view input) {
  std::istringstream in{std::string(input)};
  std::ostringstream out;
  std::ostringstream err;
  const ExitCode code = run(options, {in, out, err});
  return {code, out.str()};
}

Output check(std::string_view input, CheckFormat format, const LoadOptions& load) {
  const CheckOptions options{.paths = {std::string(standardInput)},
                             .format = format,
                             .color = ColorMode::Always,
                             .load = load,
                             .warnings = {std::string(ruleOf(Warning::UndefinedMap).name)},
                             .noWarnings = {}};
  return outputOf(runCheck, options, input);
}

Output dump(std::string_view input, DumpFormat format, const LoadOptions& load) {
  return outputOf(runDump, DumpOptions{std::string(standardInput), format, load}, input);
}

// What all ways to one document say of it.
struct Outcome {
  bool wellFormed;
  std::string findings;
  std::string definitions;
};

bool isWellFormed(std::string_view input, const LoadOptions& load) {
  const Document::Result result = Document::fromBytes(std::string(input), load);
  expectThat((result.document != nullptr) != result.error.has_value(), "there is either a document or an error");
  return result.document != nullptr;
}

Outcome outcomeOf(std::string_view input, const LoadOptions& load) {
  const Output findings = check(input, CheckFormat::Json, load);
  const Output definitions = dump(input, DumpFormat::Json, load);
  const Json report = Json::parse(findings.text);
  expectThat(Json::accept(definitions.text), "a dump is JSON");
  const std::size_t warnings = report.at("warnings").get<std::size_t>();
  const std::size_t errors = report.at("findings").size() - warnings;
  expectSame("errors counted", report.at("errors").dump(), std::to_string(errors));
  const ExitCode wanted = errors == 0 ? ExitCodeNothingFound : ExitCodeSomethingFound;
  for (const ExitCode code : {findings.code, definitions.code, check(input, CheckFormat::Text, load).code,
                              dump(input, DumpFormat::Tree, load).code}) {
    expectSame("exit code", std::to_string(code), std::to_string(wanted));
  }
  return {isWellFormed(input, load), findings.text, definitions.text};
}

void compare(std::string_view input) {
  LoadOptions load;
  const Outcome strict = outcomeOf(input, load);
  load.strict = false;
  const Outcome lenient = outcomeOf(input, load);
  if (!strict.wellFormed) return;
  expectThat(lenient.wellFormed, "what is well-formed is so without the strict pass");
  expectSame("findings without the strict pass", lenient.findings, strict.findings);
  expectSame("definitions without the strict pass", lenient.definitions, strict.definitions);
}

}  // namespace
}  // namespace korvex

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view input = korvex::inputOf(data, size);
  if (!korvex::mayGrowLarge(input)) korvex::compare(input);
  return 0;
}
