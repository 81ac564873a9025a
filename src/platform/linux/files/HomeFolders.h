#pragma once

#include <array>
#include <cstddef>
#include <string>

#include "foundation/Mutex.h"
#include "platform/linux/base/ForkGuard.h"

namespace kesu {

/// The directories below the home directory. Any thread.
///
/// Each may be a symbolic link or lie behind some. Links are followed once, by the first call that finds a directory;
/// later calls return the same path, so that everything the process reads, writes and removes is in one place. A
/// directory that is not there yet is looked for by each call: a home may be mounted later.
class HomeFolders {
 public:
  enum class Folder {
    Home,
    Documents,  ///< Of the host, who may keep anything there.
    Library,    ///< Ours, as everything below it.
    Caches,
    Preferences
  };

  /// An empty `home` is none. Looks at nothing yet.
  explicit HomeFolders(std::string home);

  /// Returns the path without links once the directory exists, before that the one where it would be. Empty when there
  /// is no home, and in a forked child. What is ours below a directory that was just found loses the rights of others.
  std::string path(Folder folder);

 private:
  static constexpr std::size_t kCount = 5;

  std::string resolve(Folder folder) KESU_REQUIRES(mutex_);

  const std::string home_;
  const ForkGuard forkGuard_;
  Mutex mutex_;
  std::array<std::string, kCount> found_ KESU_GUARDED_BY(mutex_);  // By folder; empty when it was not found so far.
};

}  // namespace kesu
