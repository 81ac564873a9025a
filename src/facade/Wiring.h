#pragma once

#include <kesu/platform/Platform.h>

#include "delivery/ResendPass.h"
#include "lifecycle/KesuManager.h"
#include "lifecycle/screens/ScreenTracker.h"
#include "message_ui/KesuInAppPresenter.h"
#include "messaging/KesuImageCache.h"
#include "messaging/MessagingWiring.h"
#include "personalization/PersonalizationTags.h"

namespace kesu {

/// Returns the cache of message pictures, created (with its directory) at the first call: a host that shows no messages
/// gets no directory. Any thread. [KesuImageCache sharedImageCache]
KesuImageCache& sharedImageCache();

/// Every object of the library and its collaborators, created in this order (each may use those above it), those of
/// delivery and messaging first. wiring() creates it on the installed platform; tests may create one on any platform,
/// one at a time.
struct Wiring : MessagingWiring {
  using MessagingWiring::MessagingWiring;

  ResendPass resendPass{store, post, outbox, platform.files, platform.background, platform.clock};
  KesuInAppPresenter presenter{{platform, inbox, imageLoader, &sharedImageCache, post, metrics}};
  PersonalizationTags tags{platform.http, platform.defaults, settings};
  ScreenTracker& screens = sharedScreenTracker();  // Shared: screens may appear before the first call.
  KesuManager manager{
      platform, settings, metrics, outbox, post, resendPass, [this] { return screens.visibleScreens(); }};
};

/// Returns the objects of this process, created at the first call. Never destroyed: exit handlers and threads may still
/// use them.
Wiring& wiring();

}  // namespace kesu
