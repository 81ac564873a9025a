#pragma once

#include <kesu/ui/ViewController.h>

#include <cstdint>
#include <optional>
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

  /// Returns the host's own screen that appeared last and is still visible, else the top view controller of the key
  /// window.
  std::optional<ScreenKey> topScreen();

 private:
  std::vector<ScreenKey> ownScreens_;  // Visible screens of the host's own, the latest last.
};

/// Returns the tracker of this process, created at the first call.
ScreenTracker& sharedScreenTracker();

}  // namespace kesu
