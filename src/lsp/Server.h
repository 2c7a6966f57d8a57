// A language server for definition documents: the Language Server Protocol 3.17 over two streams.
#pragma once

#include <cstddef>
#include <functional>
#include <iosfwd>
#include <set>
#include <span>
#include <string>
#include <utility>

#include "korvex/QXDAOPackReader.h"
#include "lsp/Json.h"
#include "lsp/MessageStream.h"
#include "lsp/SchemaDiagnostics.h"
#include "lsp/Workspace.h"

namespace korvex::lsp {

class Server {
 public:
  static constexpr std::size_t defaultMaximumBytes = std::size_t{64} * 1024 * 1024;

  // The streams are not owned. Messages of more than `maximumBytes` are answered with an error.
  Server(std::istream& in, std::ostream& out, std::size_t maximumBytes = defaultMaximumBytes)
      : _in(in), _reader(in, maximumBytes), _out(out) {}

  // Whether a message is waiting, or comes within some milliseconds: asked before and during the slow check against a
  // schema, which then gives way.
  // Without it, that check waits for the end of what the stream has buffered.
  using InputTest = std::function<bool(int milliseconds)>;
  void setInputTest(InputTest isWaiting) { _isInputWaiting = std::move(isWaiting); }

  // Serves until the client sends "exit" or closes its end of the pipe; no other message ends it. True when the client
  // requested "shutdown" first, which the protocol maps to exit code 0, otherwise to 1.
  [[nodiscard]] bool run();

 private:
  struct Request;
  struct Notification;
  static const Request requests[];
  static const Notification notifications[];

  void handle(const Frame& frame);
  void handleMessage(const Json& message);
  void answer(const Json& id, const std::string& method, const Json& params);
  void handleNotification(const std::string& method, const Json& params);

  template <Json (Server::*answer)(const Json& params)>
  [[nodiscard]] std::string asText(const Json& params);
  [[nodiscard]] Json initialize(const Json& params);
  [[nodiscard]] Json shutdown(const Json& params);
  [[nodiscard]] Json complete(const Json& params);
  [[nodiscard]] Json hover(const Json& params);
  [[nodiscard]] Json findDefinition(const Json& params);
  [[nodiscard]] Json findReferences(const Json& params);
  [[nodiscard]] std::string listSymbols(const Json& params);

  void didOpen(const Json& params);
  void didChange(const Json& params);
  void didClose(const Json& params);
  void exit(const Json& params);

  void publishDiagnostics(const MarkedDocument& document, std::span<const Finding> ofSchema = {});
  void checkSchema();
  [[nodiscard]] bool isInputWaiting(int milliseconds) const;
  // The open document that the parameters name; null when there is none.
  [[nodiscard]] MarkedDocument* documentIn(const Json& params);

  void send(Json message);
  void sendError(const Json& id, int code, const std::string& message);

  enum class State { Started, Initialized, ShutDown, Ended };

  std::istream& _in;
  InputTest _isInputWaiting;
  MessageReader _reader;
  std::ostream& _out;
  Workspace _workspace;
  SchemaDiagnostics _schema;
  bool _schemaIsDue = false;                           // the documents have changed since the last check
  std::set<std::string, std::less<>> _urisWithSchema;  // that have findings of the last check
  State _state = State::Started;
  bool _snippets = false;            // supported by the client
  bool _relatedInformation = false;  // supported by the client
  bool _orderly = false;             // "shutdown" came before "exit"
};

}  // namespace korvex::lsp
