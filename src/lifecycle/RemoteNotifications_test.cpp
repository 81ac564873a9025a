#include "lifecycle/RemoteNotifications.h"

#include <gtest/gtest.h>

#include <cmath>

#include "testing/LifecycleTest.h"

namespace kesu {
namespace {

using testing::keysOf;

class RemoteNotificationsTest : public testing::ManagerTest {
 protected:
  void report(const Data& token) { library->manager.remoteNotifications().setRemoteNotificationDeviceToken(token); }
};

TEST_F(RemoteNotificationsTest, ReportsADeviceTokenOnce) {
  initialize();
  KesuPriorityLogger::sharedLogger().setLogLevel(3);
  report({});
  const Data token = {0xDE, 0xAD, 0x00, 0x0F};
  report(token);
  report(token);  // Before the first was posted.
  const auto records = takeRecords();
  ASSERT_EQ(records.size(), 2U);
  EXPECT_EQ(keysOf(records[0].second), "kak ~v kaid ace ase msg_id prd ldt rv av ov pn");
  EXPECT_EQ(*records[0].second.find("pn"), Value("dead000f"));
  EXPECT_TRUE(platform.log.contains("[KesuManager:1473]sendDeviceTokenTraits: and device token dead000f"));
  EXPECT_EQ(onDisk("deviceToken"), "dead000f");
  report(token);
  EXPECT_EQ(takeDestinations(), "");
  report({0x01});
  EXPECT_EQ(takeDestinations(), "t");
}

TEST_F(RemoteNotificationsTest, KeepsTheIdentifiersOfANotification) {
  initialize();
  const struct {
    Object identifier;
    Dictionary userInfo;
    const char* kept;
  } rows[] = {{"n1", {{"mid", "m1"}, {"cid", "c1"}}, "m1 c1 n1"},
              {nil, {{"cid", "c2"}, {"aps", Dictionary{{"alert", "text only"}}}}, "m1 c2 n1"},
              {"", {}, "m1 c2 n1"},
              {"\xff", {{"mid", "\xc3"}, {"cid", Array{"c3", std::nan("")}}}, "m1 c2 n1"}};
  for (const auto& row : rows) {
    library->manager.remoteNotifications().processReceivedRemoteNotification(row.identifier, row.userInfo);
    const Dictionary record = takeLast("t");
    EXPECT_TRUE(record.contains("~ft"));
    EXPECT_EQ(*record.findText("mid") + " " + *record.findText("cid") + " " + *record.findText("kesupushIdentifier"),
              row.kept);
    EXPECT_EQ(onDisk("push_mid_key") + " " + onDisk("push_cid_key") + " " + onDisk("kesupushIdentifier"), row.kept);
  }
}

}  // namespace
}  // namespace kesu
