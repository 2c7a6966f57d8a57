#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <regex>
#include <sstream>
#include <utility>
#include <vector>

#include "korvex/QXDAOPackReader.h"
#include "lsp/Server.h"

namespace korvex::lsp {
namespace {

constexpr std::size_t maximumBytes = 4096;
const std::string uri = "file:///nowhere/app.xml";

std::string framed(const std::string& content) {
  return "Content-Length: " + std::to_string(content.size()) + "\r\n\r\n" + content;
}

std::string request(int id, const std::string& method, const Json& params = nullptr) {
  return framed(Json{{"jsonrpc", "2.0"}, {"id", id}, {"method", method}, {"params", params}}.dump());
}

std::string notification(const std::string& method, const Json& params = nullptr) {
  return framed(Json{{"jsonrpc", "2.0"}, {"method", method}, {"params", params}}.dump());
}

const std::string beginning = request(0, "initialize", Json::object()) + notification("initialized");
const std::string ending = request(99, "shutdown") + notification("exit");

std::string opened(const std::string& text, const std::string& of = uri) {
  return notification("textDocument/didOpen", {{"textDocument", {{"uri", of}, {"text", text}}}});
}

// The output of a server for an input.
struct Session {
  explicit Session(const std::string& input) {
    std::istringstream in(input);
    std::ostringstream out;
    orderly = Server(in, out, maximumBytes).run();
    std::istringstream written(out.str());
    MessageReader reader(written, out.str().size());
    for (Frame frame = reader.next(); frame.status == FrameStatus::Message; frame = reader.next()) {
      messages.push_back(Json::parse(frame.content));
    }
  }

  // The result, or the error's code, of the answer with that id.
  [[nodiscard]] Json answerTo(const Json& id) const {
    for (const Json& message : messages) {
      if (!message.contains("id") || message["id"] != id) continue;
      return message.contains("error") ? message["error"]["code"] : message["result"];
    }
    return "no answer";
  }
  [[nodiscard]] Json lastDiagnostics() const {
    Json last = "none published";
    for (const Json& message : messages) {
      if (message.contains("params")) last = message["params"]["diagnostics"];
    }
    return last;
  }

  std::vector<Json> messages;
  bool orderly = false;
};

Session talk(const std::string& input) { return Session(beginning + input + ending); }

// "line:character-line:character"
std::string rangeText(const Json& range) {
  const auto place = [](const Json& at) { return at["line"].dump() + ":" + at["character"].dump(); };
  return place(range["start"]) + "-" + place(range["end"]);
}

// The text without its mark "|", and the parameters of a request about the place where the mark was.
struct Marked {
  explicit Marked(std::string marked) : text(std::move(marked)) {
    const std::size_t at = text.find('|');
    text.erase(at, 1);
    const TextDocument document(uri, text);
    const Position position = document.positionOf(at);
    params = {{"textDocument", {{"uri", uri}}},
              {"position", {{"line", position.line}, {"character", position.character}}}};
  }

  std::string text;
  Json params;
};

TEST(LanguageServer, AnswersWhatIsNoMessageAndGoesOn) {
  struct Row {
    std::string input;
    Json id;
    int code;
  };
  const std::string deep(1000, '[');
  const Row rows[] = {
      {"Nonsense\r\n\r\n", nullptr, -32700},
      {"Content-Length: twelve\r\n\r\n", nullptr, -32700},
      {"Content-Length: -1\r\n\r\n", nullptr, -32700},
      {"Content-Length: 99999999999999999999\r\n\r\n", nullptr, -32700},
      {std::string(100'000, 'x') + "\r\n\r\n", nullptr, -32700},
      {framed("{"), nullptr, -32700},
      {framed("\"\xff\""), nullptr, -32700},
      {framed(deep), nullptr, -32700},
      {framed(std::string(maximumBytes + 1, ' ')), nullptr, -32600},
      {framed("[]"), nullptr, -32600},
      {framed("{}"), nullptr, -32600},
      {framed(R"({"id":5,"method":6})"), 5, -32600},
      {framed(R"({"id":[],"method":"shutdown"})"), nullptr, -32600},
      {request(5, "textDocument/unheardOf"), 5, -32601},
      {request(5, "initialize"), 5, -32600},
      {request(5, "shutdown") + request(6, "textDocument/documentSymbol"), 6, -32600},
  };
  for (const Row& row : rows) {
    const Session session = talk(row.input);
    EXPECT_EQ(session.answerTo(row.id), row.code) << row.input.substr(0, 60);
    EXPECT_TRUE(session.orderly) << row.input.substr(0, 60);
  }
  EXPECT_EQ(Session(request(5, "textDocument/documentSymbol")).answerTo(5), -32002);
}

// A wrong or missing length costs the message itself and, when it is too great, the beginning of the next.
TEST(LanguageServer, FindsTheNextMessageAfterAWrongLength) {
  const std::string lost = Json{{"jsonrpc", "2.0"}, {"id", 1}, {"method", "none"}}.dump();
  const std::string next = request(2, "none", Json::object());
  const std::string longer = "Content-Length: " + std::to_string(lost.size() + 1) + "\r\n\r\n" + lost;
  const std::string shorter = "Content-Length: " + std::to_string(lost.size() - 1) + "\r\n\r\n" + lost;
  const std::string rows[] = {lost + next,
                              "\r\n" + lost + next,
                              std::string(8187, 'x') + next,  // a long line is cut in the field
                              std::string(100'000, 'x') + next,
                              "Content-Length: twelve\r\n\r\n" + lost + next,
                              "Content-Length: -1\r\n\r\n" + lost + next,
                              shorter + next,
                              longer + next + next};
  for (const std::string& row : rows) {
    const Session session = talk(row);
    EXPECT_EQ(session.answerTo(nullptr), -32700) << row.substr(0, 100);
    EXPECT_EQ(session.answerTo(2), -32601) << row.substr(0, 100);
    EXPECT_TRUE(session.orderly) << row.substr(0, 100);
  }
}

TEST(LanguageServer, PassesOverWhatMeansNothing) {
  const std::string inputs[] = {
      notification("$/setTrace", 5),
      notification("textDocument/didChange", {{"textDocument", "x"}, {"contentChanges", 5}}),
      framed(R"({"id":7,"result":null})"),
      "CONTENT-LENGTH:2 \r\nContent-Type: x\r\n\r\n{}",
  };
  for (const std::string& input : inputs) EXPECT_TRUE(talk(input).orderly) << input;
  for (const std::string name : {"textDocument/didOpen", "textDocument/didClose"}) {
    EXPECT_EQ(talk(notification(name)).lastDiagnostics(), "none published");
  }
  EXPECT_FALSE(Session(beginning + notification("exit")).orderly);
  EXPECT_FALSE(Session(beginning + "Content-Length: 100\r\n\r\n{").orderly);
}

TEST(LanguageServer, PublishesTheFindingsOfEachText) {
  struct Row {
    std::string text;
    std::string range;  // empty: no finding
    std::string message;
  };
  const Row rows[] = {
      {"<a>\n <sql id='x'>1</sql>\n</a>", "", ""},
      {"<a>\n <sql id='a' idd=''>1</sql>\n</a>", "1:13-1:16", "never reads the attribute 'idd'"},
      {"<a>\n <sql id=''>1</sql>\n</a>", "1:6-1:8", "Element name(id attribute) is empty."},
      {"<a>\r\n é😀<sql/></a>", "1:4-1:8", "Element name(id attribute) is empty."},
      {"<?xml version='1.0' encoding='ISO-8859-1'?><a>é<sql/></a>", "0:47-0:51",
       "Element name(id attribute) is empty."},
      {"<?xml version='1.0'\tencoding='ISO-8859-1'?><a>é<sql/></a>", "0:47-0:51",
       "Element name(id attribute) is empty."},
      {"\xEF\xBB\xBF<a><sql/></a>", "0:4-0:8", "Element name(id attribute) is empty."},
      {"\xEF\xBB\xBF<?xml version='1.0' encoding='utf-16'?><a/>", "", ""},
      {"<a>\n<b></a>", "1:3-1:7", "does not match"},
      {"", "0:0-0:0", "no root element"},
  };
  for (const Row& row : rows) {
    const Json found = talk(opened(row.text)).lastDiagnostics();
    ASSERT_EQ(found.size(), row.range.empty() ? 0U : 1U) << row.text << found;
    if (row.range.empty()) continue;
    EXPECT_EQ(rangeText(found[0]["range"]), row.range) << row.text;
    EXPECT_NE(found[0]["message"].get<std::string>().find(row.message), std::string::npos) << found;
  }
}

TEST(LanguageServer, TellsOtherPlacesToWhoUnderstandsThem) {
  const std::string text = opened("<a><sql id='x'/><sql id='x'/></a>");
  const Json client = {{"textDocument", {{"publishDiagnostics", {{"relatedInformation", true}}}}}};
  const Json told = Session(request(0, "initialize", {{"capabilities", client}}) + text).lastDiagnostics();

  EXPECT_EQ(rangeText(told.at(0)["relatedInformation"].at(0)["location"]["range"]), "0:3-0:3");
  EXPECT_FALSE(talk(text).lastDiagnostics().at(0).contains("relatedInformation"));
}

TEST(LanguageServer, TakesHalfASurrogatePairForACharacter) {
  for (const std::string half : {R"(\ud83d)", R"(\uDE00)", R"(\ud83d\ud83d\ude00)", R"(\\\\\ud83dd)"}) {
    const std::string open =
        R"({"method":"textDocument/didOpen","params":{"textDocument":{"uri":"file:///x","text":")" + half +
        R"(<a/>"}}})";
    EXPECT_NE(talk(framed(open)).lastDiagnostics(), "none published") << half;
  }
}

TEST(LanguageServer, FollowsChangesUntilTheDocumentIsClosed) {
  const auto change = [](const Json& range, const std::string& text) {
    Json content = {{"text", text}};
    if (!range.is_null()) content["range"] = range;
    return notification("textDocument/didChange",
                        {{"textDocument", {{"uri", uri}}}, {"contentChanges", Json::array({content})}});
  };
  const auto range = [](int line, int from, int to) {
    return Json{{"start", {{"line", line}, {"character", from}}}, {"end", {{"line", line}, {"character", to}}}};
  };
  const std::string start = opened("<a>\r\n<!--😀--><sql id=''/></a>");
  const std::string mended = start + change(range(1, 18, 18), "x");
  EXPECT_EQ(talk(start).lastDiagnostics().size(), 1U);
  EXPECT_EQ(talk(mended).lastDiagnostics().size(), 0U);
  EXPECT_EQ(talk(mended + change(range(1, 13, 20), "")).lastDiagnostics().size(), 1U);
  EXPECT_EQ(talk(start + change(range(7, 0, 9), "<")).lastDiagnostics().size(), 1U);
  EXPECT_EQ(talk(mended + change(nullptr, "<a><map id='m'/></a>")).lastDiagnostics().size(), 1U);
  const std::string longLine = opened("<a><!--" + std::string(2500, 'x') + "--><sql id=''/></a>") +
                               change(range(0, 2506, 2507), "x") + change(range(0, 7, 7), "😀😀😀");
  EXPECT_EQ(rangeText(talk(longLine).lastDiagnostics().at(0)["range"]), "0:2521-0:2523");
  const std::string closed = notification("textDocument/didClose", {{"textDocument", {{"uri", uri}}}});
  EXPECT_EQ(talk(start + closed).lastDiagnostics(), Json::array());
}

TEST(LanguageServer, FindsMapsInAllDocuments) {
  const std::string other = "file:///nowhere/maps.xml";
  const std::string maps = opened("<a><map id='p' result='P'/><map id='q' result='Q'/></a>", other);
  struct Row {
    std::string text;
    std::string definitions;  // ranges in the other document
    std::size_t references;
  };
  const Row rows[] = {
      {"<a><select id='x' result=':|p'/></a>", "0:12-0:13", 1},
      {"<a><select id='x' result='[:q|]'/><select result=':q'", "0:36-0:37", 2},
      {"<a><select id='x' result='[|:q]'/></a>", "0:36-0:37", 1},
      {"<a><select id='x' result=':r|'/></a>", "", 1},
      {"<a><select id='x' result='p|'/></a>", "null", 0},
      {"<a><select id='x|' result=':p'/></a>", "null", 0},
      {"<a>:p|</a>", "null", 0},
  };
  for (const Row& row : rows) {
    const Marked marked(row.text);
    const Session session = talk(maps + opened(marked.text) + request(1, "textDocument/definition", marked.params) +
                                 request(2, "textDocument/references", marked.params));
    const Json definitions = session.answerTo(1);
    std::string found = definitions.is_null() ? "null" : "";
    for (const Json& location : definitions) {
      EXPECT_EQ(location["uri"], other);
      found += rangeText(location["range"]);
    }
    EXPECT_EQ(found, row.definitions) << row.text;
    EXPECT_EQ(session.answerTo(2).size(), row.references) << row.text << session.answerTo(2);
  }
}

// In the order of the answers: a file is read again when it has changed, and one that is open is that of its path,
// however the editor writes its URI.
TEST(LanguageServer, FindsMapsInTheFilesOfFolders) {
  const std::filesystem::path folder = std::filesystem::temp_directory_path() / "korvex-lsp-folder";
  std::filesystem::create_directories(folder);
  const std::string path = folder / "a+b.xml";
  const auto write = [&path](const std::string& text) { std::ofstream(path) << text; };
  Workspace workspace;
  workspace.addFolders({{"rootUri", uriOfPath(folder.string())}});
  const auto expectNames = [&workspace](const std::vector<std::string>& names) {
    std::vector<std::string> found;
    workspace.forEachMapName([&found](const std::string&, const MapName& map) { found.push_back(map.name); });
    EXPECT_EQ(found, names);
  };
  write("<a><map id='p'/></a>");
  expectNames({"p"});
  expectNames({"p"});
  write("<a><map id='longer'/></a>");
  expectNames({"longer"});
  const std::string open = "file://" + path;
  ASSERT_NE(open, uriOfPath(path));
  workspace.open(open, "<a><map id='q'/></a>");
  expectNames({"q"});
  workspace.close(open);
  std::filesystem::remove_all(folder);
  expectNames({});
}

TEST(LanguageServer, ListsDefinitionsAndTheirArguments) {
  const std::string text =
      "<a>\n<select id='find' arguments='$min, name' result='[P]'>\n<if true='min'>x</if></select>\n"
      "<const LIMIT='5'/><select id='typing' <sql id='";
  const Json symbols =
      talk(opened(text) + request(1, "textDocument/documentSymbol", {{"textDocument", {{"uri", uri}}}})).answerTo(1);
  std::string outline;
  for (const Json& symbol : symbols) {
    outline += symbol["name"].get<std::string>() + " (" + symbol["detail"].get<std::string>() + ") " +
               rangeText(symbol["range"]) + " " + rangeText(symbol["selectionRange"]) + "\n";
    for (const Json& child : symbol["children"]) {
      outline += "  " + child["name"].get<std::string>() + " " + rangeText(child["range"]) + "\n";
    }
  }
  EXPECT_EQ(outline,
            "find (select [P]) 1:0-2:30 1:12-1:16\n"
            "  min 1:30-1:33\n"
            "  name 1:35-1:39\n"
            "LIMIT (const) 3:0-3:18 3:7-3:12\n"
            "typing (select) 3:18-3:47 3:30-3:36\n");
}

// The texts that stand in the document after an item's edit, by label, in the order of the items.
std::vector<std::pair<std::string, std::string>> completed(const Marked& marked, const Json& items) {
  std::vector<std::pair<std::string, std::string>> texts;
  for (const Json& item : items) {
    TextDocument document(uri, marked.text);
    const Json& edit = item["textEdit"];
    EXPECT_EQ(edit["range"]["start"]["line"], edit["range"]["end"]["line"]);
    document.change({{"range", edit["range"]}, {"text", edit["newText"]}});
    texts.emplace_back(item["label"], document.text());
  }
  return texts;
}

TEST(LanguageServer, CompletesWhatIsUnderTheCursor) {
  struct Row {
    std::string text;
    std::string labels;  // the first ones
    std::string chosen;  // the text after the edit of the first
    bool snippets = false;
  };
  const std::string map = "<map id='m' result='M'/>";
  const Row rows[] = {
      {"<a>\n<|\n</a>", "select update insert", "<a>\n<select\n</a>"},
      {"<a>\n<|\n</a>", "select", "<a>\n<select id=\"$1\" result=\"$2\">$0</select>\n</a>", true},
      {"<a><cry|><sql id='x'/></a>", "select", "<a><select><sql id='x'/></a>", true},
      {"<a><s|ql id='x'/></a>", "select", "<a><select id='x'/></a>", true},
      {"<a> |", "select", "<a> <select"},
      {"<a>s|</a>", "", ""},
      {"<a></a>|", "", ""},
      {"<a><!-- <| --></a>", "", ""},
      {"<a><select id='x' result='int'>\n<|", "if choose foreach where set trim format try",
       "<a><select id='x' result='int'>\n<if ${1|true,false|}=\"$2\">$0</if>", true},
      {"<a><map id='x' result='M'><|</map></a>", "result",
       "<a><map id='x' result='M'><result column=\"$1\" property=\"$2\"/>$0</map></a>", true},
      {"<a><unheard><|</unheard></a>", "", ""},
      {"<a><select id='x'>1</|", "select", "<a><select id='x'>1</select>"},
      {"<a><sql id='x'>1</s|ql></a>", "sql", "<a><sql id='x'>1</sql></a>"},
      {"<a><select id='x' |>", "arguments result parallel", "<a><select id='x' arguments=\"\">"},
      {"<a><select id='x' |result=''>", "arguments parallel", "<a><select id='x' arguments=\"$1\"$0 result=''>", true},
      {"<a><select id='x' re|='y'>", "arguments result", "<a><select id='x' arguments='y'>", true},
      {"<a><select id='x'|>", "", ""},
      {"<a><update><if true='x' |>", "", ""},
      {"<a><select profile='|'>", "true false", "<a><select profile='true'>"},
      {"<a><update><where onVoid=\"q|uit\">", "quit ignoreAfter", "<a><update><where onVoid=\"quit\">"},
      {"<a>" + map + "<select result='|'>", "int long long bool double string binary {} :m",
       "<a>" + map + "<select result='int'>"},
      {"<a>" + map + "<select result=\":|\n<if true='x'/>", ":m", "<a>" + map + "<select result=\":m\n<if true='x'/>"},
      {"<a>" + map + "<select result='[:x|]'/>", ":m", "<a>" + map + "<select result='[:m]'/>"},
      {"<a><select unheard='|'>", "", ""},
      {"<a><sql id='x'/></a|><!-- < -->", "a", "<a><sql id='x'/></a><!-- < -->"},
      {"<a><select id='x'></se<!-- </ -->|", "if", "<a><select id='x'></se<!-- </ --><if"},
  };
  for (const Row& row : rows) {
    const Marked marked(row.text);
    const Json client = {{"textDocument", {{"completion", {{"completionItem", {{"snippetSupport", row.snippets}}}}}}}};
    const Json items = Session(request(0, "initialize", {{"capabilities", client}}) + opened(marked.text) +
                               request(1, "textDocument/completion", marked.params) + ending)
                           .answerTo(1);
    std::string labels;
    const auto texts = completed(marked, items);
    for (const auto& [label, text] : texts) labels += (labels.empty() ? "" : " ") + label;
    EXPECT_EQ(labels.substr(0, row.labels.empty() ? std::string::npos : row.labels.size()), row.labels) << row.text;
    EXPECT_EQ(texts.empty() ? "" : texts[0].second, row.chosen);
  }
}

// A snippet with "x" for what is to be typed, the first of each choice, and nothing at its last tab stop.
std::string filledIn(const std::string& snippet) {
  const std::string chosen = std::regex_replace(snippet, std::regex(R"(\$\{\d+[|:]([^|}]*?)(,[^}]*\|)?\})"), "$1");
  const std::string typed = std::regex_replace(chosen, std::regex(R"(\$[1-9])"), "x");
  return std::regex_replace(typed, std::regex(R"(\$0)"), "");
}

TEST(LanguageServer, SnippetsAreRightOnceFilledIn) {
  const std::string around[][2] = {
      {"<a>", "</a>"},
      {"<a><select id='s' result='int'>", "</select></a>"},
      {"<a><update id='u'>", "</update></a>"},
      {"<a><update id='u'><try>", "<except/></try></update></a>"},
      {"<a><update id='u'><choose>", "</choose></update></a>"},
      {"<a><map id='m' result='M'>", "</map></a>"},
  };
  const Json client = {{"textDocument", {{"completion", {{"completionItem", {{"snippetSupport", true}}}}}}}};
  for (const auto& [before, after] : around) {
    const Marked marked(before + "|" + after);
    const Json items = Session(request(0, "initialize", {{"capabilities", client}}) + opened(marked.text) +
                               request(1, "textDocument/completion", marked.params) + ending)
                           .answerTo(1);
    EXPECT_FALSE(items.empty()) << marked.text;
    for (const Json& item : items) {
      if (item["label"] == "except") continue;  // there is one
      const std::string text = before + filledIn(item["textEdit"]["newText"]) + after;
      EXPECT_EQ(talk(opened(text)).lastDiagnostics(), Json::array()) << text;
    }
  }
}

TEST(LanguageServer, OffersNoElementsToWhoTypesBlanks) {
  Marked marked("<a> |</a>");
  marked.params["context"] = {{"triggerKind", 2}, {"triggerCharacter", " "}};
  EXPECT_EQ(talk(opened(marked.text) + request(1, "textDocument/completion", marked.params)).answerTo(1),
            Json::array());
}

TEST(LanguageServer, TellsWhatIsUnderTheCursor) {
  struct Row {
    std::string text;
    std::string range;  // empty: nothing is told
    std::string told;   // among other things
  };
  const Row rows[] = {
      {"<a><s|elect id='x'>1</select></a>", "0:4-0:10", "A method that reads rows."},
      {"<a><select id='x'>1</select|></a>", "0:21-0:27", "A method that reads rows."},
      {"<a><select |profile='x'>1</select></a>", "0:11-0:18", "Values: `true` or `false`."},
      {"<a><update><set onVoid='|x'>1</set></update></a>", "0:24-0:25", "`quit`, `ignoreAfter`"},
      {"<|a><sql id='x'/></a>", "", ""},
      {"<a><select id='x'>if| 1</select></a>", "", ""},
      {"<a><select unheard='|x'/></a>", "", ""},
  };
  for (const Row& row : rows) {
    const Marked marked(row.text);
    const Json told = talk(opened(marked.text) + request(1, "textDocument/hover", marked.params)).answerTo(1);
    ASSERT_EQ(told.is_null(), row.range.empty()) << row.text << told;
    if (told.is_null()) continue;
    EXPECT_EQ(rangeText(told["range"]), row.range) << row.text;
    EXPECT_NE(told["contents"]["value"].get<std::string>().find(row.told), std::string::npos) << told;
  }
}

// Lines are updated only around each change, and columns counted in blocks.
TEST(LanguageServer, PlacesInLongLinesAndAfterChangesOfLineEnds) {
  std::string line;
  while (line.size() < 5000) line += "aé😀";  // four units in seven bytes
  const TextDocument document(uri, "x\r\n" + line);
  for (const std::size_t characters : {0U, 200U, 400U, 710U}) {
    const Position position = document.positionOf(3 + 7 * characters);
    EXPECT_EQ(position.character, 4 * characters);
    EXPECT_EQ(document.offsetOf(position), 3 + 7 * characters);
    EXPECT_EQ(document.offsetOf({1, position.character + 3}), 3 + 7 * characters + 3);  // in a surrogate pair
  }
  const std::string pieces[] = {"", "\r", "\n", "\r\n", "a"};
  for (const std::string& before : pieces) {
    for (const std::string& cut : pieces) {
      for (const std::string& put : pieces) {
        for (const std::string& after : pieces) {
          TextDocument changed(uri, before + cut + after + "\n");
          changed.change({{"range", changed.rangeOf({before.size(), before.size() + cut.size()})}, {"text", put}});
          const TextDocument anew(uri, changed.text());
          for (std::size_t at = 0; at <= anew.text().size(); ++at) {
            EXPECT_EQ(changed.positionOf(at).line, anew.positionOf(at).line);
          }
        }
      }
    }
  }
}

// The built program with a pipe to it and one from it, as an editor starts it.
class Program {
 public:
  Program() {
    int to[2];
    int from[2];
    EXPECT_TRUE(pipe(to) == 0 && pipe(from) == 0);
    _process = fork();
    if (_process == 0) {
      dup2(to[0], STDIN_FILENO);
      dup2(from[1], STDOUT_FILENO);
      for (const int end : {to[0], to[1], from[0], from[1]}) close(end);
      alarm(60);
      execl(KORVEX_DAO_TOOL, KORVEX_DAO_TOOL, "lsp", "--stdio", "--max-bytes", "4096", nullptr);
      _exit(127);
    }
    close(to[0]);
    close(from[1]);
    _in = fdopen(from[0], "r");
    _out = fdopen(to[1], "w");
  }
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;
  ~Program() { std::fclose(_in); }

  void say(const std::string& bytes) const {
    std::fwrite(bytes.data(), 1, bytes.size(), _out);
    std::fflush(_out);
  }
  // Waits for the next message.
  [[nodiscard]] Json heard() const {
    std::size_t length = 0;
    EXPECT_EQ(std::fscanf(_in, "Content-Length: %zu ", &length), 1);
    std::string content(length, ' ');
    EXPECT_EQ(std::fread(content.data(), 1, length, _in), length);
    return Json::parse(content);
  }
  [[nodiscard]] int exitCode() const {
    std::fclose(_out);
    int status = 0;
    waitpid(_process, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }

 private:
  pid_t _process;
  FILE* _in;
  FILE* _out;
};

TEST(LanguageServer, ServesAnEditorThatWaitsForEachAnswer) {
  const Program program;
  const Marked marked("<a><select id='x' result=':m|'/><map id='m'/></a>");
  const std::string exchange[][2] = {
      {request(1, "initialize", Json::object()), R"(/result/serverInfo/name="korvex-dao")"},
      {notification("initialized") + opened(marked.text), "/params/diagnostics/0/severity=1"},
      {"Content-Length: x\r\n\r\n", "/error/code=-32700"},
      {framed("{\"id\":"), "/error/code=-32700"},
      {framed(std::string(1 << 20, 'x')), "/error/code=-32600"},
      {request(2, "textDocument/definition", marked.params), "/result/0/range/start/character=40"},
      {request(3, "shutdown"), "/result=null"},
  };
  for (const auto& [said, wanted] : exchange) {
    program.say(said);
    const std::size_t equals = wanted.find('=');
    const Json heard = program.heard();
    const Json::json_pointer place(wanted.substr(0, equals));
    ASSERT_TRUE(heard.contains(place)) << heard << wanted;
    EXPECT_EQ(heard[place].dump(), wanted.substr(equals + 1)) << said.substr(0, 200);
  }
  program.say(notification("exit"));
  EXPECT_EQ(program.exitCode(), 0);
  EXPECT_EQ(Program().exitCode(), 1);
}

TEST(LanguageServer, UrisAndPathsAreTheSame) {
  for (const std::string path : {"/a b/c.xml", "/ä%/~x-1_.xml"}) EXPECT_EQ(pathOfUri(uriOfPath(path)), path);
  EXPECT_EQ(pathOfUri("file:///a%2"), "/a%2");
  EXPECT_EQ(pathOfUri("https://example/a"), "");
}

// Findings in SQL come when no message is waiting, for all open documents, together with those of each document.
TEST(LanguageServer, ChecksSqlAgainstASchema) {
  const std::string other = "file:///nowhere/schema.xml";
  const std::string upgrade = "<k><upgrade toVersion='1'>CREATE TABLE p (name TEXT)</upgrade></k>";
  const std::string method = "<k><select id='a' result='[string]' x='1'>SELECT nam FROM p</select></k>";
  const auto change =
      notification("textDocument/didChange",
                   {{"textDocument", {{"uri", other}}},
                    {"contentChanges", {{{"text", "<k><upgrade toVersion='1'>CREATE TABLE p (nam)</upgrade></k>"}}}}});
  const auto diagnostics = [&](const Json& options, const std::string& more) {
    const Session session(request(0, "initialize", {{"initializationOptions", options}}) + notification("initialized") +
                          opened(upgrade, other) + opened(method) + more);
    std::string codes;
    for (const Json& message : session.messages) {
      if (!message.contains("params") || message["params"]["uri"] != uri) continue;
      codes = "";
      for (const Json& diagnostic : message["params"]["diagnostics"]) {
        codes += diagnostic["code"].get<std::string>() + " " + diagnostic["range"]["start"]["character"].dump() + ";";
      }
    }
    return codes;
  };
  EXPECT_EQ(diagnostics(Json::object(), ""), "unread-attribute 36;");
  EXPECT_EQ(diagnostics({{"schema", "upgrades"}}, ""), "unread-attribute 36;sql 49;");
  EXPECT_EQ(diagnostics({{"schema", "upgrades"}}, change), "unread-attribute 36;");
  EXPECT_EQ(diagnostics({{"schema", "/nowhere/none.sql"}}, ""), "unread-attribute 36;");
  const auto typed = notification(
      "textDocument/didChange",
      {{"textDocument", {{"uri", uri}}},
       {"contentChanges", {{{"text", "<k><select id='a' result='[Persn]'>SELECT name FROM p</select></k>"}}}}});
  const std::string models = KORVEX_SOURCE_DIR "/tests/support/Person.json";
  EXPECT_EQ(diagnostics({{"schema", "upgrades"}}, typed), "");
  EXPECT_EQ(diagnostics({{"schema", "upgrades"}, {"models", models}}, typed), "unknown-class 27;");

  // Once for a change, however many messages follow while the client is quiet.
  std::istringstream in(request(0, "initialize", {{"initializationOptions", {{"schema", "upgrades"}}}}) +
                        opened("<k><select id='a' result='int'>SELECT x</select></k>") + notification("$/a") +
                        notification("$/b") + ending);
  std::ostringstream out;
  Server server(in, out, maximumBytes);
  server.setInputTest([](int) { return false; });
  EXPECT_TRUE(server.run());
  const std::string written = out.str();
  const std::regex published("publishDiagnostics");
  EXPECT_EQ(std::distance(std::sregex_iterator(written.begin(), written.end(), published), {}), 2);
}

}  // namespace
}  // namespace korvex::lsp
