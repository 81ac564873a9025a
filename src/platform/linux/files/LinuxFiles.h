#pragma once

#include <kesu/platform/Files.h>

#include <atomic>
#include <set>
#include <string>

#include "foundation/Mutex.h"
#include "platform/linux/base/ForkGuard.h"
#include "platform/linux/base/UniqueFd.h"
#include "platform/linux/files/HomeFolders.h"

namespace kesu {

/// Files on a POSIX file system.
///
/// Any thread. No file is opened that could block or have side effects: reading a FIFO, a socket, a device, a directory
/// or a link returns NotRegular at once. Paths with a NUL byte are refused. A path below a regular file, or directly
/// below a link, counts as NotFound. In a forked child everything is refused and nothing is there.
///
/// writeAtomically() gives a new file its name when it is whole. A file that replaces another (a link, FIFO or socket
/// is replaced, never written through; a directory is not), or that the file system cannot make without a name, is
/// written as a hidden temporary file beside the target and renamed. A process killed between these two steps leaves
/// the temporary file, which no walk shows; the first write of a later process into that directory removes those older
/// than kStaleAgeSeconds. Nothing waits for the disk: after power loss the file may be missing or empty.
class LinuxFiles final : public Files {
 public:
  /// Directories nested deeper than this below the start of a walk are listed, but not entered.
  static constexpr int kDepthLimit = 32;

  /// A temporary file that is not renamed after this time belongs to a dead process: a write takes microseconds.
  static constexpr int kStaleAgeSeconds = 60;

  /// `homeDirectory` is the parent of "Documents", "Library/Caches" and "Library/Preferences", found as HomeFolders
  /// says; nothing is made yet. If it is empty, the three directories are empty texts.
  explicit LinuxFiles(std::string homeDirectory);

  std::string documentsDirectory() override;
  std::string cachesDirectory() override;
  std::string preferencesDirectory() override;

  /// Returns the directory of the append log, beside the last two; empty when there is none.
  std::string outboxDirectory();

  FileContent read(const std::string& path, std::size_t limit) override;
  FileResult writeAtomically(const std::string& path, std::string_view bytes) override {
    return write(path, bytes, true);
  }
  FileResult writeNew(const std::string& path, std::string_view bytes) override { return write(path, bytes, false); }
  FileResult flush(const std::string& directory) override;
  FileResult remove(const std::string& path) override;
  FileResult createDirectories(const std::string& path) override;
  void enumerate(const std::string& directory, const std::function<bool(const DirectoryEntry&)>& visit) override;
  std::unique_ptr<FileLock> tryLock(const std::string& path) override;

 private:
  FileResult write(const std::string& path, std::string_view bytes, bool mayReplace);

  /// Opens a directory; makes it when it is missing. Sets the error number, 0 on success.
  UniqueFd openForWriting(const std::string& directory, int& error);

  /// Opens a new temporary file in `directory` and sets its name. -1 with errno on failure.
  int openTemporary(int directory, std::string& name);

  /// Removes what killed processes left in `directory`, once in the life of this object.
  void sweepOnce(const std::string& directory);

  const ForkGuard forkGuard_;
  HomeFolders folders_;
  std::atomic<unsigned> temporaries_{0};
  std::atomic<bool> hasToldOfBlock_{false};
  Mutex mutex_;
  std::set<std::string> swept_ KESU_GUARDED_BY(mutex_);
};

}  // namespace kesu
