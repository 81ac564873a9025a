#pragma once

#include <kesu/foundation/Value.h>
#include <kesu/platform/Bundle.h>
#include <kesu/platform/Clock.h>
#include <kesu/platform/UserDefaults.h>

#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "device/KesuMetrics.h"
#include "lifecycle/UsageStatistics.h"
#include "outbox/OutboxJournal.h"

namespace kesu {

/// Identifies a screen: the name of its entry in the flow, and what distinguishes two screens of one name.
struct ScreenKey {
  std::string prefix;
  std::string suffix;
};

/// Returns `text` with one entry of a flow behind it: "$$" name "~~" seconds. `text` brings the memory.
template <typename Text>
Text flowEntry(Text text, std::string_view name, std::string_view seconds) {
  text.append("$$").append(name).append("~~").append(seconds);
  return text;
}

/// Returns whether a transition ends the session: its flows are sent and its usage is counted.
bool endsSession(char state);

/// Records which screens were visible and for how long. Confined to one state change at a time.
class ScreenFlow {
 public:
  ScreenFlow(UserDefaults& defaults, Clock& clock, Bundle& bundle, KesuMetrics& metrics, UsageStatistics& usage)
      : defaults_(defaults), clock_(clock), bundle_(bundle), metrics_(metrics), usage_(usage) {}

  /// Tracks one state change: adds the flows that are due to `record`, and what becomes of the stored flows to
  /// `changes`, which the caller makes in the step that takes the record. `screens` is the screen that changed; for
  /// changes of the application, those that the user sees. [screenFlowHandler:]
  void screenFlowHandler(char state, std::span<const ScreenKey> screens, Dictionary& record, DefaultsChanges& changes);

 private:
  void reportUnsent(char state, Dictionary& record, DefaultsChanges& changes);
  void reportInterruptedRun(Dictionary& record, DefaultsChanges& changes);
  std::string endScreen(const ScreenKey& screen, double now);
  void grow(DefaultsChanges& changes);
  void flush(Dictionary& record, DefaultsChanges& changes);
  void moveFlow(std::string_view key, Dictionary& record, DefaultsChanges& changes);
  void rememberVersions(DefaultsChanges& changes);
  void rememberIfNew(std::string_view key, const std::optional<std::string>& text, DefaultsChanges& changes);

  UserDefaults& defaults_;
  Clock& clock_;
  Bundle& bundle_;
  KesuMetrics& metrics_;
  UsageStatistics& usage_;

  std::map<std::string, double> begins_;  // Visible screens: start, seconds since 1970.
  // Whether the flow in the user defaults, its only copy, is this session's and not that of an interrupted run.
  bool isFlowOurs_ = false;
  std::string visit_;  // The entries of the visits that the last change ended. Its changes refer to it.
};

}  // namespace kesu
