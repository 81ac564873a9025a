#pragma once

#include <kesu/ui/ViewController.h>

#include <cstdint>
#include <string>
#include <vector>

#include "lifecycle/ScreenFlow.h"
#include "lifecycle/StateChanges.h"

namespace kesu {

/// Reports every screen that appears or disappears, and knows which one is on top. Main thread.
class ScreenTracker {
 public:
  using Provider = StateChanges& (*)();

  /// Tracks every screen of the process from now on. `provider` is called at each change for what turns it into a
  /// record, as the first screen may appear before the library is initialised. Called once, by the facade.
  static void trackScreens(Provider provider);

  void didAppear(ViewController& controller);
  void didDisappear(ViewController& controller);

  /// Report a screen of the host's own, which is no view controller.
  void screenAppeared(const std::string& name, std::uint64_t id);
  void screenDisappeared(const std::string& name, std::uint64_t id);

  /// Returns what the user sees: every visible screen of the host's own, and the top view controller of the key window;
  /// where there is none, the controllers that the host shows without a window.
  std::vector<ScreenKey> visibleScreens() const;

 private:
  struct Visible {
    ScreenKey key;
    bool isController = false;
  };

  void appeared(Visible screen);
  void disappeared(const ScreenKey& key);

  std::vector<Visible> visible_;  // The latest last.
};

/// Returns the tracker of this process, created at the first call.
ScreenTracker& sharedScreenTracker();

}  // namespace kesu
