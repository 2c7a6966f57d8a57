// What a database does with a call: finds the method, waits for a connection, runs, counts.
#pragma once

#include <atomic>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <utility>

#include "korvex/sqlite/Database.h"
#include "sqlite/Connections.h"
#include "sqlite/Execution.h"
#include "sqlite/Profile.h"
#include "sqlite/RowSource.h"

namespace korvex {

// A method, and what it was loaded with.
struct Target {
  std::shared_ptr<const Loaded> loaded;
  const Plan* plan = nullptr;
};

class Database::Implementation {
 public:
  Implementation(std::string path, DatabaseOptions options, bool inMemory)
      : _cipher(options.cipher), _connections(std::move(path), std::move(options), inMemory) {}

  [[nodiscard]] Connections& connections() { return _connections; }

  void load(std::shared_ptr<const DefinitionSet> set, ModelRegistry models);
  void started() { _started = true; }
  [[nodiscard]] Outcome<Target> find(std::string_view method) const;

  // Runs a method. `sink` is null when it is no select, `result` when only rows are asked for.
  [[nodiscard]] Failure run(const Target& target, const Arguments& arguments, const CallOptions& options, RowSink* sink,
                            CallResult* result);
  [[nodiscard]] Failure select(const Target& target, const Arguments& arguments, const CallOptions& options,
                               const RowTaker& taker);
  [[nodiscard]] Outcome<Cursor> cursor(Target target, Arguments arguments, const CallOptions& options);

  [[nodiscard]] Failure begin(const CallOptions& options);
  [[nodiscard]] Failure end(bool keep);

  using Work = std::function<Failure(Connection& connection)>;
  using LoadedWork = std::function<Failure(Connection& connection, const Loaded& loaded)>;
  // Runs work on the writer, outside transactions and with a set that is loaded.
  [[nodiscard]] Failure withWriter(const CallOptions& options, const LoadedWork& work);
  // Runs work on the writer or in this thread's transaction.
  [[nodiscard]] Failure withConnection(const CallOptions& options, const Work& work);

 private:
  [[nodiscard]] std::shared_ptr<const Loaded> loaded() const;
  [[nodiscard]] CallControl controlOf(const CallOptions& options) const {
    return {options.cancellation, &_connections.suspending()};
  }
  [[nodiscard]] Outcome<Connections::Lease> leaseFor(const Plan& plan, const CallControl& control);
  [[nodiscard]] Failure execute(const Target& target, const Arguments& arguments, const CallOptions& options,
                                RowSink* sink, CallResult* result);

  std::shared_ptr<Cipher> _cipher;
  Connections _connections;
  mutable std::mutex _mutex;  // of what is loaded
  std::shared_ptr<const Loaded> _loaded;
  const std::thread::id _mainThread = std::this_thread::get_id();
  std::atomic<bool> _started{false};
};

}  // namespace korvex
