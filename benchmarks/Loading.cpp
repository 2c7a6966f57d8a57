// From bytes to element trees, beside what the peers need for the bytes alone.
#include <expat.h>
#include <libxml/parser.h>
#include <tinyxml2.h>

#include <memory>
#include <pugixml.hpp>
#include <string>

#include "benchmarks/Documents.h"
#include "benchmarks/Measuring.h"
#include "korvex/Definition.h"
#include "korvex/DefinitionIndex.h"

namespace korvex::benchmarks {

namespace {

using Text = std::shared_ptr<const std::string>;

std::unique_ptr<pugi::xml_document> parsedByPugixml(const std::string& text) {
  auto parsed = std::make_unique<pugi::xml_document>();
  const auto result = parsed->load_buffer(text.data(), text.size());
  require(result, "pugixml refused the document");
  return parsed;
}

auto parsedByLibxml2(const std::string& text) {
  std::unique_ptr<xmlDoc, decltype(&xmlFreeDoc)> parsed(
      xmlReadMemory(text.data(), static_cast<int>(text.size()), nullptr, nullptr, XML_PARSE_NONET), &xmlFreeDoc);
  require(parsed != nullptr, "libxml2 refused the document");
  return parsed;
}

auto parsedByTinyxml2(const std::string& text) {
  auto parsed = std::make_unique<tinyxml2::XMLDocument>();
  require(parsed->Parse(text.data(), text.size()) == tinyxml2::XML_SUCCESS, "tinyxml2 refused the document");
  return parsed;
}

auto passedByExpat(const std::string& text) {
  std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)> parser(XML_ParserCreate(nullptr), &XML_ParserFree);
  const auto status = XML_Parse(parser.get(), text.data(), static_cast<int>(text.size()), XML_TRUE);
  require(status == XML_STATUS_OK, "Expat refused the document");
  return parser;
}

std::unique_ptr<DefinitionIndex> indexed(const std::string& text) {
  LoadOptions options;
  options.strict = false;
  return std::make_unique<DefinitionIndex>(Document::fromBytes(text, options).document);
}

template <typename Parse>
void registerParse(const std::string& name, const Text& text, Parse parse) {
  benchmark::RegisterBenchmark(name.c_str(), [text, parse](benchmark::State& state) {
    timeMaking(state, [&] { return parse(*text); });
  })->UseManualTime();
}

void checkDefinitions(const std::string& name, const Loaded& loaded) {
  for (const Definition& definition : loaded.definitions) {
    if (!definition.error) continue;
    const std::string line = std::to_string(definition.position().line);
    require(false, name + ", line " + line + ": " + std::string(definition.error->message()));
  }
}

void registerLoad(const std::string& name, const Text& text, bool strict = false) {
  checkDefinitions(name, load(*text, true));
  registerParse(name, text, [strict](const std::string& bytes) { return load(bytes, strict); });
}

void registerGrowth(const std::string& name, std::string (*documentOf)(std::size_t)) {
  for (const std::size_t count : {100U, 10'000U}) {
    registerLoad(name + std::to_string(count), std::make_shared<const std::string>(documentOf(count)));
  }
}

}  // namespace

const std::string& document() {
  static const std::string text = believableDocument(6000);
  return text;
}

void registerLoading() {
  const auto whole = std::make_shared<const std::string>(document());
  const auto small = std::make_shared<const std::string>(believableDocument(60));
  registerLoad("load/fast", whole);
  registerLoad("load/strict", whole, true);
  registerLoad("load/definitions/60", small);
  registerParse("load/index", whole, indexed);
  benchmark::RegisterBenchmark("load/destruction", [whole](benchmark::State& state) {
    timeDestroying(state, [&] { return load(*whole, false); });
  })->UseManualTime();
  registerParse("parse/pugixml", whole, parsedByPugixml);
  registerParse("parse/pugixml/60", small, parsedByPugixml);
  registerParse("parse/libxml2", whole, parsedByLibxml2);
  registerParse("parse/tinyxml2", whole, parsedByTinyxml2);
  registerParse("parse/Expat", whole, passedByExpat);
  registerGrowth("load/fragments/", methodWithFragments);
  registerGrowth("load/references/", methodWithReferences);
  registerGrowth("load/columns/", mapWithColumns);
}

}  // namespace korvex::benchmarks
