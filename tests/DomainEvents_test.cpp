#include <gtest/gtest.h>

#include <limits>

#include "testing/SdkFixture.h"

namespace kesu {
namespace {

using DomainEventsTest = testing::SdkFixture;

TEST_F(DomainEventsTest, SendsADomainEventWithTheColumnsOfItsTable) {
  launch();
  answerAll(200);
  KesuGaming::postLevelStarted("3", {{"world", "ice"}, {"level", "9"}});
  KesuSMS::postRegisteredDevice("+15550100", nil);
  answerAll(200);
  EXPECT_TRUE(destinations().ends_with("em")) << destinations();
  const Dictionary game = body(platform.http.requestCount() - 2);
  EXPECT_EQ(text(game, "~e"), "GamingLevelStart");
  EXPECT_EQ(text(game, "level") + text(game, "world"), "3ice");
  EXPECT_TRUE(game.contains("kaid") && game.contains("msg_id"));
  const Dictionary sms = lastBody();
  EXPECT_EQ(text(sms, "a") + text(sms, "phoneNumber") + text(sms, "countryCode"), "r+15550100<absent>");
}

TEST_F(DomainEventsTest, StoresScenesWithAReadableNameAndFiniteSeconds) {
  KesuSceneFlow::postSecondsOnScene("cave", 12.34);
  KesuSceneFlow::postSecondsOnScene("", 1.0);
  KesuSceneFlow::postSecondsOnScene("\xff", 1.0);
  KesuSceneFlow::postSecondsOnScene("hall", std::numeric_limits<double>::quiet_NaN());
  KesuSceneFlow::postSecondsOnScene("hall", std::numeric_limits<double>::infinity());
  KesuSceneFlow::postSecondsOnScene("sea", 0.0);
  EXPECT_EQ(platform.defaults.text("~uf"), "$$cave~~12.3$$sea~~0.0");
}

}  // namespace
}  // namespace kesu
