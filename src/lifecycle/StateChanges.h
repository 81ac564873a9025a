#pragma once

#include <kesu/foundation/Value.h>
#include <kesu/platform/BackgroundQueue.h>

#include <optional>
#include <string>

#include "device/KesuMetrics.h"
#include "lifecycle/Activations.h"
#include "lifecycle/AppInstance.h"
#include "lifecycle/CalendarVariants.h"
#include "lifecycle/RecordSender.h"
#include "lifecycle/ScreenFlow.h"
#include "lifecycle/TopScreen.h"
#include "lifecycle/UsageStatistics.h"

namespace kesu {

/// Turns transitions of the application and of its screens into state-change records, and reports the activations that
/// are due with them.
class StateChanges {
 public:
  StateChanges(BackgroundQueue& background, KesuMetrics& metrics, const AppInstance& instance, RecordSender& sender,
               ScreenFlow& flow, UsageStatistics& usage, Activations& activations, CalendarVariants& variants,
               TopScreen& topScreen)
      : background_(background),
        metrics_(metrics),
        instance_(instance),
        sender_(sender),
        flow_(flow),
        usage_(usage),
        activations_(activations),
        variants_(variants),
        topScreen_(topScreen) {}

  /// [stateChangeEventAppLevel::] A transition of the application. Main thread. Runs on the background queue, but for
  /// the termination, which runs at once because the process is about to end. The flow is tracked at once in any case:
  /// a screen that appears right after the call belongs to the session that the call has begun.
  void stateChangeEventAppLevel(char state, const std::optional<std::string>& detail);

  /// A screen appeared or disappeared: one record, at once, without a look at activations. Main thread.
  void screenChanged(char state, const ScreenKey& screen);

 private:
  struct Change {
    char state;
    std::optional<std::string> detail;
    Dictionary flows;  ///< What the flow has to say about the change.
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
  ScreenFlow& flow_;
  UsageStatistics& usage_;
  Activations& activations_;
  CalendarVariants& variants_;
  TopScreen& topScreen_;
};

}  // namespace kesu
