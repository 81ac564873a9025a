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

/// [KesuImageCache sharedImageCache] The cache of message pictures, made (with its directory) at the first call. Any
/// thread.
KesuImageCache& sharedImageCache();

/// Every object of the library, created in this order on the installed platform at the first call: those of delivery
/// and messaging first, which the others use.
struct Wiring : MessagingWiring {
  using MessagingWiring::MessagingWiring;

  ResendPass resendPass{store, post, platform.mainLoop, platform.clock};
  KesuInAppPresenter presenter{{platform, inbox, imageLoader, &sharedImageCache, post, metrics}};
  PersonalizationTags tags{platform.http, platform.defaults, settings};
  ScreenTracker& screens = sharedScreenTracker();
  KesuManager manager{platform, settings, metrics, post, resendPass, screens};
};

/// The objects of this process, made at the first call. Never destroyed.
Wiring& wiring();

}  // namespace kesu
