#pragma once

#include <kesu/platform/Files.h>

#include <set>
#include <vector>

#include "foundation/Mutex.h"

namespace kesu::testing {

/// A file system in memory. Any thread.
///
/// Entries are listed in the order in which they were made; a file that is written again keeps its place. The
/// directories are "/home/Documents", "/home/Library/Caches" and "/home/Library/Preferences" and do not exist until
/// something is written into them.
class FakeFiles : public Files {
 public:
  std::string documentsDirectory() override { return "/home/Documents"; }
  std::string cachesDirectory() override { return "/home/Library/Caches"; }
  std::string preferencesDirectory() override { return "/home/Library/Preferences"; }

  FileContent read(const std::string& path, std::size_t limit) override;
  FileResult writeAtomically(const std::string& path, std::string_view bytes) override;
  FileResult writeNew(const std::string& path, std::string_view bytes) override;
  FileResult flush(const std::string& directory) override;
  FileResult remove(const std::string& path) override;
  FileResult createDirectories(const std::string& path) override;
  void enumerate(const std::string& directory, const std::function<bool(const DirectoryEntry&)>& visit) override;

  /// Locks without a file, so that paths() has none.
  std::unique_ptr<FileLock> tryLock(const std::string& path) override;

  /// Makes an entry that is neither file nor directory: a link, FIFO or device. Missing directories are made.
  void addSpecial(const std::string& path);

  /// Paths of all regular files, hidden ones too, in the order in which they were made.
  std::vector<std::string> paths();

  /// Makes writes, and flushing them, fail from now on, or with FileStatus::Ok succeed again.
  void failWrites(FileStatus status);

  /// Makes the next read fail.
  void failNextRead(FileStatus status);

  /// Counts the calls of read() for `path`.
  int readCount(const std::string& path);

 private:
  class Lock;

  enum class Kind { File, Directory, Special };

  struct Node {
    std::string path;
    Kind kind;
    std::string bytes;
    int reads = 0;
  };

  using Nodes = std::vector<Node>;

  Nodes::iterator find(std::string_view path) KESU_REQUIRES(mutex_);
  bool makeDirectories(const std::string& path) KESU_REQUIRES(mutex_);
  FileResult put(const std::string& path, Kind kind, std::string_view bytes) KESU_REQUIRES(mutex_);
  std::vector<std::pair<DirectoryEntry, Kind>> children(const std::string& directory);
  bool walk(const std::string& directory, const std::function<bool(const DirectoryEntry&)>& visit);

  Mutex mutex_;
  Nodes nodes_ KESU_GUARDED_BY(mutex_);
  FileStatus writeStatus_ KESU_GUARDED_BY(mutex_) = FileStatus::Ok;
  FileStatus nextReadStatus_ KESU_GUARDED_BY(mutex_) = FileStatus::Ok;
  std::set<std::string> locked_ KESU_GUARDED_BY(mutex_);
};

}  // namespace kesu::testing
