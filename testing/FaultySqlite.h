#pragma once

#include <sqlite3.h>

namespace kesu::testing {

/// SQLite's input and output during the life of this object, with failures: the call that fail() names fails, or all
/// from it on. Databases opened before or after are not affected. One at a time, one thread.
class FaultySqlite {
 public:
  FaultySqlite() {
    sqlite3_initialize();
    current() = this;
    real_ = sqlite3_vfs_find(nullptr);
    vfs_ = *real_;
    vfs_.zName = "faulty";
    vfs_.szOsFile = static_cast<int>(sizeof(File)) + real_->szOsFile;
    vfs_.xOpen = open;
    vfs_.xAccess = [](sqlite3_vfs*, const char* path, int flags, int* result) {
      *result = 0;
      return unlessFailing([&] { return real().xAccess(&real(), path, flags, result); });
    };
    vfs_.xDelete = [](sqlite3_vfs*, const char* path, int sync) {
      return unlessFailing([&] { return real().xDelete(&real(), path, sync); });
    };
    vfs_.xFullPathname = [](sqlite3_vfs*, const char* path, int size, char* full) {
      return unlessFailing([&] { return real().xFullPathname(&real(), path, size, full); });
    };
    sqlite3_vfs_register(&vfs_, 1);
  }
  ~FaultySqlite() {
    sqlite3_vfs_unregister(&vfs_);
    sqlite3_vfs_register(real_, 1);
    current() = nullptr;
  }

  FaultySqlite(const FaultySqlite&) = delete;
  FaultySqlite& operator=(const FaultySqlite&) = delete;

  /// Counts calls from now on; call number `first` returns `code`, and all later ones if `forGood`. 0: none fails.
  void fail(int first, int code, bool forGood) {
    calls_ = 0;
    first_ = first;
    code_ = code;
    forGood_ = forGood;
  }

  /// Counts the calls since fail().
  int calls() const { return calls_; }

 private:
  struct File {
    sqlite3_file base;  // First: SQLite knows only this part. The real file's bytes are behind the struct.
    sqlite3_file* real() { return reinterpret_cast<sqlite3_file*>(this + 1); }
  };

  static FaultySqlite*& current() {
    static FaultySqlite* object = nullptr;
    return object;
  }
  static sqlite3_vfs& real() { return *current()->real_; }
  static sqlite3_file* real(sqlite3_file* file) { return reinterpret_cast<File*>(file)->real(); }

  template <typename Call>
  static int unlessFailing(Call call) {
    FaultySqlite& self = *current();
    ++self.calls_;
    const bool fails = self.first_ > 0 && (self.forGood_ ? self.calls_ >= self.first_ : self.calls_ == self.first_);
    return fails ? self.code_ : call();
  }

  static int open(sqlite3_vfs*, const char* path, sqlite3_file* file, int flags, int* flagsOut) {
    file->pMethods = nullptr;
    const int code = unlessFailing([&] { return real().xOpen(&real(), path, real(file), flags, flagsOut); });
    if (code == SQLITE_OK) {
      file->pMethods = &methods();
    }
    return code;
  }

  static const sqlite3_io_methods& methods() {
    static const sqlite3_io_methods table = {
        2,  // With shared memory, without mapped files.
        [](sqlite3_file* file) { return real(file)->pMethods->xClose(real(file)); },
        [](sqlite3_file* file, void* bytes, int size, sqlite3_int64 offset) {
          return unlessFailing([&] { return real(file)->pMethods->xRead(real(file), bytes, size, offset); });
        },
        [](sqlite3_file* file, const void* bytes, int size, sqlite3_int64 offset) {
          return unlessFailing([&] { return real(file)->pMethods->xWrite(real(file), bytes, size, offset); });
        },
        [](sqlite3_file* file, sqlite3_int64 size) {
          return unlessFailing([&] { return real(file)->pMethods->xTruncate(real(file), size); });
        },
        [](sqlite3_file*, int) { return unlessFailing([] { return SQLITE_OK; }); },  // A test waits for no disk.
        [](sqlite3_file* file, sqlite3_int64* size) {
          return unlessFailing([&] { return real(file)->pMethods->xFileSize(real(file), size); });
        },
        [](sqlite3_file* file, int level) {
          return unlessFailing([&] { return real(file)->pMethods->xLock(real(file), level); });
        },
        [](sqlite3_file* file, int level) { return real(file)->pMethods->xUnlock(real(file), level); },
        [](sqlite3_file* file, int* isReserved) {
          return real(file)->pMethods->xCheckReservedLock(real(file), isReserved);
        },
        [](sqlite3_file* file, int operation, void* argument) {
          return real(file)->pMethods->xFileControl(real(file), operation, argument);
        },
        [](sqlite3_file* file) { return real(file)->pMethods->xSectorSize(real(file)); },
        [](sqlite3_file* file) { return real(file)->pMethods->xDeviceCharacteristics(real(file)); },
        [](sqlite3_file* file, int region, int size, int extend, void volatile** memory) {
          *memory = nullptr;
          return unlessFailing([&] { return real(file)->pMethods->xShmMap(real(file), region, size, extend, memory); });
        },
        [](sqlite3_file* file, int offset, int count, int flags) {
          const bool isUnlocking = (flags & SQLITE_SHM_UNLOCK) != 0;
          const auto lock = [&] { return real(file)->pMethods->xShmLock(real(file), offset, count, flags); };
          return isUnlocking ? lock() : unlessFailing(lock);
        },
        [](sqlite3_file* file) { real(file)->pMethods->xShmBarrier(real(file)); },
        [](sqlite3_file* file, int deletes) { return real(file)->pMethods->xShmUnmap(real(file), deletes); },
        nullptr,
        nullptr,
    };
    return table;
  }

  sqlite3_vfs* real_ = nullptr;
  sqlite3_vfs vfs_{};
  int calls_ = 0;
  int first_ = 0;
  int code_ = SQLITE_OK;
  bool forGood_ = false;
};

}  // namespace kesu::testing
