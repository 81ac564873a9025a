#pragma once

#include <kesu/platform/Clock.h>
#include <kesu/platform/MainLoop.h>

#include <string>
#include <vector>

#include "delivery/KesuPost.h"
#include "delivery/KesuStore.h"
#include "network/KesuServiceReachability.h"

namespace kesu {

/// Sends every stored record again. Main thread.
///
/// Kept: a pass waits for no reply, has no limit, and does not look whether an earlier one is still running: records
/// that are still stored are sent again. Reading and sending is cut into slices of a few milliseconds, each a timer of
/// the main loop, so that thousands of records never delay a frame.
class ResendPass {
 public:
  ResendPass(KesuStore& store, KesuPost& post, MainLoop& mainLoop, Clock& clock)
      : store_(store), post_(post), mainLoop_(mainLoop), clock_(clock) {}

  /// Starts a pass if the collector is reachable by `status`; logs the status at level 3.
  void start(NetworkStatus status);

 private:
  void sendSlice(std::vector<std::string> paths, std::size_t next);

  KesuStore& store_;
  KesuPost& post_;
  MainLoop& mainLoop_;
  Clock& clock_;
};

}  // namespace kesu
