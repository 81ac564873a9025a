#pragma once

#include <kesu/foundation/Value.h>
#include <kesu/platform/Platform.h>

#include <atomic>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "device/KesuMetrics.h"
#include "foundation/Mutex.h"
#include "lifecycle/AppInstance.h"
#include "lifecycle/CalendarReports.h"
#include "lifecycle/RecordSender.h"
#include "lifecycle/ScreenFlow.h"

namespace kesu {

/// Returns the screens that the user sees. Main thread.
using VisibleScreens = std::function<std::vector<ScreenKey>()>;

/// Turns transitions of the application and of its screens into state-change records, and reports the usage and the
/// activations that are due with them.
class StateChanges {
 public:
  StateChanges(Platform& platform, KesuMetrics& metrics, const AppInstance& instance, RecordSender& sender,
               CalendarReports& reports, VisibleScreens visibleScreens)
      : background_(platform.background),
        instance_(instance),
        sender_(sender),
        reports_(reports),
        visibleScreens_(std::move(visibleScreens)),
        flow_(platform.defaults, platform.clock, platform.bundle, metrics, reports.usage) {}

  /// Reports a transition of the application. Main thread. The record, the flows that it carries and what follows for
  /// the stored flows are taken in one step: a screen that appears right after the call belongs to the session that the
  /// call has begun, and a process that dies right after it loses nothing. The usage and the activations that are due
  /// follow on the background queue, those of a termination in this call. [stateChangeEventAppLevel::]
  void stateChangeEventAppLevel(char state, const std::optional<std::string>& detail);

  /// Reports the termination of a host that ends without having announced it; nothing for one that never launched. Any
  /// thread.
  void terminateUnlessDone();

  /// Reports a screen that appeared or disappeared: one record, without activations. Main thread.
  void screenChanged(char state, const ScreenKey& screen);

 private:
  std::vector<ScreenKey> screensFor(char state, const std::optional<std::string>& detail);
  void stateChangeEvent(char state, const std::optional<std::string>& detail, std::span<const ScreenKey> screens);
  void postReports(char state);

  BackgroundQueue& background_;
  const AppInstance& instance_;
  RecordSender& sender_;
  CalendarReports& reports_;
  VisibleScreens visibleScreens_;
  std::atomic<bool> isRunning_{false};  // From the first transition of the application to its termination.
  Mutex reporting_;  // From reading what is counted and sent until the record that changes it is taken.
  ScreenFlow flow_;  // Changed by one state change at a time: while the outbox takes it.
};

}  // namespace kesu
