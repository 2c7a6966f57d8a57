// The strict parser must accept what the quick check of a parsed tree trusts.
#include "fuzz/Disagreement.h"
#include "fuzz/Input.h"
#include "fuzz/Mutator.h"
#include "korvex/SourceText.h"
#include "loader/PugiTree.h"
#include "loader/StrictPass.h"

namespace korvex {
namespace {

bool isTrusted(const SourceText& source, bool keepWhiteSpace) {
  const LoadOptions options{.keepWhiteSpaceText = keepWhiteSpace};
  PugiTree tree(source);
  return !tree.parse(options) && !tree.arrange(options) && tree.isSurelyWellFormed();
}

}  // namespace

Verdict judge(std::string_view text) {
  const SourceText source{std::string(text)};
  if (!isTrusted(source, text.size() % 2 == 0)) return Verdict::Doubted;
  expectThat(!findSyntaxError(source), "the strict parser accepts a trusted text");
  return Verdict::Trusted;
}

}  // namespace korvex

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static_cast<void>(korvex::judge(korvex::inputOf(data, size)));
  return 0;
}
