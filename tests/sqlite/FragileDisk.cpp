#include "tests/sqlite/FragileDisk.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace korvex {
namespace {

constexpr std::size_t sector = 512;

// ---------------------------------------------------------------------------------------------
// What SQLite calls

struct OpenFile {
  sqlite3_file base;
  FragileDisk* disk;
  FragileDisk::File* file;
};

OpenFile& opened(sqlite3_file* file) { return *reinterpret_cast<OpenFile*>(file); }
FragileDisk& diskOf(sqlite3_vfs* vfs) { return *static_cast<FragileDisk*>(vfs->pAppData); }

int readFile(sqlite3_file* file, void* buffer, int amount, sqlite3_int64 offset) {
  if (opened(file).disk->isDead()) return SQLITE_IOERR_READ;
  const std::string& content = opened(file).file->current.value();
  const std::size_t begin = std::min(static_cast<std::size_t>(offset), content.size());
  const std::size_t size = std::min(static_cast<std::size_t>(amount), content.size() - begin);
  std::memcpy(buffer, content.data() + begin, size);
  std::memset(static_cast<char*>(buffer) + size, 0, static_cast<std::size_t>(amount) - size);
  return size == static_cast<std::size_t>(amount) ? SQLITE_OK : SQLITE_IOERR_SHORT_READ;
}

int writeFile(sqlite3_file* file, const void* buffer, int amount, sqlite3_int64 offset) {
  const std::string bytes(static_cast<const char*>(buffer), static_cast<std::size_t>(amount));
  using Operation = FragileDisk::Operation;
  const bool done =
      opened(file).disk->write(*opened(file).file, {Operation::Kind::Write, static_cast<std::size_t>(offset), bytes});
  return done ? SQLITE_OK : SQLITE_IOERR_WRITE;
}

int truncateFile(sqlite3_file* file, sqlite3_int64 size) {
  using Operation = FragileDisk::Operation;
  const bool done =
      opened(file).disk->write(*opened(file).file, {Operation::Kind::Truncate, static_cast<std::size_t>(size), {}});
  return done ? SQLITE_OK : SQLITE_IOERR_TRUNCATE;
}

int syncFile(sqlite3_file* file, int /*flags*/) {
  return opened(file).disk->sync(*opened(file).file) ? SQLITE_OK : SQLITE_IOERR_FSYNC;
}

int sizeOfFile(sqlite3_file* file, sqlite3_int64* size) {
  *size = static_cast<sqlite3_int64>(opened(file).file->current.value().size());
  return SQLITE_OK;
}

int mapMemory(sqlite3_file* file, int region, int /*size*/, int extend, void volatile** memory) {
  auto& regions = opened(file).file->sharedMemory;
  while (extend != 0 && regions.size() <= static_cast<std::size_t>(region)) {
    regions.push_back(std::make_unique<std::array<char, 32768>>());
    regions.back()->fill(0);
  }
  const bool there = static_cast<std::size_t>(region) < regions.size();
  *memory = there ? regions[static_cast<std::size_t>(region)]->data() : nullptr;
  return SQLITE_OK;
}

int unmapMemory(sqlite3_file* file, int /*remove*/) {
  opened(file).file->sharedMemory.clear();
  return SQLITE_OK;
}

// One connection alone uses the disk: every lock is granted.
const sqlite3_io_methods methods = {
    2,
    [](sqlite3_file*) { return SQLITE_OK; },
    readFile,
    writeFile,
    truncateFile,
    syncFile,
    sizeOfFile,
    [](sqlite3_file*, int) { return SQLITE_OK; },
    [](sqlite3_file*, int) { return SQLITE_OK; },
    [](sqlite3_file*, int* reserved) { return *reserved = 0, SQLITE_OK; },
    [](sqlite3_file*, int, void*) { return SQLITE_NOTFOUND; },
    [](sqlite3_file*) { return static_cast<int>(sector); },
    [](sqlite3_file*) { return 0; },
    mapMemory,
    [](sqlite3_file*, int, int, int) { return SQLITE_OK; },
    [](sqlite3_file*) {},
    unmapMemory,
    nullptr,
    nullptr,
};

int openFile(sqlite3_vfs* vfs, const char* name, sqlite3_file* file, int flags, int* outFlags) {
  FragileDisk& disk = diskOf(vfs);
  auto* open = new (file) OpenFile{};
  if (disk.isDead()) return SQLITE_CANTOPEN;
  open->disk = &disk;
  open->file = &disk.file(name ? name : "temporary");
  if (!open->file->current) {
    if ((flags & SQLITE_OPEN_CREATE) == 0) return SQLITE_CANTOPEN;
    open->file->current.emplace();
  }
  open->base.pMethods = &methods;
  if (outFlags) *outFlags = flags;
  return SQLITE_OK;
}

int removeFile(sqlite3_vfs* vfs, const char* name, int syncDirectory) {
  FragileDisk& disk = diskOf(vfs);
  FragileDisk::File& file = disk.file(name);
  if (!disk.write(file, {FragileDisk::Operation::Kind::Remove, 0, {}})) return SQLITE_IOERR_DELETE;
  if (syncDirectory != 0 && !disk.sync(file)) return SQLITE_IOERR_DELETE;
  return SQLITE_OK;
}

int fileIsThere(sqlite3_vfs* vfs, const char* name, int /*flags*/, int* result) {
  *result = diskOf(vfs).file(name).current ? 1 : 0;
  return SQLITE_OK;
}

}  // namespace

// ---------------------------------------------------------------------------------------------
// The disk

FragileDisk::FragileDisk(std::string name) : _name(std::move(name)) {
  _vfs = *sqlite3_vfs_find(nullptr);
  _vfs.iVersion = 1;
  _vfs.szOsFile = sizeof(OpenFile);
  _vfs.zName = _name.c_str();
  _vfs.pAppData = this;
  _vfs.xOpen = openFile;
  _vfs.xDelete = removeFile;
  _vfs.xAccess = fileIsThere;
  _vfs.xFullPathname = [](sqlite3_vfs*, const char* path, int size, char* full) {
    sqlite3_snprintf(size, full, "%s", path);
    return SQLITE_OK;
  };
  sqlite3_vfs_register(&_vfs, 0);
}

FragileDisk::~FragileDisk() { sqlite3_vfs_unregister(&_vfs); }

void FragileDisk::apply(std::optional<std::string>& content, const Operation& operation) {
  if (operation.kind == Operation::Kind::Remove) return content.reset();
  if (!content) content.emplace();
  if (operation.kind == Operation::Kind::Truncate) return content->resize(operation.offset);
  content->resize(std::max(content->size(), operation.offset + operation.bytes.size()));
  content->replace(operation.offset, operation.bytes.size(), operation.bytes);
}

bool FragileDisk::count() {
  if (_dead) return false;
  ++_operations;
  _dead = _operationsLeft > 0 && --_operationsLeft == 0;
  return !_dead;
}

// What the power goes at may have reached the disk, or a part of it.
bool FragileDisk::write(File& file, Operation operation) {
  if (_dead) return false;
  const bool done = count();
  if (done) apply(file.current, operation);
  file.unsynced.push_back(std::move(operation));
  return done;
}

bool FragileDisk::sync(File& file) {
  if (!count()) return false;
  file.synced = file.current;
  file.unsynced.clear();
  return true;
}

std::map<std::string, FragileDisk::File> FragileDisk::image() const {
  std::map<std::string, File> image;
  for (const auto& [name, file] : _files) image[name] = {file.synced, file.current, file.unsynced, {}};
  return image;
}

void FragileDisk::setImage(const std::map<std::string, File>& image) {
  for (auto& [name, file] : _files) file = {};
  for (const auto& [name, file] : image) _files[name] = {file.synced, file.current, file.unsynced, {}};
  _operations = 0;
  _operationsLeft = -1;
  _dead = false;
}

void FragileDisk::recover(Damage damage, std::uint32_t seed) {
  std::mt19937 random(seed);
  const auto arrives = [&](std::size_t index, std::size_t size) {
    switch (damage) {
      case Damage::NothingArrives:
        return false;
      case Damage::FirstHalfArrives:
        return index < size / 2;
      case Damage::SecondHalfArrives:
        return index >= size / 2;
      case Damage::EvenOnesArrive:
        return index % 2 == 0;
      case Damage::AllButTheLastArrive:
        return index + 1 < size;
      case Damage::OnlyTheLastArrives:
        return index + 1 == size;
      case Damage::SomeArrive:
      case Damage::SomeArriveCutIntoSectors:
        return random() % 2 == 0;
      default:
        return true;
    }
  };
  const auto cut = [&](Operation operation, bool last) {
    std::string& bytes = operation.bytes;
    const std::size_t half = bytes.size() / 2 / sector * sector;
    if (last && damage == Damage::LastIsCutShort) bytes.resize(half);
    if (last && damage == Damage::LastLosesItsBeginning) bytes.erase(0, half), operation.offset += half;
    if (last && damage == Damage::LastIsGarbage)
      std::generate(bytes.begin(), bytes.end(), [&] { return static_cast<char>(random()); });
    if (damage == Damage::SomeArriveCutIntoSectors && bytes.size() > sector) {
      const std::size_t begin = random() % (bytes.size() / sector) * sector;
      bytes.erase(0, begin), operation.offset += begin;
    }
    return operation;
  };
  std::map<std::string, File> after;
  for (const auto& [name, file] : _files) {
    std::optional<std::string> content = file.synced;
    for (std::size_t index = 0; index < file.unsynced.size(); ++index) {
      if (!arrives(index, file.unsynced.size())) continue;
      const Operation& operation = file.unsynced[index];
      const bool last = index + 1 == file.unsynced.size();
      apply(content, operation.kind == Operation::Kind::Write ? cut(operation, last) : operation);
    }
    if (content) after[name] = {content, content, {}, {}};
  }
  setImage(after);
}

}  // namespace korvex
