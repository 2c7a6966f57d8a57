// An editor's session with the language server: a document, edits, malformed messages, and requests about positions.
// The server must have the text of a simple replacement, answer every request, and answer like a server that got the
// final text at once.
//
// The input's parts are separated by the byte 0x1E. The first is the document. Every other one begins with a letter:
//   e LINE CHARACTER LINE CHARACTER text  an edit of what lies between two places
//   w text                                the whole text anew
//   r bytes                               a message of these bytes
//   c, h, d, f LINE CHARACTER             a question: completion, hover, definition, references
// where LINE and CHARACTER are one byte each.
#include <algorithm>
#include <sstream>

#include "fuzz/Disagreement.h"
#include "fuzz/Input.h"
#include "fuzz/Units.h"
#include "korvex/QXDAOPackReader.h"
#include "lsp/Server.h"

namespace korvex::lsp {
namespace {

constexpr char separator = '\x1E';
constexpr std::size_t maxQuestions = 20;
const std::string uri = "file:///fuzz.xml";
const Json document = {{"uri", uri}};

std::string framed(const std::string& content) {
  return std::string("Content-Length: ").append(std::to_string(content.size())).append("\r\n\r\n").append(content);
}

// A server that is told one message after the other.
class Session {
 public:
  explicit Session(const std::string& text) {
    const Json completion = {{"completionItem", {{"snippetSupport", true}}}};
    expectThat(ask("initialize", {{"capabilities", {{"textDocument", {{"completion", completion}}}}}}).is_object(),
               "the server tells its capabilities");
    notify("didOpen", {{"textDocument", {{"uri", uri}, {"text", text}}}});
  }

  // The messages that it writes.
  [[nodiscard]] std::vector<Json> say(const std::string& content) {
    _in.clear();
    _in.str(framed(content));
    _out.str("");
    expectThat(!_server.run(), "the session has not ended");
    std::istringstream written(_out.str());
    MessageReader reader(written, _out.str().size());
    std::vector<Json> messages;
    for (Frame frame = reader.next(); frame.status == FrameStatus::Message; frame = reader.next()) {
      messages.push_back(Json::parse(frame.content));
    }
    return messages;
  }

  [[nodiscard]] Json ask(const std::string& method, const Json& params) {
    const std::vector<Json> messages = say(textOf(Json{{"id", 1}, {"method", method}, {"params", params}}));
    expectThat(messages.size() == 1 && messages[0].value("id", 0) == 1 && messages[0].contains("result"),
               "a question has one answer");
    return messages[0]["result"];
  }

  void notify(const std::string& method, const Json& params) {
    const std::vector<Json> messages =
        say(textOf(Json{{"method", std::string("textDocument/").append(method)}, {"params", params}}));
    expectThat(messages.size() == 1 && messages[0]["method"] == "textDocument/publishDiagnostics",
               "a change leads to findings");
    _diagnostics = messages[0]["params"]["diagnostics"];
  }

  [[nodiscard]] const Json& diagnostics() const { return _diagnostics; }

 private:
  std::istringstream _in;
  std::ostringstream _out;
  Server _server{_in, _out, 65536};
  Json _diagnostics;
};

// Where a place is, unit by unit.
std::size_t plainOffset(const Units& units, const Position& position) {
  std::size_t at = 0;
  for (std::size_t line = 0; line < position.line; ++line) {
    while (at < units.size() && units[at] != '\r' && units[at] != '\n') ++at;
    if (at == units.size()) return at;
    at += units[at] == '\r' && at + 1 < units.size() && units[at + 1] == '\n' ? 2 : 1;
  }
  const std::size_t begin = at;
  while (at < units.size() && units[at] != '\r' && units[at] != '\n' && at - begin < position.character) ++at;
  const bool insidePair = at < units.size() && units[at] >= 0xDC00 && units[at] < 0xE000;
  return insidePair ? at - 1 : at;
}

Json jsonOf(const Position& position) { return {{"line", position.line}, {"character", position.character}}; }

// As JSON carries it, the only way by which texts reach a server.
std::string carried(std::string_view text) { return Json::parse(textOf(text)).get<std::string>(); }

std::size_t takeNumber(std::string_view& bytes) {
  if (bytes.empty()) return 0;
  const auto number = static_cast<unsigned char>(bytes.front());
  bytes.remove_prefix(1);
  return number;
}

Position takePosition(std::string_view& bytes) {
  const std::size_t line = takeNumber(bytes) % 32;  // most documents have few lines
  return {line, takeNumber(bytes)};
}

struct Question {
  std::string_view method;
  Position position;
};

struct Letter {
  char letter;
  std::string_view method;
};
constexpr Letter questionLetters[] = {{'c', "completion"}, {'h', "hover"}, {'d', "definition"}, {'f', "references"}};

bool isBefore(const Json& left, const Json& right) {
  return std::pair(left["line"], left["character"]) <= std::pair(right["line"], right["character"]);
}

// Clients demand that an edit is within the cursor's line and touches the cursor.
void checkCompletions(const Json& items, const Json& cursor) {
  for (const Json& item : items) {
    const Json& range = item["textEdit"]["range"];
    expectThat(range["start"]["line"] == range["end"]["line"], "a completion edits one line");
    if (cursor["line"] != range["start"]["line"]) continue;  // a place past the end of the document
    expectThat(isBefore(range["start"], cursor), "a completion begins in front of the cursor");
  }
}

class Exchange {
 public:
  explicit Exchange(std::string_view text) : _text(carried(text)), _copy(uri, _text), _session(_text) {}

  void take(std::string_view part) {
    const char letter = part.front();
    part.remove_prefix(1);
    if (letter == 'e') return edit(part);
    if (letter == 'w') return replace(part);
    if (letter == 'r') return sayRaw(part);
    for (const Letter& question : questionLetters) {
      if (question.letter == letter && _questions.size() < maxQuestions) {
        _questions.push_back({question.method, takePosition(part)});
        static_cast<void>(answerTo(_session, _questions.back()));
      }
    }
  }

  void compareWithFreshServer() {
    Session fresh(_text);
    expectSame("findings", textOf(_session.diagnostics()), textOf(fresh.diagnostics()));
    const Json symbols = _session.ask("textDocument/documentSymbol", {{"textDocument", document}});
    expectSame("symbols", textOf(symbols),
               textOf(fresh.ask("textDocument/documentSymbol", {{"textDocument", document}})));
    for (const Question& question : _questions) {
      expectSame(question.method, textOf(answerTo(_session, question)), textOf(answerTo(fresh, question)));
    }
  }

 private:
  void edit(std::string_view part) {
    const Position from = takePosition(part);
    const Position to = takePosition(part);
    const std::string text = carried(part);
    const Units units = unitsOf(_text);
    const std::size_t begin = plainOffset(units, from);
    const std::size_t end = std::max(begin, plainOffset(units, to));
    _text = korvex::textOf(units.substr(0, begin)) + text + korvex::textOf(units.substr(end));
    change({{"range", {{"start", jsonOf(from)}, {"end", jsonOf(to)}}}, {"text", text}});
  }

  void replace(std::string_view part) {
    _text = carried(part);
    change({{"text", _text}});
  }

  void change(const Json& contentChange) {
    _copy.change(contentChange);
    expectSame("the text after a change", _copy.text(), _text);
    _session.notify("didChange", {{"textDocument", document}, {"contentChanges", Json::array({contentChange})}});
  }

  // Not one that would end the session or change the document behind the comparison's back.
  void sayRaw(std::string_view part) {
    const Json message = parsedMessage(std::string(part));
    const std::string method = message.is_object() ? message.value("/method"_json_pointer, Json()).dump() : "";
    for (const char* word : {"exit", "shutdown", "did"}) {
      if (method.find(word) != std::string::npos) return;
    }
    const bool request = message.is_object() && message.contains("id");
    const std::vector<Json> answers = _session.say(std::string(part));
    expectThat(answers.size() <= 1, "a message has one answer at most");
    if (message.is_discarded() || request) {
      const bool response = request && (message.contains("result") || message.contains("error"));
      expectThat(response || answers.size() == 1, "what is no message is answered, and so is a request");
    }
  }

  static Json answerTo(Session& session, const Question& question) {
    const Json cursor = jsonOf(question.position);
    const Json answer = session.ask(std::string("textDocument/").append(question.method),
                                    {{"textDocument", document}, {"position", cursor}});
    if (question.method == "completion") checkCompletions(answer, cursor);
    return answer;
  }

  std::string _text;
  TextDocument _copy;
  Session _session;
  std::vector<Question> _questions;
};

void run(std::string_view input) {
  Exchange exchange(input.substr(0, input.find(separator)));
  while (!input.empty()) {
    input.remove_prefix(std::min(input.find(separator), input.size() - 1) + 1);
    const std::string_view part = input.substr(0, input.find(separator));
    if (!part.empty()) exchange.take(part);
  }
  exchange.compareWithFreshServer();
}

}  // namespace
}  // namespace korvex::lsp

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view input = korvex::inputOf(data, size);
  if (!korvex::mayGrowLarge(input)) korvex::lsp::run(input);
  return 0;
}
