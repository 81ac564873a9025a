#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

#include "Require.h"
#include "delivery/KesuPost.h"
#include "delivery/KesuStore.h"
#include "messaging/KesuInbox.h"
#include "testing/DeliverAsTaken.h"
#include "testing/ScopedPlatform.h"

namespace kesu::fuzz {

/// The messaging client on doubles. Each input is a reply, which must lead to one of the described outcomes.
struct Client {
  testing::ScopedPlatform platform;
  DeploymentSettings settings{platform.bundle};
  KesuStore store{platform.files, platform.defaults, platform.clock};
  Outbox outbox{platform.outbox, platform.defaults, platform.background, platform.clock, platform.random};
  KesuPost post{platform.http, outbox, platform.background, platform.clock, settings, store};
  KesuInAppMessagesRequester requester{platform.http, platform.defaults, platform.clock, settings, post};
  KesuInbox inbox{platform.defaults, requester};
  int told = 0;

  Client() { testing::deliverAsTaken(outbox, post); }

  /// Returns a handler that counts its calls and checks its argument.
  KesuInbox::ObjectHandler listen(const std::function<bool(const Value&)>& isDescribed) {
    return [this, isDescribed](const Object& result) {
      ++told;
      require(!result || isDescribed(*result));
    };
  }

  /// Answers the first request with the input; the handler must then have been called once.
  void answer(const std::uint8_t* data, std::size_t size) {
    platform.http.answer(0, 200, std::string(reinterpret_cast<const char*>(data), size));
    platform.settle();
    require(told == 1);
  }
};

}  // namespace kesu::fuzz
