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
class ScreenTracker : public TopScreen {
 public:
  using Provider = StateChanges& (*)();

  /// Has every screen of the process tracked from now on. `provider` is asked, at each change, who turns it into a
  /// record: the first screen may appear before the library is initialised. The facade does so once.
  static void trackScreens(Provider provider);

  void didAppear(ViewController& controller);
  void didDisappear(ViewController& controller);

  /// A screen that is no view controller.
  void screenAppeared(const std::string& name, std::uint64_t id);
  void screenDisappeared(const std::string& name, std::uint64_t id);

  /// The host's own screen that appeared last and is still visible, else the top view controller of the key window.
  std::optional<ScreenKey> topScreen() override;

 private:
  std::vector<ScreenKey> ownScreens_;  // Visible screens of the host's own, last appeared last.
};

/// The tracker of this process; made at the first call.
ScreenTracker& sharedScreenTracker();

}  // namespace kesu
