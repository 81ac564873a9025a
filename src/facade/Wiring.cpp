#include "facade/Wiring.h"

#include <memory>

#include "events/EventPoster.h"
#include "foundation/SharedInstance.h"
#include "platform/OrderlyEnd.h"
#include "platform/ServiceLog.h"
#include "support/KesuPriorityLogger.h"

namespace kesu {
namespace {

void writeServiceLine(int level, const std::string& text) {
  KESU_LOG(level, "%s", text.c_str());
}

void terminate() {
  if (Wiring* all = SharedInstance<Wiring>::existing()) {
    all->manager.stateChanges().terminateUnlessDone();
  }
}

bool beginEnd() {
  Wiring* all = SharedInstance<Wiring>::existing();
  return all == nullptr || all->outbox.beginEnd();
}

void finishEnd() {
  if (Wiring* all = SharedInstance<Wiring>::existing()) {
    all->outbox.finishEnd();
  }
}

constexpr EndSteps kEndSteps = {&terminate, &beginEnd, &finishEnd};

/// Before main() starts: a host may use any service, post, or show a screen before its first call of Kesu. Only
/// function pointers are set here, as other constructors of the process may not have run yet.
[[maybe_unused]] const bool connected = [] {
  Platform::setDefaultInstaller([] { installLinuxPlatform(); });
  EventPoster::setProvider([]() -> EventPoster& { return wiring().manager; });
  PersonalizationTags::setProvider([]() -> PersonalizationTags& { return wiring().tags; });
  ScreenTracker::trackScreens([]() -> StateChanges& { return wiring().manager.stateChanges(); });
  setServiceLogHandler(&writeServiceLine);
  setEndSteps(&kEndSteps);
  return true;
}();

}  // namespace

Wiring& wiring() {
  return SharedInstance<Wiring>::get([] { return std::make_unique<Wiring>(Platform::current()); });
}

// Apart from Wiring, as it creates its directory.
KesuImageCache& sharedImageCache() {
  return SharedInstance<KesuImageCache>::get([] {
    Platform& platform = Platform::current();
    return std::make_unique<KesuImageCache>(platform.files, platform.imageWorker, platform.notifications);
  });
}

}  // namespace kesu
