// An SQLite database that the methods of a DefinitionSet run on.
//
//   auto opened = Database::open("app.sqlite");
//   if (!opened) return report(opened.error());
//   Database& database = **opened;
//   database.load(set, models);
//   if (auto failure = database.upgrade()) return report(*failure);
//   auto people = database.call<std::vector<Person>>("findPersons", {{"minAge", 18}});
//   if (!people) return report(people.error());
//   for (const Person& person : *people) …
//
// docs/execution.md says what a method does when it is called.
//
// Threads: every operation may be called on any thread at any time, except close by destruction. There is one writer,
// and in WAL mode a pool of readers:
//   - A changing method, and a select without parallel="true", has the writer for itself; others wait in the order of
//   luck.
//   - A select with parallel="true", and a cursor outside transaction(), has a reader: it sees the database as the last
//     commit before its first row left it, waits for no writer, and cannot write.
//   - transaction() keeps the writer for its thread; all calls of that thread go to it meanwhile and see its changes.
// Ciphers, model classes and SQL functions that run within a call must not call the same database: that is refused with
// DatabaseErrorKind::Reentered.
//
// Other processes: a lock of theirs is waited for as long as busyTimeout, then the call fails with SQLITE_BUSY.
//
// A failure of a call leaves the database as it was before, except that resumable work keeps what it has done.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "korvex/DefinitionSet.h"
#include "korvex/Export.h"
#include "korvex/ModelRegistry.h"
#include "korvex/QXSCDAOMethodCounter.h"
#include "korvex/Value.h"
#include "korvex/sqlite/Cancellation.h"
#include "korvex/sqlite/Cipher.h"
#include "korvex/sqlite/Cursor.h"
#include "korvex/sqlite/Outcome.h"
#include "korvex/sqlite/Row.h"

struct sqlite3;

namespace korvex {

struct DatabaseOptions {
  bool readOnly = false;  // the file must be there; whatever would change it is refused
  bool create = true;     // makes a file that is not there
  // A commit is on the disk when its call returns. Without it, a loss of power may take the last ones back, never a
  // part.
  bool durable = true;
  bool foreignKeys = true;                                  // what REFERENCES declares is held
  std::chrono::milliseconds busyTimeout{5000};              // for locks of other processes
  std::size_t readers = 4;                                  // connections for parallel selects and cursors, at most
  std::size_t statementsKept = 100;                         // prepared ones, per connection
  std::shared_ptr<Cipher> cipher{};                         // null: what is to be encrypted fails
  std::function<void(sqlite3& connection)> onConnection{};  // adds functions and collations to each connection
  std::string vfs{};                                        // the name of an SQLite VFS; empty for the system's
};

struct CallOptions {
  std::string_view table{};                    // for a method with assignedTable
  const Cancellation* cancellation = nullptr;  // null: runs to its end
};

// What a call gives that is asked for no type of its own.
struct CallResult {
  Value value;                      // of a select: a value, or a list of them; null of other methods
  std::int64_t changes = 0;         // rows that a changing method inserted, updated or deleted itself, triggers aside
  std::int64_t lastInsertedId = 0;  // the rowid of the last row that an insert inserted; 0 when it inserted none
};

struct UpgradeStep {
  double version;    // where the upgrade leads to
  std::size_t step;  // from 0, of `steps`
  std::size_t steps;
};
// Told before each step; false stops before it, as a failure of kind Cancelled.
using UpgradeObserver = std::function<bool(const UpgradeStep& step)>;

class KORVEX_EXPORT Database {
 public:
  // Opens a file, which is made if it is not there, and puts it into WAL mode. No name has a meaning of its own,
  // "file:" and ":memory:" included. Definitions are loaded afterwards.
  [[nodiscard]] static Outcome<std::unique_ptr<Database>> open(const std::string& path, DatabaseOptions options = {});
  // A database in memory, with one connection, gone with this object.
  [[nodiscard]] static Outcome<std::unique_ptr<Database>> openInMemory(DatabaseOptions options = {});

  Database(const Database&) = delete;
  Database& operator=(const Database&) = delete;
  // No call runs any more, no cursor is open.
  ~Database();

  // From now on, calls run the methods of this set; those that run already end with the old one. A select whose class
  // is not among the models is refused when its objects are asked for as Values; typed calls need no registry.
  void load(std::shared_ptr<const DefinitionSet> set, ModelRegistry models = {});

  // Leads the file to the newest version, each upgrade in a transaction together with its version.
  [[nodiscard]] Failure upgrade(const UpgradeObserver& observer = {}, const CallOptions& options = {});
  // The version that the file has, exactly as it was declared; absent before the first upgrade.
  [[nodiscard]] Outcome<std::optional<double>> version();
  // Declares the version of a file whose tables did not come from upgrades. Refused when it has a version already.
  [[nodiscard]] Failure adopt(double version);

  // Runs a method.
  [[nodiscard]] Outcome<CallResult> call(std::string_view method, const Arguments& arguments = {},
                                         const CallOptions& options = {});
  // Runs a select whose rows become a T: a scalar, a Dictionary, a model object, a shared pointer to one, or a Value; a
  // std::optional of one when there may be no row or a NULL; or a std::vector of one. A T wants one row, and a vector
  // a "result" in brackets.
  template <typename T>
  [[nodiscard]] Outcome<T> call(std::string_view method, const Arguments& arguments = {},
                                const CallOptions& options = {}) {
    T result{};
    if (Failure failure = select(method, arguments, options, rowTakerOf(result))) return std::move(*failure);
    return result;
  }
  // Runs a select row by row, for results that are not to be in memory at once. The cursor keeps its connection until
  // it is destroyed; close it soon.
  [[nodiscard]] Outcome<Cursor> cursor(std::string_view method, Arguments arguments = {},
                                       const CallOptions& options = {});

  // Runs several calls of this thread in one transaction: `work` returns whether to keep what they did. It is not kept
  // either when `work` throws. Within it, no transaction() and no upgrade().
  template <typename Work>
  [[nodiscard]] Failure transaction(Work&& work, const CallOptions& options = {}) {
    if (Failure failure = begin(options)) return failure;
    Rollback rollback(*this);
    const bool keep = std::forward<Work>(work)();
    return rollback.end(keep);
  }

  // Lets go of every lock and file, for a system that suspends the app: running calls are cancelled, fail with
  // DatabaseErrorKind::Suspended, and this returns when they have ended. Until resume, calls fail likewise. A
  // transaction() is rolled back when its thread next calls or ends it; a cursor is waited for until its next row. A
  // database in memory keeps its connection. Not from within a transaction() or with a cursor of the same thread open.
  void suspend();
  [[nodiscard]] Failure resume();

  // What has been counted about a method with profile="true"; absent for others.
  [[nodiscard]] std::optional<QXSCDAOMethodCounter> counter(std::string_view method) const;
  // Ends the start of the app for the counters: calls before it count as made at the start, too.
  void started();

 private:
  class Implementation;
  explicit Database(std::unique_ptr<Implementation> implementation);

  [[nodiscard]] Failure select(std::string_view method, const Arguments& arguments, const CallOptions& options,
                               const RowTaker& taker);
  [[nodiscard]] Failure begin(const CallOptions& options);
  [[nodiscard]] Failure end(bool keep);

  // Ends a transaction, whatever happens in it.
  class Rollback {
   public:
    explicit Rollback(Database& database) : _database(&database) {}
    Rollback(const Rollback&) = delete;
    Rollback& operator=(const Rollback&) = delete;
    ~Rollback() {
      if (_database) static_cast<void>(_database->end(false));
    }
    [[nodiscard]] Failure end(bool keep) { return std::exchange(_database, nullptr)->end(keep); }

   private:
    Database* _database;
  };

  std::unique_ptr<Implementation> _implementation;
};

}  // namespace korvex
