#pragma once

#include <kesu/platform/Platform.h>

#include "delivery/KesuPost.h"
#include "delivery/KesuStore.h"
#include "device/KesuMetrics.h"
#include "messaging/KesuInAppMessagesRequester.h"
#include "messaging/KesuInbox.h"
#include "messaging/MessageImageLoader.h"
#include "outbox/Outbox.h"
#include "services/DeploymentSettings.h"

namespace kesu {

/// The objects of delivery and messaging, created in this order: each one uses those above it. The platform must
/// outlive them.
struct MessagingWiring {
  explicit MessagingWiring(Platform& installed) : platform(installed) {}

  Platform& platform;
  DeploymentSettings settings{platform.bundle};
  KesuMetrics metrics{platform.device, platform.reachability, platform.locale, settings};
  KesuStore store{platform.files, platform.defaults, platform.clock};
  Outbox outbox{platform.outbox, platform.defaults, platform.background, platform.clock, platform.random};
  KesuPost post{platform.http, outbox, platform.background, platform.clock, settings, store};
  KesuInAppMessagesRequester requester{platform.http, platform.defaults, platform.clock, settings, post};
  KesuInbox inbox{platform.defaults, requester};
  MessageImageLoader imageLoader{platform.http, platform.imageWorker};
};

}  // namespace kesu
