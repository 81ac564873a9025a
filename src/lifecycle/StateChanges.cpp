#include "lifecycle/StateChanges.h"

#include "records/RecordKeys.h"
#include "records/StateCodes.h"
#include "support/KesuPriorityLogger.h"

namespace kesu {
namespace {

std::string_view detailKey(char state) {
  switch (state) {
    case kStateLaunch:
      return k_LaunchDetail;
    case kStateTerminate:
      return k_TerminatedFrom;
    default:
      return k_StateDetail;
  }
}

}  // namespace

std::vector<ScreenKey> StateChanges::screensFor(char state, const std::optional<std::string>& detail) {
  if (state != kStateLaunch && detail) {
    // Kept: a termination looks for a screen called "from foreground", so that the visible ones get no entry.
    return {{*detail, ""}};
  }
  std::vector<ScreenKey> visible = visibleScreens_();
  return visible.empty() ? std::vector<ScreenKey>{{"Unknown", ""}} : visible;
}

void StateChanges::stateChangeEventAppLevel(char state, const std::optional<std::string>& detail) {
  isRunning_.store(state != kStateTerminate);
  stateChangeEvent(state, detail, screensFor(state, detail));
  if (state == kStateTerminate) {  // The process is about to end.
    postReports(state);
  } else {
    background_.post([this, state] { postReports(state); });
  }
}

void StateChanges::terminateUnlessDone() {
  if (isRunning_.load()) {
    stateChangeEventAppLevel(kStateTerminate, kTerminateDetailText);
  }
}

void StateChanges::screenChanged(char state, const ScreenKey& screen) {
  stateChangeEvent(state, screen.prefix, {&screen, 1});
}

void StateChanges::stateChangeEvent(char state, const std::optional<std::string>& detail,
                                    std::span<const ScreenKey> screens) {
  if (!instance_.isLoaded()) {  // Kept: a change before the initialisation is posted, without context.
    KESU_LOG_AT(3, "KesuManager", 1316, "self.kesuAppInstanceId is nil Init");
  }
  sender_.postStateChange(state, [&](Dictionary& entries, DefaultsChanges& changes) {
    flow_.screenFlowHandler(state, screens, entries, changes);
    entries.set(k_NewState, std::string(1, state));
    if (detail) {
      entries.set(detailKey(state), *detail);
    }
  });
}

void StateChanges::postReports(char state) {
  const MutexLock lock(reporting_);
  if (endsSession(state)) {
    Dictionary traits;
    DefaultsChanges counted;
    reports_.usage.fillInTraitsForAggregateAndActivations(traits, counted);
    sender_.postActivation(traits, std::move(counted));
  }
  Dictionary flags;
  DefaultsChanges counted;
  reports_.activations.activationForLR(flags, counted, state);
  reports_.activations.activationsForUniqueDays(flags, counted, state);
  // Last: any flag that is already due makes this the report to which the next periods are compared.
  reports_.variants.calculateVariantsForDMWQ(flags, counted);
  sender_.postActivation(flags, std::move(counted));
}

}  // namespace kesu
