#pragma once

#include <kesu/ui/ViewController.h>

#include <cstdint>
#include <string>
#include <vector>

#include "lifecycle/ScreenFlow.h"
#include "lifecycle/StateChanges.h"
#include "lifecycle/TopScreen.h"

namespace kesu {

/// Reports every screen that appears and disappears, and knows which one is on top. Main thread.
class ScreenTracker : public TopScreen, public AppearanceObserver {
 public:
  ScreenTracker();
  ~ScreenTracker() override;

  ScreenTracker(const ScreenTracker&) = delete;
  ScreenTracker& operator=(const ScreenTracker&) = delete;

  /// Names who turns appearances into records. Before that they are not reported.
  void reportTo(StateChanges& stateChanges) { stateChanges_ = &stateChanges; }

  void didAppear(ViewController& controller) override;
  void didDisappear(ViewController& controller) override;

  /// A screen that is no view controller.
  void screenAppeared(const std::string& name, std::uint64_t id);
  void screenDisappeared(const std::string& name, std::uint64_t id);

  /// The host's own screen that appeared last and is still visible, else the top view controller of the key window.
  std::optional<ScreenKey> topScreen() override;

 private:
  void report(char state, const ScreenKey& screen);

  StateChanges* stateChanges_ = nullptr;
  std::vector<ScreenKey> ownScreens_;  // Visible screens of the host's own, last appeared last.
};

/// The tracker of this process; made at the first call.
ScreenTracker& sharedScreenTracker();

}  // namespace kesu
