#pragma once

#include <poll.h>

#include <string>
#include <vector>

#include "platform/linux/base/UniqueFd.h"

namespace kesu {

/// Notices that the network may have changed: interfaces, addresses and routes (from the kernel), and the name servers
/// or fixed names (from files). Nothing runs while nothing changes. Confined to one thread.
class NetworkEvents {
 public:
  /// What has changed since the last take().
  struct Heard {
    bool network = false;   ///< Interfaces, addresses or routes. Set too when events were lost.
    bool resolver = false;  ///< The resolver's configuration.
  };

  /// `resolverFile` names the name servers; fixed names are in "hosts" beside it.
  explicit NetworkEvents(std::string resolverFile);

  /// Whether changes of the network can be noticed at all; a sandbox may forbid it.
  bool hearsNetwork() const { return static_cast<bool>(routes_); }

  /// Appends the descriptors to wait for.
  void appendTo(std::vector<pollfd>& polled) const;

  /// Reads all pending events, without blocking.
  Heard take();

 private:
  /// A file whose directory is watched: the target of a path, or of a link on it.
  struct WatchedFile {
    int watch = -1;
    std::string name;
  };

  bool takeNetwork();
  bool takeResolver();
  bool concerns(int watch, const char* name) const;
  void watchFiles();
  void watchFile(const std::string& path);

  std::string resolverFile_;
  UniqueFd routes_;
  UniqueFd files_;
  std::vector<WatchedFile> watched_;
};

}  // namespace kesu
