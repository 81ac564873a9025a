#pragma once

#include <kesu/foundation/Value.h>
#include <kesu/platform/Platform.h>

#include <functional>
#include <optional>
#include <string>
#include <utility>

#include "device/KesuMetrics.h"
#include "lifecycle/AppInstance.h"
#include "lifecycle/CalendarReports.h"
#include "lifecycle/RecordSender.h"
#include "lifecycle/ScreenFlow.h"

namespace kesu {

/// Returns the screen on top; nothing when there is none. Main thread.
using TopScreen = std::function<std::optional<ScreenKey>()>;

/// Turns transitions of the application and of its screens into state-change records, and reports the activations that
/// are due with them.
class StateChanges {
 public:
  StateChanges(Platform& platform, KesuMetrics& metrics, const AppInstance& instance, RecordSender& sender,
               CalendarReports& reports, TopScreen topScreen)
      : background_(platform.background),
        metrics_(metrics),
        instance_(instance),
        sender_(sender),
        reports_(reports),
        topScreen_(std::move(topScreen)),
        flow_(platform.defaults, platform.clock, platform.bundle, metrics, reports.usage) {}

  /// Reports a transition of the application. Main thread. Tracks the flow synchronously: a screen that appears right
  /// after the call belongs to the session that the call has begun. Posts on the background queue; a termination posts
  /// synchronously, because the process is about to end. [stateChangeEventAppLevel::]
  void stateChangeEventAppLevel(char state, const std::optional<std::string>& detail);

  /// Reports a screen that appeared or disappeared: one record, synchronously, without activations. Main thread.
  void screenChanged(char state, const ScreenKey& screen);

 private:
  struct Change {
    char state;
    std::optional<std::string> detail;
    Dictionary flows;  ///< The flows that are due with the change.
  };

  ScreenKey screenFor(char state, const std::optional<std::string>& detail);
  Change tracked(char state, const std::optional<std::string>& detail, const ScreenKey& screen);
  void executePostMethod(const Change& change);
  void stateChangeEvent(const Change& change);
  void addDetail(Dictionary& record, const Change& change);
  void addDeviceState(Dictionary& record, char state);

  BackgroundQueue& background_;
  KesuMetrics& metrics_;
  const AppInstance& instance_;
  RecordSender& sender_;
  CalendarReports& reports_;
  TopScreen topScreen_;
  ScreenFlow flow_;
};

}  // namespace kesu
