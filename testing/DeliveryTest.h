#pragma once

#include <gtest/gtest.h>

#include <string>

#include "delivery/KesuPost.h"
#include "foundation/Json.h"
#include "outbox/Outbox.h"
#include "support/KesuPriorityLogger.h"
#include "testing/DeliverAsTaken.h"
#include "testing/ScopedPlatform.h"

namespace kesu::testing {

/// Poster, store and outbox on doubles; records are sent as they are taken.
class DeliveryTest : public ::testing::Test {
 protected:
  DeliveryTest() {
    platform.clock.set(1489579320.1239);
    deliverAsTaken(outbox, post);
  }
  ~DeliveryTest() override { KesuPriorityLogger::sharedLogger().setLogLevel(0); }

  /// Takes a record and hands it out.
  void send(const Dictionary& record) {
    post.post(record);
    platform.settle();
  }

  /// Sends one record, which is answered like this.
  void postOne(int status) {
    platform.clock.advance(0.001);  // Store files are named after the moment.
    send({{"dest", "e"}});
    answer(platform.http.requestCount() - 1, status);
  }

  void answer(std::size_t i, int status) {
    platform.http.answer(i, status);
    platform.settle();
  }

  /// The body of the i-th request, as it was sent.
  Dictionary body(std::size_t i) { return *parseJson(platform.http.request(i).body)->dictionary(); }

  ScopedPlatform platform;
  FakeFiles& files = platform.files;
  DeploymentSettings settings{platform.bundle};
  KesuStore store{files, platform.defaults, platform.clock};
  Outbox outbox{platform.outbox, platform.defaults, platform.background, platform.clock, platform.random};
  KesuPost post{platform.http, outbox, platform.background, platform.clock, settings, store};
};

}  // namespace kesu::testing
