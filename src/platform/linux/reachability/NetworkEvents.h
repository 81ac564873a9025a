#pragma once

#include <poll.h>

#include <string>
#include <vector>

#include "platform/linux/base/UniqueFd.h"

namespace kesu {

/// Hears that the network may have changed: interfaces, addresses and routes (from the kernel), and the name servers or
/// fixed names (from files). Sleeping costs nothing; there is no polling. Confined to one thread.
class NetworkEvents {
 public:
  /// What was heard since the last look.
  struct Heard {
    bool network = false;   ///< Interfaces, addresses or routes. Set too when so much happened that events were lost.
    bool resolver = false;  ///< The resolver's configuration.
  };

  /// `resolverFile` names the name servers; fixed names are in "hosts" beside it.
  explicit NetworkEvents(std::string resolverFile);

  /// Whether changes of the network can be heard at all; a sandbox may forbid it.
  bool hearsNetwork() const { return static_cast<bool>(routes_); }

  /// Appends what to wait for.
  void appendTo(std::vector<pollfd>& polled) const;

  /// Takes what is waiting, without blocking.
  Heard take();

 private:
  /// A file whose directory is watched: where a name, or the link it stands for, leads to.
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
