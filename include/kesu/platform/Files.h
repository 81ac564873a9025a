#pragma once

#include <kesu/Export.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace kesu {

/// Result of a file operation.
enum class FileStatus {
  Ok,           ///< Done.
  NotFound,     ///< There is no such file or directory.
  NotAllowed,   ///< Permission denied or read-only file system.
  NoSpace,      ///< The disk or the quota is full.
  TooLarge,     ///< The file is larger than the caller's limit; nothing was read.
  Exists,       ///< There is a file of that name already; it was not touched.
  NotRegular,   ///< A link, FIFO, device or directory where a regular file was expected; it was not touched.
  OtherFailure  ///< Anything else.
};

/// Result of an operation on one file, with the system's text for a failure.
struct FileResult {
  FileStatus status = FileStatus::Ok;
  std::string reason;  ///< Empty when status is Ok.

  bool ok() const { return status == FileStatus::Ok; }
};

/// Result of reading a file; the content is set exactly when the status is Ok.
struct FileContent {
  FileStatus status = FileStatus::Ok;
  std::string bytes;

  bool ok() const { return status == FileStatus::Ok; }
};

/// One entry met while walking a directory.
struct DirectoryEntry {
  std::string path;  ///< Full path.
  std::string name;  ///< Last component of the path.
  bool isRegularFile = false;
};

/// A lock across processes, held as long as the object lives. Destroyed on any thread, before the Files that gave it.
class KESU_API FileLock {
 public:
  virtual ~FileLock() = default;
};

/// The file system, as far as the library needs it. Paths are absolute UTF-8 texts.
///
/// Callable from any thread. Operations block, but do not wait until the disk has written. None follows a symbolic link
/// in the last component or in the directory directly above it; the directories that are returned here are free of
/// links as soon as they exist. Directories are made with mode 0700, files with mode 0600. Nothing throws.
class KESU_API Files {
 public:
  virtual ~Files() = default;

  /// Returns the directory for the user's documents, in which undelivered records are stored; empty when there is none.
  /// The first write makes it.
  virtual std::string documentsDirectory() = 0;

  /// Returns the directory for files that can be made again at any time; empty when there is none.
  virtual std::string cachesDirectory() = 0;

  /// Returns the directory of the user defaults; empty when there is none.
  virtual std::string preferencesDirectory() = 0;

  /// Reads a whole regular file of at most `limit` bytes.
  virtual FileContent read(const std::string& path, std::size_t limit) = 0;

  /// Replaces the file at `path` by `bytes`, all or nothing: a reader (or the next run after a crash) sees the old
  /// content or the new, never a part. Makes missing directories on the way.
  virtual FileResult writeAtomically(const std::string& path, std::string_view bytes) = 0;

  /// The same for a file that does not exist yet: one of that name is left alone, whoever makes it meanwhile.
  virtual FileResult writeNew(const std::string& path, std::string_view bytes) = 0;

  /// Waits until what was written in the file system of a directory is on the disk. Fails when some of it could not be
  /// written. For the background queue.
  virtual FileResult flush(const std::string& directory) = 0;

  /// Removes one file. A missing one is NotFound.
  virtual FileResult remove(const std::string& path) = 0;

  /// Makes a directory and those above it. Ok when it exists already.
  virtual FileResult createDirectories(const std::string& path) = 0;

  /// Walks the tree below `directory` and calls `visit` for each entry, in the system's order; `visit` returns false to
  /// stop. Hidden entries and those that cannot be listed are skipped, links are not entered. A missing directory has
  /// no entries.
  virtual void enumerate(const std::string& directory, const std::function<bool(const DirectoryEntry&)>& visit) = 0;

  /// Locks a directory against other processes and other calls of this one, without waiting and without writing. Null
  /// when it is locked already. A directory that cannot be opened, or on a file system without locks, counts as locked
  /// by the caller. The system releases the lock of a process that dies.
  virtual std::unique_ptr<FileLock> tryLock(const std::string& directory) = 0;
};

}  // namespace kesu
