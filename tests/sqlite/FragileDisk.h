// A disk in memory that SQLite writes to as to any other, that loses power at a chosen operation, and then holds of
// what was not yet synced only a part.
#pragma once

#include <sqlite3.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace korvex {

// What reaches the disk of the operations since the last sync of a file.
enum class Damage : std::uint8_t {
  NothingArrives,
  EverythingArrives,
  FirstHalfArrives,
  SecondHalfArrives,
  EvenOnesArrive,
  AllButTheLastArrive,
  OnlyTheLastArrives,
  LastIsCutShort,
  LastLosesItsBeginning,
  LastIsGarbage,
  SomeArrive,
  SomeArriveCutIntoSectors,
};
inline constexpr int damageCount = 12;

class FragileDisk {
 public:
  // An operation on a file: bytes at an offset, a new size, or its removal.
  struct Operation {
    enum class Kind : std::uint8_t { Write, Truncate, Remove } kind;
    std::size_t offset = 0;
    std::string bytes;
  };
  struct File {
    std::optional<std::string> synced;  // absent: not there
    std::optional<std::string> current;
    std::vector<Operation> unsynced;
    std::vector<std::unique_ptr<std::array<char, 32768>>> sharedMemory;
  };

  // Registers itself with SQLite by this name.
  explicit FragileDisk(std::string name);
  FragileDisk(const FragileDisk&) = delete;
  FragileDisk& operator=(const FragileDisk&) = delete;
  ~FragileDisk();

  // Lets the power go at the operation of that number from now on, the first being 1.
  void failAt(int operation) { _operationsLeft = operation; }
  [[nodiscard]] int operations() const { return _operations; }
  [[nodiscard]] bool isDead() const { return _dead; }

  // The power is back, and the disk holds what was synced and a part of the rest.
  void recover(Damage damage, std::uint32_t seed);
  // What the disk holds, to go back to it.
  [[nodiscard]] std::map<std::string, File> image() const;
  void setImage(const std::map<std::string, File>& image);

  // For SQLite. Each is told whether the operation may be done.
  [[nodiscard]] bool count();
  File& file(const std::string& name) { return _files[name]; }
  bool write(File& file, Operation operation);
  bool sync(File& file);

 private:
  static void apply(std::optional<std::string>& content, const Operation& operation);

  std::string _name;
  sqlite3_vfs _vfs{};
  std::map<std::string, File> _files;
  int _operations = 0;
  int _operationsLeft = -1;  // none when negative
  bool _dead = false;
};

}  // namespace korvex
