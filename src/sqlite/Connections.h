// The connections of a database: one writer, and readers as they are needed. Who may use which, when.
#pragma once

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "korvex/sqlite/Database.h"
#include "sqlite/Connection.h"

namespace korvex {

// Marks that this thread runs something on a database, until it is destroyed.
class Entered {
 public:
  explicit Entered(const void* database) : _database(database), _outer(innermost) { innermost = this; }
  Entered(const Entered&) = delete;
  Entered& operator=(const Entered&) = delete;
  ~Entered() { innermost = _outer; }

  // Whether this thread is within a call of the database already.
  [[nodiscard]] static bool holds(const void* database);

 private:
  static thread_local const Entered* innermost;

  const void* _database;
  const Entered* _outer;
};

class Connections {
 public:
  // The right to use a connection, until it is destroyed.
  class Lease {
   public:
    Lease() = default;
    Lease(Lease&& other) noexcept
        : _connections(std::exchange(other._connections, nullptr)),
          _connection(other._connection),
          _ofTransaction(other._ofTransaction) {}
    Lease& operator=(Lease&& other) noexcept {
      std::swap(_connections, other._connections);
      std::swap(_connection, other._connection);
      std::swap(_ofTransaction, other._ofTransaction);
      return *this;
    }
    ~Lease() {
      if (_connections) _connections->giveBack(*_connection);
    }

    [[nodiscard]] Connection& operator*() const { return *_connection; }
    [[nodiscard]] Connection* operator->() const { return _connection; }
    // Whether it is the connection of a transaction that this thread has open.
    [[nodiscard]] bool ofTransaction() const { return _ofTransaction; }

   private:
    friend class Connections;
    Lease(Connections& connections, Connection& connection, bool ofTransaction = false)
        : _connections(&connections), _connection(&connection), _ofTransaction(ofTransaction) {}

    Connections* _connections = nullptr;
    Connection* _connection = nullptr;
    bool _ofTransaction = false;
  };

  Connections(std::string path, DatabaseOptions options, bool inMemory)
      : _path(std::move(path)), _options(std::move(options)), _inMemory(inMemory) {}

  [[nodiscard]] Failure open();
  [[nodiscard]] const DatabaseOptions& options() const { return _options; }
  [[nodiscard]] const std::atomic<bool>& suspending() const { return _suspending; }

  // Waits for its turn. In a transaction of this thread it is the transaction's connection in any case, and in a
  // database without a write-ahead log the writer.
  [[nodiscard]] Outcome<Lease> writer(const CallControl& control) { return take(control, false); }
  [[nodiscard]] Outcome<Lease> reader(const CallControl& control) { return take(control, true); }

  // Whether this thread has a transaction open, or has had one that a suspension ended.
  [[nodiscard]] bool ownsTransaction() const;
  // Keeps the writer for this thread, beyond the lease.
  void keep(const Lease& writer);
  // Ends that; a lease of the writer must be there no more.
  void letGo();

  void suspend();
  [[nodiscard]] Failure resume();

 private:
  using Lock = std::unique_lock<std::mutex>;

  [[nodiscard]] Outcome<Lease> take(const CallControl& control, bool reads);
  [[nodiscard]] Outcome<Lease> takeWriter(Lock& lock, const CallControl& control);
  [[nodiscard]] Outcome<Lease> takeReader(Lock& lock, const CallControl& control);
  [[nodiscard]] Outcome<Lease> takeOfTransaction();
  [[nodiscard]] Outcome<Lease> openReader(Lock& lock, const CallControl& control);
  // Waits until the condition holds; why it does not, when the call is to end before.
  template <typename Condition>
  [[nodiscard]] Failure waitFor(Lock& lock, const CallControl& control, Condition condition);
  void giveBack(Connection& connection);

  const std::string _path;
  const DatabaseOptions _options;
  const bool _inMemory;

  mutable std::mutex _mutex;  // of all that follows
  std::condition_variable _changed;
  std::unique_ptr<Connection> _writer;
  std::vector<std::unique_ptr<Connection>> _readers;
  std::vector<Connection*> _idleReaders;
  std::size_t _openingReaders = 0;
  std::size_t _leases = 0;
  bool _writerTaken = false;
  bool _transactionLost = false;  // by a suspension
  std::thread::id _transactionThread;
  std::atomic<bool> _suspending{false};
};

}  // namespace korvex
