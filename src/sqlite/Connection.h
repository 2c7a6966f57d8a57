// One connection to the file, used by one thread at a time.
#pragma once

#include <sqlite3.h>

#include <array>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "korvex/Plan.h"
#include "korvex/sqlite/Cancellation.h"
#include "korvex/sqlite/Database.h"
#include "sqlite/StatementCache.h"

namespace korvex {

enum class ConnectionRole : std::uint8_t { Writer, Reader };

// What ends a call early.
struct CallControl {
  const Cancellation* cancellation = nullptr;
  const std::atomic<bool>* suspending = nullptr;

  [[nodiscard]] bool cancelled() const { return cancellation && cancellation->cancelled(); }
  [[nodiscard]] bool stops() const {
    return cancelled() || (suspending && suspending->load(std::memory_order_relaxed));
  }
  // Why the call ends.
  [[nodiscard]] DatabaseError error() const;
};

// The engine's own statements, prepared when first used.
enum class OwnStatement : std::uint8_t {
  Begin,
  BeginImmediate,
  Commit,
  Rollback,
  Savepoint,
  Release,
  RollbackToSavepoint,
  SavepointOfTry,
  ReleaseOfTry,
  RollbackToTry,
};

class Connection {
 public:
  [[nodiscard]] static Outcome<std::unique_ptr<Connection>> open(const std::string& path,
                                                                 const DatabaseOptions& options, ConnectionRole role);

  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;
  ~Connection() = default;

  [[nodiscard]] sqlite3* handle() const { return _handle.get(); }
  [[nodiscard]] StatementCache& statements() { return _statements; }
  // For the calls of this connection, one after the other.
  [[nodiscard]] Assembly& assembly() { return _assembly; }

  [[nodiscard]] bool inWalMode() const { return _walMode; }
  [[nodiscard]] bool inTransaction() const { return sqlite3_get_autocommit(handle()) == 0; }

  // The control of the call that runs now; it stays alive until the next one is set.
  void setControl(const CallControl* control) { _control = control; }
  // Forgets the statements of another set.
  void use(const std::shared_ptr<const DefinitionSet>& set);

  // The error of a code that SQLite has just given: the call's own end where that was the reason.
  [[nodiscard]] DatabaseError error(int code) const;

  [[nodiscard]] Failure run(OwnStatement statement);
  // Other SQL of the engine's own, one statement or several.
  [[nodiscard]] Failure execute(const char* sql);
  // Prepares the first statement of `sql`; null where there is none. The method's own SQL is guarded against what would
  // interfere with transactions.
  [[nodiscard]] int prepare(std::string_view sql, bool guarded, StatementHandle& statement, const char*& tail);

 private:
  struct Close {
    void operator()(sqlite3* connection) const { sqlite3_close(connection); }
  };

  Connection(sqlite3* handle, const DatabaseOptions& options);
  [[nodiscard]] Failure configure(const DatabaseOptions& options, ConnectionRole role);
  [[nodiscard]] Failure chooseJournal();
  [[nodiscard]] static int onBusy(void* connection, int count);
  [[nodiscard]] static int onProgress(void* connection);
  [[nodiscard]] static int authorize(void* connection, int action, const char*, const char*, const char*, const char*);

  std::unique_ptr<sqlite3, Close> _handle;  // closed last
  StatementCache _statements;
  std::array<StatementHandle, 10> _own;
  Assembly _assembly;
  std::shared_ptr<const DefinitionSet> _set;
  const CallControl* _control = nullptr;
  std::chrono::milliseconds _busyTimeout;
  std::chrono::milliseconds _waited{};
  bool _walMode = false;
  bool _guarded = false;
};

}  // namespace korvex
