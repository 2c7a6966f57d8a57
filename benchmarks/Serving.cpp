// What an editor waits for, beside one check of the same document.
#include <algorithm>
#include <memory>
#include <sstream>
#include <string>

#include "benchmarks/Documents.h"
#include "benchmarks/Measuring.h"
#include "checks/DocumentCheck.h"
#include "korvex/QXDAOPackReader.h"
#include "lsp/Server.h"

namespace korvex::benchmarks {

namespace {

using lsp::Json;

constexpr std::size_t lines = 10'000;
const std::string uri = "file:///benchmark.xml";

std::string documentOfLines() {
  std::string text = believableDocument(1370);
  const auto count = static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
  require(count >= lines && count < lines + lines / 10, "the document has " + std::to_string(count) + " lines");
  return text;
}

// What korvex-dao check does with it.
std::vector<Finding> check(const std::string& text) {
  const Loaded loaded = load(text, true);
  return findingsOf({}, *loaded.document, loaded.definitions);
}

// A server with the document open.
class Session {
 public:
  explicit Session(const std::string& text) : _text(text) {
    static_cast<void>(ask("initialize", {{"capabilities", Json::object()}}));
    static_cast<void>(
        say({{"method", "textDocument/didOpen"}, {"params", {{"textDocument", {{"uri", uri}, {"text", text}}}}}}));
  }

  // What it writes about a message.
  [[nodiscard]] std::string say(Json message) {
    message["jsonrpc"] = "2.0";
    return sayText(message.dump());
  }
  [[nodiscard]] std::string sayText(const std::string& content) {
    _in.clear();
    _in.str("Content-Length: " + std::to_string(content.size()) + "\r\n\r\n" + content);
    _out.str("");
    static_cast<void>(_server.run());
    return _out.str();
  }
  [[nodiscard]] std::string ask(const std::string& method, const Json& params) {
    return say({{"id", 1}, {"method", method}, {"params", params}});
  }

  // The place behind the first occurrence of a text in the second half of the document.
  [[nodiscard]] Json placeBehind(const std::string& wanted) const {
    const std::size_t at = _text.find(wanted, _text.size() / 2);
    require(at != std::string::npos, "the document has no " + wanted);
    const std::string before = _text.substr(0, at + wanted.size());
    const auto line = std::count(before.begin(), before.end(), '\n');
    return {{"line", line}, {"character", before.size() - before.rfind('\n') - 1}};
  }

 private:
  std::string _text;
  std::istringstream _in;
  std::ostringstream _out;
  lsp::Server _server{_in, _out};
};

void registerAnswer(const std::string& name, const std::shared_ptr<Session>& session, const Json& message,
                    const std::string& expected) {
  const std::string content = message.dump();
  require(session->sayText(content).find(expected) != std::string::npos, name + " gives no " + expected);
  benchmark::RegisterBenchmark(name.c_str(), [session, content](benchmark::State& state) {
    timeMaking(state, [&] { return session->sayText(content); });
  })->UseManualTime();
}

Json changed(const Json& begin, const Json& end, const std::string& text) {
  return {{"range", {{"start", begin}, {"end", end}}}, {"text", text}};
}

// A blank more, and the same blank less: the document stays the same.
Json change(const Json& place) {
  Json behind = place;
  behind["character"] = place["character"].get<int>() + 1;
  return {{"method", "textDocument/didChange"},
          {"params",
           {{"textDocument", {{"uri", uri}}},
            {"contentChanges", {changed(place, place, " "), changed(place, behind, "")}}}}};
}

Json question(const std::string& method, const Json& place) {
  return {{"id", 2},
          {"method", "textDocument/" + method},
          {"params", {{"textDocument", {{"uri", uri}}}, {"position", place}}}};
}

}  // namespace

void registerServing() {
  const auto text = std::make_shared<const std::string>(documentOfLines());
  const auto session = std::make_shared<Session>(*text);
  benchmark::RegisterBenchmark("serve/check", [text](benchmark::State& state) {
    timeMaking(state, [&] { return check(*text); });
  })->UseManualTime();
  registerAnswer("serve/change", session, change(session->placeBehind("<select")), "\"diagnostics\"");
  registerAnswer("serve/completion", session, question("completion", session->placeBehind(" result=\"[:")),
                 "\"label\"");
  registerAnswer("serve/hover", session, question("hover", session->placeBehind("<select")), "A method that reads");
  registerAnswer("serve/symbols", session, question("documentSymbol", session->placeBehind("<select")), "\"select");
  registerAnswer("serve/definition", session, question("definition", session->placeBehind("<map id=\"")), "\"uri\"");
}

}  // namespace korvex::benchmarks
