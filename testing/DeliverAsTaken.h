#pragma once

#include <utility>

#include "delivery/KesuPost.h"
#include "outbox/Outbox.h"

namespace kesu::testing {

/// Has the outbox send its records as they are: for tests without the manager, which completes them.
inline void deliverAsTaken(Outbox& outbox, KesuPost& post) {
  outbox.startDelivery(
      [&post](Outbox::Delivery delivery) { post.send(std::move(delivery.record.entries), delivery.ticket); });
}

}  // namespace kesu::testing
