#pragma once

// A disk that fails SQLite at one of its calls.

#include <sqlite3.h>

#include <cstdint>

namespace quillpost::board {

/// For as long as it lasts, whatever SQLite opens is on a disk that fails at the call it is told.
/// A write that fails has written half. Nothing is forced onto the disk, since no machine crashes.
class FailingDisk {
 public:
  /// Whether the calls after the one that fails go through again.
  enum class Fails { once, forGood };

  /// Counts anew from 1: the call of that number fails.
  FailingDisk(int64_t call, Fails fails) : call_(call), fails_(fails) {
    own_.szOsFile += static_cast<int>(sizeof(File));
    own_.zName = "failing";
    own_.pAppData = this;
    own_.xOpen = open;
    own_.xDelete = remove;
    own_.xAccess = access;
    sqlite3_vfs_register(&own_, 1);
  }
  ~FailingDisk() { sqlite3_vfs_unregister(&own_); }
  FailingDisk(const FailingDisk&) = delete;
  FailingDisk& operator=(const FailingDisk&) = delete;

  /// Whether it has come to the call.
  bool hasFailed() const { return made_ >= call_; }

 private:
  using Methods = sqlite3_io_methods;

  /// An open file; behind it stands that of the real disk.
  struct File : sqlite3_file {
    FailingDisk* disk;
  };

  bool failsNow() {
    ++made_;
    return fails_ == Fails::once ? made_ == call_ : made_ >= call_;
  }

  static FailingDisk& diskOf(sqlite3_vfs* own) { return *static_cast<FailingDisk*>(own->pAppData); }
  static bool failsNow(sqlite3_file* file) { return static_cast<File*>(file)->disk->failsNow(); }
  static sqlite3_file* realOf(sqlite3_file* file) {
    return reinterpret_cast<sqlite3_file*>(static_cast<File*>(file) + 1);
  }

  static int open(sqlite3_vfs* own, const char* name, sqlite3_file* file, int flags, int* given) {
    FailingDisk& disk = diskOf(own);
    file->pMethods = nullptr;
    static_cast<File*>(file)->disk = &disk;
    if (disk.failsNow()) return SQLITE_CANTOPEN;
    const int result = disk.real_->xOpen(disk.real_, name, realOf(file), flags, given);
    if (result == SQLITE_OK) file->pMethods = &methods;
    return result;
  }
  static int remove(sqlite3_vfs* own, const char* name, int) {
    FailingDisk& disk = diskOf(own);
    return disk.failsNow() ? SQLITE_IOERR_DELETE : disk.real_->xDelete(disk.real_, name, 0);
  }
  static int access(sqlite3_vfs* own, const char* name, int flags, int* result) {
    FailingDisk& disk = diskOf(own);
    if (disk.failsNow()) return SQLITE_IOERR_ACCESS;
    return disk.real_->xAccess(disk.real_, name, flags, result);
  }
  static int write(sqlite3_file* file, const void* bytes, int count, sqlite3_int64 at) {
    const bool fails = failsNow(file);
    sqlite3_file* real = realOf(file);
    const int result = real->pMethods->xWrite(real, bytes, fails ? count / 2 : count, at);
    return fails ? SQLITE_IOERR_WRITE : result;
  }
  static int sync(sqlite3_file* file, int) {
    return failsNow(file) ? SQLITE_IOERR_FSYNC : SQLITE_OK;
  }
  /// Any other method: the real file's, or its failure.
  template <auto method, int failure = SQLITE_OK, class... Arguments>
  static int pass(sqlite3_file* file, Arguments... arguments) {
    if (failure != SQLITE_OK && failsNow(file)) return failure;
    sqlite3_file* real = realOf(file);
    return (real->pMethods->*method)(real, arguments...);
  }

  static void passBarrier(sqlite3_file* file) { realOf(file)->pMethods->xShmBarrier(realOf(file)); }

  static constexpr Methods methods = {
      .iVersion = 2,
      .xClose = pass<&Methods::xClose>,
      .xRead = pass<&Methods::xRead, SQLITE_IOERR_READ>,
      .xWrite = write,
      .xTruncate = pass<&Methods::xTruncate, SQLITE_IOERR_TRUNCATE>,
      .xSync = sync,
      .xFileSize = pass<&Methods::xFileSize, SQLITE_IOERR_FSTAT>,
      .xLock = pass<&Methods::xLock>,
      .xUnlock = pass<&Methods::xUnlock>,
      .xCheckReservedLock = pass<&Methods::xCheckReservedLock>,
      .xFileControl = pass<&Methods::xFileControl>,
      .xSectorSize = pass<&Methods::xSectorSize>,
      .xDeviceCharacteristics = pass<&Methods::xDeviceCharacteristics>,
      .xShmMap = pass<&Methods::xShmMap, SQLITE_IOERR_SHMMAP>,
      .xShmLock = pass<&Methods::xShmLock>,
      .xShmBarrier = passBarrier,
      .xShmUnmap = pass<&Methods::xShmUnmap>,
      .xFetch = nullptr,
      .xUnfetch = nullptr,
  };

  sqlite3_vfs* real_ = sqlite3_vfs_find(nullptr);
  sqlite3_vfs own_ = *real_;
  int64_t call_;
  Fails fails_;
  int64_t made_ = 0;
};

}  // namespace quillpost::board
