#include "lsp/Server.h"

#include <algorithm>
#include <ostream>
#include <string>
#include <utility>

#include "lsp/Completion.h"
#include "lsp/Diagnostics.h"
#include "lsp/Hover.h"
#include "lsp/Navigation.h"
#include "lsp/Symbols.h"

namespace korvex::lsp {

namespace {

// JSON-RPC 2.0, section 5.1, and the protocol's own.
constexpr int parseError = -32700;
constexpr int invalidRequest = -32600;
constexpr int methodNotFound = -32601;
constexpr int serverNotInitialized = -32002;

constexpr int incrementalSync = 2;
// While somebody types, the next message comes sooner.
constexpr int quietMilliseconds = 200;

constexpr int byTriggerCharacter = 2;  // a CompletionTriggerKind

bool isId(const Json& id) { return id.is_string() || id.is_number_integer(); }

std::string uriIn(const Json& params) { return stringOf(member(member(params, "textDocument"), "uri")); }

}  // namespace

struct Server::Request {
  std::string_view method;
  std::string (Server::*answer)(const Json& params);  // the result as text
};

struct Server::Notification {
  std::string_view method;
  void (Server::*handle)(const Json& params);
};

const Server::Request Server::requests[] = {
    {"initialize", &Server::asText<&Server::initialize>},
    {"shutdown", &Server::asText<&Server::shutdown>},
    {"textDocument/completion", &Server::asText<&Server::complete>},
    {"textDocument/hover", &Server::asText<&Server::hover>},
    {"textDocument/definition", &Server::asText<&Server::findDefinition>},
    {"textDocument/references", &Server::asText<&Server::findReferences>},
    {"textDocument/documentSymbol", &Server::listSymbols},
};

const Server::Notification Server::notifications[] = {
    {"textDocument/didOpen", &Server::didOpen},
    {"textDocument/didChange", &Server::didChange},
    {"textDocument/didClose", &Server::didClose},
    {"exit", &Server::exit},
};

bool Server::run() {
  while (_state != State::Ended && _out) {
    if (_schemaIsDue && !isInputWaiting(quietMilliseconds)) checkSchema();
    const Frame frame = _reader.next();
    if (frame.status == FrameStatus::End) break;
    handle(frame);
  }
  return _orderly;
}

bool Server::isInputWaiting(int milliseconds) const {
  return _isInputWaiting ? _isInputWaiting(milliseconds) : _in.rdbuf()->in_avail() > 0;
}

// Gives way to a message that comes meanwhile, and is then due again.
void Server::checkSchema() {
  const auto found = _schema.check(_workspace, [this] { return !isInputWaiting(0); });
  if (!found && isInputWaiting(0)) return;
  _schemaIsDue = false;
  if (!found) return;
  for (const auto& [uri, findings] : *found) _urisWithSchema.insert(uri);
  for (const std::string& uri : std::exchange(_urisWithSchema, {})) {
    const MarkedDocument* document = _workspace.find(uri);
    const auto own = found->find(uri);
    if (!document) continue;
    publishDiagnostics(*document, own == found->end() ? std::span<const Finding>() : own->second);
    if (own != found->end()) _urisWithSchema.insert(uri);
  }
}

void Server::handle(const Frame& frame) {
  if (frame.status == FrameStatus::Malformed)
    return sendError(nullptr, parseError,
                     "no message here: a header needs 'Content-Length: N', the length of the content in bytes");
  if (frame.status == FrameStatus::TooLarge) return sendError(nullptr, invalidRequest, "the message is too large");
  const Json message = parsedMessage(frame.content);
  if (message.is_discarded()) return sendError(nullptr, parseError, "the message is not JSON");
  handleMessage(message);
}

void Server::handleMessage(const Json& message) {
  const Json& id = member(message, "id");
  const Json& method = member(message, "method");
  if (!method.is_string()) {
    const bool response = isId(id) && (message.contains("result") || message.contains("error"));
    if (!response) sendError(isId(id) ? id : Json(), invalidRequest, "the message names no method");
  } else if (isId(id)) {
    answer(id, method.get<std::string>(), member(message, "params"));
  } else if (message.contains("id")) {
    sendError(nullptr, invalidRequest, "the id is neither an integer nor a string");
  } else {
    handleNotification(method.get<std::string>(), member(message, "params"));
  }
}

void Server::answer(const Json& id, const std::string& method, const Json& params) {
  if (_state == State::Started && method != "initialize") {
    return sendError(id, serverNotInitialized, "the first request must be initialize");
  }
  if (_state != State::Started && method == "initialize") {
    return sendError(id, invalidRequest, "the server is already initialized");
  }
  if (_state == State::ShutDown) return sendError(id, invalidRequest, "the server is shut down");
  const auto* found = std::find_if(std::begin(requests), std::end(requests),
                                   [&method](const Request& request) { return request.method == method; });
  if (found == std::end(requests)) return sendError(id, methodNotFound, "there is no method " + method);
  const std::string result = (this->*found->answer)(params);
  writeMessage(_out, R"({"jsonrpc":"2.0","id":)" + textOf(id) + R"(,"result":)" + result + "}");
}

template <Json (Server::*answer)(const Json& params)>
std::string Server::asText(const Json& params) {
  return textOf((this->*answer)(params));
}

// Unknown notifications, and those that come at the wrong time, are ignored.
void Server::handleNotification(const std::string& method, const Json& params) {
  if (_state != State::Initialized && method != "exit") return;
  for (const Notification& notification : notifications) {
    if (notification.method == method) (this->*notification.handle)(params);
  }
}

Json Server::initialize(const Json& params) {
  _state = State::Initialized;
  _workspace.addFolders(params);
  _schema.configure(params, _workspace);
  const Json& ofTexts = member(member(params, "capabilities"), "textDocument");
  _snippets = member(member(member(ofTexts, "completion"), "completionItem"), "snippetSupport") == true;
  _relatedInformation = member(member(ofTexts, "publishDiagnostics"), "relatedInformation") == true;
  const Json capabilities = {
      {"positionEncoding", "utf-16"},
      {"textDocumentSync", {{"openClose", true}, {"change", incrementalSync}}},
      {"completionProvider", {{"triggerCharacters", {"<", "/", " ", "\"", "'", ":"}}}},
      {"hoverProvider", true},
      {"definitionProvider", true},
      {"referencesProvider", true},
      {"documentSymbolProvider", true},
  };
  return {{"capabilities", capabilities}, {"serverInfo", {{"name", "korvex-dao"}, {"version", KORVEX_VERSION}}}};
}

Json Server::shutdown(const Json& /*params*/) {
  _state = State::ShutDown;
  return nullptr;
}

void Server::exit(const Json& /*params*/) {
  _orderly = _state == State::ShutDown;
  _state = State::Ended;
}

Json Server::complete(const Json& params) {
  const MarkedDocument* document = documentIn(params);
  const bool invoked = member(member(params, "context"), "triggerKind") != byTriggerCharacter;
  return document ? completionsAt(*document, positionIn(params), _workspace, {_snippets, invoked}) : Json::array();
}

Json Server::hover(const Json& params) {
  const MarkedDocument* document = documentIn(params);
  return document ? hoverAt(*document, positionIn(params)) : Json();
}

Json Server::findDefinition(const Json& params) {
  const MarkedDocument* document = documentIn(params);
  return document ? definitionsOf(*document, positionIn(params), _workspace) : Json();
}

Json Server::findReferences(const Json& params) {
  const MarkedDocument* document = documentIn(params);
  const bool declaration = member(member(params, "context"), "includeDeclaration") == true;
  return document ? referencesTo(*document, positionIn(params), declaration, _workspace) : Json();
}

std::string Server::listSymbols(const Json& params) {
  const MarkedDocument* document = documentIn(params);
  return document ? symbolsOf(*document) : "[]";
}

void Server::didOpen(const Json& params) {
  const std::string uri = uriIn(params);
  const Json& text = member(member(params, "textDocument"), "text");
  if (!uri.empty() && text.is_string()) publishDiagnostics(_workspace.open(uri, text.get<std::string>()));
  _schemaIsDue = _schema.isWanted();
}

void Server::didChange(const Json& params) {
  MarkedDocument* document = documentIn(params);
  const Json& changes = member(params, "contentChanges");
  if (!document || !changes.is_array()) return;
  for (const Json& change : changes) document->change(change);
  publishDiagnostics(*document);
  _schemaIsDue = _schema.isWanted();
}

// A closed document no longer has findings.
void Server::didClose(const Json& params) {
  const std::string uri = uriIn(params);
  if (uri.empty()) return;
  _workspace.close(uri);
  _schemaIsDue = _schema.isWanted();
  send({{"method", "textDocument/publishDiagnostics"}, {"params", {{"uri", uri}, {"diagnostics", Json::array()}}}});
}

void Server::publishDiagnostics(const MarkedDocument& document, std::span<const Finding> ofSchema) {
  const Json diagnostics = diagnosticsOf(document, _relatedInformation, ofSchema);
  send({{"method", "textDocument/publishDiagnostics"},
        {"params", {{"uri", document.text().uri()}, {"diagnostics", diagnostics}}}});
}

MarkedDocument* Server::documentIn(const Json& params) { return _workspace.find(uriIn(params)); }

void Server::send(Json message) {
  message["jsonrpc"] = "2.0";
  writeMessage(_out, textOf(message));
}

void Server::sendError(const Json& id, int code, const std::string& message) {
  send({{"id", id}, {"error", {{"code", code}, {"message", message}}}});
}

}  // namespace korvex::lsp
