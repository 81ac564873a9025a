#pragma once

#include <kesu/platform/Platform.h>

#include "delivery/KesuPost.h"
#include "delivery/KesuStore.h"
#include "delivery/ResendPass.h"
#include "device/KesuMetrics.h"
#include "lifecycle/KesuManager.h"
#include "lifecycle/screens/ScreenTracker.h"
#include "message_ui/KesuInAppPresenter.h"
#include "messaging/KesuImageCache.h"
#include "messaging/KesuInAppMessagesRequester.h"
#include "messaging/KesuInbox.h"
#include "messaging/MessageImageLoader.h"
#include "personalization/PersonalizationTags.h"
#include "services/DeploymentSettings.h"

namespace kesu {

/// [KesuImageCache sharedImageCache] The cache of message pictures, made (with its directory) at the first call. Any
/// thread.
KesuImageCache& sharedImageCache();

/// Every object of the library and who knows whom: created in this order, on the installed platform, at the first call.
struct Wiring {
  explicit Wiring(Platform& installed) : platform(installed) {}

  Platform& platform;
  DeploymentSettings settings{platform.bundle};
  KesuMetrics metrics{platform.device, platform.reachability, platform.locale, settings};
  KesuStore store{platform.files, platform.defaults, platform.clock};
  KesuPost post{platform.http, platform.defaults, platform.clock, settings, store};
  ResendPass resendPass{store, post, platform.mainLoop, platform.clock};
  KesuInAppMessagesRequester requester{platform.http, platform.defaults, platform.clock, settings, post};
  KesuInbox inbox{platform.defaults, requester};
  MessageImageLoader imageLoader{platform.http, platform.imageWorker};
  KesuInAppPresenter presenter{{platform, inbox, imageLoader, &sharedImageCache, post, metrics}};
  PersonalizationTags tags{platform.http, platform.defaults, settings};
  ScreenTracker& screens = sharedScreenTracker();
  KesuManager manager{platform, settings, metrics, post, resendPass, screens};
};

/// The objects of this process, made at the first call. Never destroyed.
Wiring& wiring();

}  // namespace kesu
