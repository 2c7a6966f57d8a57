#include <gtest/gtest.h>

#include <sstream>

#include "LanguageServer/Server.h"

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

// What a server says to an input.
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

TEST(LanguageServer, PassesOverWhatMeansNothing) {
  const std::string inputs[] = {
      notification("$/setTrace", 5),
      notification("textDocument/didOpen"),
      notification("textDocument/didChange", {{"textDocument", "x"}, {"contentChanges", 5}}),
      framed(R"({"id":7,"result":null})"),
      "CONTENT-LENGTH:2 \r\nContent-Type: x\r\n\r\n{}",
  };
  for (const std::string& input : inputs) EXPECT_TRUE(talk(input).orderly) << input;
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
      {"<a>\n <sql id=''>1</sql>\n</a>", "1:1-1:5", "Element name(id attribute) is empty."},
      {"<a>\r\n é😀<sql/></a>", "1:4-1:8", "Element name(id attribute) is empty."},
      {"<?xml version='1.0' encoding='ISO-8859-1'?><a>é<sql/></a>", "0:47-0:51",
       "Element name(id attribute) is empty."},
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
  EXPECT_EQ(talk(mended + change(nullptr, "<a><map/></a>")).lastDiagnostics().size(), 1U);
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

TEST(LanguageServer, UrisAndPathsAreTheSame) {
  for (const std::string path : {"/a b/c.xml", "/ä%/~x-1_.xml"}) EXPECT_EQ(pathOfUri(uriOfPath(path)), path);
  EXPECT_EQ(pathOfUri("file:///a%2"), "/a%2");
  EXPECT_EQ(pathOfUri("https://example/a"), "");
}

}  // namespace
}  // namespace korvex::lsp
