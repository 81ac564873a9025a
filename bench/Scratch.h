#pragma once

#include <string>

#include "tools/loopback/TemporaryDirectory.h"

namespace kesu::bench {

/// A new empty directory that stays until the whole run is over. Removed earlier, its files would slow down those that
/// are made after them: ext4 looks at every inode that was freed in the last minute before it takes one.
class Scratch {
 public:
  /// Below the directory that the run has named, else below the system's temporary directory.
  Scratch();

  const std::string& path() const { return path_; }

  /// The path of an entry in it.
  std::string operator/(const std::string& name) const { return path_ + "/" + name; }

 private:
  std::string path_;
};

/// The directory of one whole run, made below `parent` (empty: the system's temporary directory) and removed at the
/// end. Processes that are started meanwhile find it.
class RunDirectory {
 public:
  explicit RunDirectory(const std::string& parent);

  /// Waits until making a file takes the usual time, for 100 seconds at most.
  void waitUntilFast() const;

 private:
  const loopback::TemporaryDirectory directory_;
};

}  // namespace kesu::bench
