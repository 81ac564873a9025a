#include "delivery/ResendPass.h"

#include <utility>

#include "support/KesuPriorityLogger.h"

namespace kesu {
namespace {

constexpr double kSliceSeconds = 0.002;  // An eighth of a frame at 60 frames per second.
constexpr const char* kManagerSource = "KesuManager";

}  // namespace

void ResendPass::start(NetworkStatus status) {
  switch (status) {
    case NetworkStatus::ReachableCell:
      KESU_LOG_AT(3, kManagerSource, 1955, "**** cell ****");
      break;
    case NetworkStatus::Reachable:
      KESU_LOG_AT(3, kManagerSource, 1953, "**** wifi ****");
      break;
    case NetworkStatus::NotReachable:
      KESU_LOG_AT(3, kManagerSource, 1951, "**** Not Reachable ****");
      return;
  }
  sendSlice(store_.storedFiles(), 0);
}

void ResendPass::sendSlice(std::vector<std::string> paths, std::size_t next) {
  const double end = clock_.monotonic() + kSliceSeconds;
  while (next < paths.size()) {
    if (auto record = store_.recordToRepost(paths[next])) {
      post_.repost(std::move(*record));
    }
    ++next;
    if (clock_.monotonic() >= end && next < paths.size()) {
      // A timer, not a task: an orderly end runs tasks to the last but no timers, and what is stored stays stored.
      mainLoop_.schedule(0.0, false,
                         [this, paths = std::move(paths), next]() mutable { sendSlice(std::move(paths), next); });
      return;
    }
  }
}

}  // namespace kesu
