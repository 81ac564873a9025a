#pragma once

#include <kesu/Export.h>

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace kesu {

/// How a file operation ended.
enum class FileStatus {
  Ok,           ///< Done.
  NotFound,     ///< There is no such file or directory.
  NotAllowed,   ///< Permission denied or read-only file system.
  NoSpace,      ///< The disk or the quota is full.
  TooLarge,     ///< The file is larger than the caller's limit; nothing was read.
  NotRegular,   ///< A link, FIFO, device or directory where a regular file was expected; it was not touched.
  OtherFailure  ///< Anything else.
};

/// Result of an operation on one file: a status, and the system's own words for a failure.
struct FileResult {
  FileStatus status = FileStatus::Ok;
  std::string reason;  ///< Empty when status is Ok.

  bool ok() const { return status == FileStatus::Ok; }
};

/// Result of reading a file: content is there exactly when status is Ok.
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

/// The file system, as far as the library needs it. Paths are absolute UTF-8 texts.
///
/// Callable from any thread, blocking (no operation waits for the disk to have written through). No operation follows
/// a symbolic link in the last component. Directories are made with mode 0700, files with mode 0600. Nothing throws.
class KESU_API Files {
 public:
  virtual ~Files() = default;

  /// The directory for the user's documents (undelivered records live in it); empty when there is none. The directory
  /// itself is made by the first write.
  virtual std::string documentsDirectory() = 0;

  /// The directory for files that may be made anew at any time; empty when there is none.
  virtual std::string cachesDirectory() = 0;

  /// The directory of the user defaults; empty when there is none.
  virtual std::string preferencesDirectory() = 0;

  /// Reads a whole regular file of at most `limit` bytes.
  virtual FileContent read(const std::string& path, std::size_t limit) = 0;

  /// Replaces the file at `path` by `bytes`, all or nothing: a reader (or the next run after a crash) sees the old
  /// content or the new, never a part. Missing directories on the way are made.
  virtual FileResult writeAtomically(const std::string& path, std::string_view bytes) = 0;

  /// Removes one file. Removing what is not there is NotFound.
  virtual FileResult remove(const std::string& path) = 0;

  /// Makes a directory and those above it. Ok when it is already there.
  virtual FileResult createDirectories(const std::string& path) = 0;

  /// Walks the tree below `directory`, skipping hidden entries and never entering links, and calls `visit` for each
  /// entry in the order in which the system lists them; `visit` returns false to stop. Entries that cannot be listed
  /// are skipped. A missing directory has no entries.
  virtual void enumerate(const std::string& directory, const std::function<bool(const DirectoryEntry&)>& visit) = 0;
};

}  // namespace kesu
