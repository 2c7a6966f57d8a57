// Building a set, and checking all of its variants against the schema of its upgrades.
#include <memory>
#include <string>
#include <utility>

#include "benchmarks/Documents.h"
#include "benchmarks/Measuring.h"
#include "korvex/DefinitionSet.h"
#include "verification/Verification.h"

namespace korvex::benchmarks {

namespace {

using verification::SchemaDatabase;
using verification::Verification;
using verification::VerifiedDocument;
using verification::VerifiedDocuments;

constexpr std::size_t methods = 6000;

struct BuiltSet {
  std::unique_ptr<Document> document;
  std::shared_ptr<const DefinitionSet> set;
};

BuiltSet buildSet(const std::string& text) {
  Loaded loaded = load(text, true);
  DefinitionSetBuilder builder;
  builder.add("runnable.xml", std::move(loaded.definitions));
  DefinitionSetBuilder::Result result = std::move(builder).build();
  require(result.set != nullptr, "the runnable document is no set");
  return {std::move(loaded.document), std::move(result.set)};
}

VerifiedDocuments verifiedDocuments(const BuiltSet& built) {
  VerifiedDocument document;
  document.file = std::make_shared<const CheckedFile>(CheckedFile{"runnable.xml", built.document->sharedSource()});
  VerifiedDocuments documents;
  documents.emplace("runnable.xml", std::move(document));
  return documents;
}

std::size_t variantsOfAll(const BuiltSet& built, const VerifiedDocuments& documents) {
  SchemaDatabase schema({});
  Verification verification(*built.set, schema, documents);
  verification.runUpgrades();
  verification.checkMethods();
  require(verification.takeFindings().empty(), "the runnable document has findings");
  return verification.totals().variants;
}

}  // namespace

void registerVerifying() {
  const auto text = std::make_shared<const std::string>(runnableDocument(methods));
  const auto built = std::make_shared<const BuiltSet>(buildSet(*text));
  const auto documents = std::make_shared<const VerifiedDocuments>(verifiedDocuments(*built));
  const std::size_t variants = variantsOfAll(*built, *documents);
  require(variants > 33'000, "there are " + std::to_string(variants) + " variants");
  benchmark::RegisterBenchmark("set/load", [text](benchmark::State& state) {
    timeMaking(state, [&] { return load(*text, true); });
  })->UseManualTime();
  benchmark::RegisterBenchmark("set/build", [text](benchmark::State& state) {
    timeMaking(state, [&] { return buildSet(*text); });
  })->UseManualTime();
  benchmark::RegisterBenchmark("verify/all", [built, documents](benchmark::State& state) {
    timeMaking(state, [&] { return variantsOfAll(*built, *documents); });
  })->UseManualTime();
}

}  // namespace korvex::benchmarks
