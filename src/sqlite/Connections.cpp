#include "sqlite/Connections.h"

#include <algorithm>
#include <chrono>

#include "sqlite/Errors.h"

namespace korvex {
namespace {

// A call that can be cancelled looks that often whether it was, while it waits for its turn.
constexpr std::chrono::milliseconds lookEvery{5};

DatabaseError suspendedError() { return databaseError(DatabaseErrorKind::Suspended, "the database is suspended"); }

DatabaseError lostError() {
  return databaseError(DatabaseErrorKind::Suspended, "the transaction was rolled back when the database was suspended");
}

}  // namespace

thread_local const Entered* Entered::innermost = nullptr;

bool Entered::holds(const void* database) {
  const Entered* level = innermost;
  while (level && level->_database != database) level = level->_outer;
  return level != nullptr;
}

Failure Connections::open() {
  auto writer = Connection::open(_path, _options, ConnectionRole::Writer);
  if (!writer) return std::move(writer.error());
  _writer = std::move(*writer);
  return std::nullopt;
}

template <typename Condition>
Failure Connections::waitFor(Lock& lock, const CallControl& control, Condition condition) {
  const auto ready = [&] { return control.stops() || condition(); };
  if (!control.cancellation) {
    _changed.wait(lock, ready);
  } else {
    while (!ready()) _changed.wait_for(lock, lookEvery);
  }
  if (control.stops()) return control.error();
  return std::nullopt;
}

Outcome<Connections::Lease> Connections::take(const CallControl& control, bool reads) {
  Lock lock(_mutex);
  if (_transactionThread == std::this_thread::get_id()) return takeOfTransaction();
  if (_suspending) return suspendedError();
  return reads && _writer->inWalMode() ? takeReader(lock, control) : takeWriter(lock, control);
}

Outcome<Connections::Lease> Connections::takeOfTransaction() {
  if (_transactionLost) return lostError();
  if (_suspending) return suspendedError();
  ++_leases;
  return Lease(*this, *_writer, true);
}

Outcome<Connections::Lease> Connections::takeWriter(Lock& lock, const CallControl& control) {
  if (Failure failure = waitFor(lock, control, [this] { return !_writerTaken; })) return std::move(*failure);
  _writerTaken = true;
  ++_leases;
  return Lease(*this, *_writer);
}

Outcome<Connections::Lease> Connections::takeReader(Lock& lock, const CallControl& control) {
  const std::size_t limit = std::max<std::size_t>(_options.readers, 1);
  const auto free = [&] { return !_idleReaders.empty() || _readers.size() + _openingReaders < limit; };
  if (Failure failure = waitFor(lock, control, free)) return std::move(*failure);
  ++_leases;
  if (_idleReaders.empty()) return openReader(lock, control);
  Connection* reader = _idleReaders.back();
  _idleReaders.pop_back();
  return Lease(*this, *reader);
}

Outcome<Connections::Lease> Connections::openReader(Lock& lock, const CallControl& control) {
  ++_openingReaders;
  lock.unlock();
  auto opened = Connection::open(_path, _options, ConnectionRole::Reader);
  lock.lock();
  --_openingReaders;
  if (opened) {
    _readers.push_back(std::move(*opened));
    return Lease(*this, *_readers.back());
  }
  --_leases;
  _changed.notify_all();
  if (control.stops()) return control.error();
  return std::move(opened.error());
}

void Connections::giveBack(Connection& connection) {
  const std::lock_guard lock(_mutex);
  --_leases;
  if (&connection != _writer.get()) {
    _idleReaders.push_back(&connection);
  } else if (_transactionThread == std::thread::id()) {
    _writerTaken = false;
  }
  _changed.notify_all();
}

bool Connections::ownsTransaction() const {
  const std::lock_guard lock(_mutex);
  return _transactionThread == std::this_thread::get_id();
}

void Connections::keep(const Lease& /*writer*/) {
  const std::lock_guard lock(_mutex);
  _transactionThread = std::this_thread::get_id();
}

void Connections::letGo() {
  const std::lock_guard lock(_mutex);
  _transactionThread = {};
  _transactionLost = false;
  _writerTaken = false;
  _changed.notify_all();
}

void Connections::suspend() {
  Lock lock(_mutex);
  _suspending = true;
  _changed.notify_all();
  _changed.wait(lock, [this] { return _leases == 0; });
  if (_inMemory) return;
  _transactionLost = _transactionThread != std::thread::id();
  _idleReaders.clear();
  _readers.clear();
  _writer.reset();
}

Failure Connections::resume() {
  const Lock lock(_mutex);
  if (!_writer) {
    if (Failure failure = open()) return failure;
  }
  _suspending = false;
  return std::nullopt;
}

}  // namespace korvex
