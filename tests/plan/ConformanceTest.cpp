// The cases of tests/conformance/, run against korvex::plan. README.md there says how they are written.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>

#include "korvex/Expression.h"
#include "korvex/ModelClass.h"
#include "korvex/Plan.h"
#include "tests/support/DefinitionSets.h"

namespace korvex {
namespace {

using Json = nlohmann::json;

// The model class of the cases.
class CasePerson : public Model<CasePerson> {
 public:
  static void describe(ModelDescription<CasePerson>& model) {
    model.className("Person");
    model.property("personId", &CasePerson::personId);
    model.property("givenName", &CasePerson::givenName);
    model.property("notes", &CasePerson::notes);
    model.property("photo", &CasePerson::photo);
    model.property("active", &CasePerson::active);
    model.property("score", &CasePerson::score);
    model.property("huge", &CasePerson::huge);
    model.property("best", &CasePerson::best);
    model.property("unreadable", &CasePerson::unreadable);
    model.propertyWithoutField<double>("age");
  }

  std::int64_t personId = 0;
  OptionalString givenName;
  OptionalString notes;
  std::optional<std::vector<std::byte>> photo;
  bool active = false;
  OptionalNumber score;
  std::uint64_t huge = 0;
  std::shared_ptr<CasePerson> best;
  std::vector<int> unreadable;
};

std::string bytesOf(const std::string& hex) {
  std::string bytes;
  for (std::size_t at = 0; at + 1 < hex.size(); at += 2)
    bytes += static_cast<char>(std::stoi(hex.substr(at, 2), nullptr, 16));
  return bytes;
}

std::shared_ptr<CasePerson> personOf(const Json& json) {
  auto person = std::make_shared<CasePerson>();
  const auto textOf = [&json](const char* name) {
    return json.contains(name) ? OptionalString(json.at(name).get<std::string>()) : std::nullopt;
  };
  person->personId = json.value("personId", 0);
  person->givenName = textOf("givenName");
  person->notes = textOf("notes");
  person->active = json.value("active", false);
  person->huge = json.value("huge", std::uint64_t{0});
  if (json.contains("score")) person->score = NumberObject(json.at("score").get<double>());
  if (json.contains("best")) person->best = personOf(json.at("best"));
  if (json.contains("photo")) {
    const std::string bytes = bytesOf(json.at("photo"));
    const auto view = std::as_bytes(std::span(bytes));
    person->photo.emplace(view.begin(), view.end());
  }
  return person;
}

Value valueOf(const Json& json);

Dictionary dictionaryOf(const Json& json) {
  Dictionary dictionary;
  for (const auto& [name, value] : json.items()) dictionary.set(name, valueOf(value));
  return dictionary;
}

Value valueOf(const Json& json) {
  if (json.is_boolean()) return json.get<bool>();
  if (json.is_number_integer()) return json.get<std::int64_t>();
  if (json.is_number()) return json.get<double>();
  if (json.is_string()) return json.get<std::string>();
  if (json.is_array()) {
    ValueList list;
    for (const Json& entry : json) list.push_back(valueOf(entry));
    return list;
  }
  if (!json.is_object()) return nullptr;
  if (json.contains("$blob")) return Value::blob(bytesOf(json.at("$blob")));
  if (json.contains("$bytes")) return bytesOf(json.at("$bytes"));
  if (json.contains("$real")) return std::stod(json.at("$real").get<std::string>());
  if (json.contains("$person")) return personOf(json.at("$person"));
  return dictionaryOf(json);
}

constexpr const char* codes[] = {"unknown argument", "null argument",    "missing table",
                                 "wrong type",       "unknown property", "integer out of range",
                                 "null entry",       "would change all", "bad name"};

std::vector<std::string> textsOf(const Json& definitions) {
  if (definitions.is_string()) return {"<d>" + definitions.get<std::string>() + "</d>"};
  std::vector<std::string> texts;
  for (const Json& text : definitions) texts.push_back("<d>" + text.get<std::string>() + "</d>");
  return texts;
}

void expectLoadErrors(const Json& wanted, const DefinitionSetBuilder::Result& result) {
  std::vector<std::string> found;
  for (const DefinitionError& error : result.errors) {
    found.push_back(error.document + ":" + std::to_string(error.position.line) + ":" +
                    std::to_string(error.position.column) + ": " + error.message);
  }
  ASSERT_EQ(found.size(), wanted.size()) << Json(found).dump(1);
  for (std::size_t index = 0; index < found.size(); ++index) {
    const std::string& text = wanted[index].get_ref<const std::string&>();
    EXPECT_TRUE(found[index].starts_with(text)) << "found  " << found[index] << "\nwanted " << text;
  }
}

// One call: what becomes of a unit of the method.
void expectCall(const Json& call, const DefinitionSet& set, const std::string& firstMethod) {
  const auto name = call.value("method", firstMethod);
  const Plan* plan = name.empty() ? set.upgrades().front() : set.plan(name);
  ASSERT_NE(plan, nullptr) << name;
  const Arguments arguments = dictionaryOf(call.value("arguments", Json::object()));
  const std::string table(call.contains("table") ? valueOf(call.at("table")).text().value_or("") : "");
  const PlanUnit& unit = plan->units()[call.value("unit", std::size_t{0})];
  const Assembled assembled = assemble(unit, arguments, std::string_view(table), call.value("entry", std::size_t{0}));
  if (call.contains("error")) {
    ASSERT_TRUE(assembled.error) << "no error, but " << assembled.sql;
    EXPECT_EQ(codes[static_cast<std::size_t>(assembled.error->code)], call.at("error")) << assembled.error->message;
    if (call.contains("message")) {
      EXPECT_NE(assembled.error->message.find(call.at("message")), std::string::npos) << assembled.error->message;
    }
    if (call.contains("at")) {
      const XMLPosition position = assembled.error->place.position;
      EXPECT_EQ(std::to_string(position.line) + ":" + std::to_string(position.column), call.at("at"));
    }
    return;
  }
  ASSERT_FALSE(assembled.error) << assembled.error->message;
  EXPECT_EQ(assembled.quits, call.value("quits", false)) << assembled.sql;
  if (call.contains("sql")) {
    EXPECT_EQ(assembled.sql, call.at("sql"));
  }
  if (call.contains("encrypted")) {
    EXPECT_EQ(Json(assembled.encrypted), call.at("encrypted"));
  }
  if (!call.contains("values")) return;
  ValueList wanted;
  for (const Json& value : call.at("values")) wanted.push_back(valueOf(value));
  EXPECT_EQ(assembled.values, wanted);
}

std::string escaped(std::string_view text) {
  std::string result;
  for (const char character : text) {
    result += character == '<'   ? "&lt;"
              : character == '&' ? "&amp;"
              : character == '"' ? "&quot;"
                                 : std::string(1, character);
  }
  return result;
}

std::string conditionOf(const Json& row) {
  return "<d><select id=\"m\" arguments=\"a, b\" result=\"int\">no<if true=\"" + escaped(row[0].get<std::string>()) +
         "\">yes</if></select></d>";
}

// A row: the expression, the arguments, and its truth or the error at the call.
void expectExpression(const Json& row) {
  SCOPED_TRACE(row.dump());
  const DefinitionSetBuilder::Result result = buildSet({conditionOf(row)});
  ASSERT_TRUE(result.set) << (result.errors.empty() ? "" : result.errors.front().message);
  const Assembled assembled = assemble(result.set->plan("m")->units()[0], dictionaryOf(row[1]));
  if (row[2].is_string()) {
    ASSERT_TRUE(assembled.error);
    EXPECT_EQ(codes[static_cast<std::size_t>(assembled.error->code)], row[2]) << assembled.error->message;
    return;
  }
  ASSERT_FALSE(assembled.error) << assembled.error->message;
  EXPECT_EQ(assembled.sql == "no yes", row[2].get<bool>());
}

// A row: the expression, and the place of its fault, counted from 1.
void expectBadExpression(const Json& row) {
  SCOPED_TRACE(row.dump());
  const std::string expression = row[0];
  const QXDAOTokenList tokens = QXDAOEvaluator::buildTokenListWithExpression(expression);
  if (tokens.empty()) return;  // refused by the element
  const std::optional<ExpressionFault> fault = findExpressionFault(expression, tokens);
  const DefinitionSetBuilder::Result result = buildSet({conditionOf(row)});
  ASSERT_EQ(result.errors.size(), 1U);
  const std::string before = conditionOf(row).substr(0, conditionOf(row).find("true=") + 6);
  const std::size_t offset = row[1].get<std::size_t>() - 1;
  EXPECT_EQ(result.errors[0].position.column, before.size() + escaped(expression.substr(0, offset)).size() + 1)
      << result.errors[0].message;
  if (fault) {
    EXPECT_EQ(fault->offset, offset) << fault->message;
  }
}

void expectCase(const Json& item) {
  for (const Json& row : item.value("expressions", Json::array())) expectExpression(row);
  for (const Json& row : item.value("badExpressions", Json::array())) expectBadExpression(row);
  if (!item.contains("definitions")) return;
  const DefinitionSetBuilder::Result result = buildSet(textsOf(item.at("definitions")));
  expectLoadErrors(item.value("loadErrors", Json::array()), result);
  if (!result.set) return;
  const auto plans = result.set->plans();
  const std::string firstMethod = plans.empty() ? std::string() : std::string(plans.front()->name());
  for (const Json& call : item.value("calls", Json::array())) {
    SCOPED_TRACE(call.dump());
    expectCall(call, *result.set, firstMethod);
  }
}

TEST(Conformance, EveryCase) {
  std::size_t count = 0;
  for (const auto& entry : std::filesystem::directory_iterator(KORVEX_SOURCE_DIR "/tests/conformance")) {
    if (entry.path().extension() != ".json") continue;
    const Json cases = Json::parse(std::ifstream(entry.path()));
    for (const Json& item : cases) {
      SCOPED_TRACE(entry.path().filename().string() + ": " + item.at("name").get<std::string>());
      expectCase(item);
      ++count;
    }
  }
  EXPECT_GT(count, 100U);
}

}  // namespace
}  // namespace korvex
