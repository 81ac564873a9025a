#include "delivery/ResendPass.h"

#include <gtest/gtest.h>

#include "support/KesuPriorityLogger.h"
#include "testing/DeliveryTest.h"

namespace kesu {
namespace {

class ResendPassTest : public testing::DeliveryTest {
 protected:
  /// Lets that many seconds pass, with what is planned for their end.
  void pass(double seconds) {
    platform.clock.advance(seconds);
    platform.background.runDelayed();
    platform.settle();
  }

  ResendPass resendPass{store, post, outbox, platform.files, platform.background, platform.clock};
};

TEST_F(ResendPassTest, SendsEveryStoredRecordAgainInOnePass) {
  KesuPriorityLogger::sharedLogger().setLogLevel(3);
  for (int i = 0; i < 20; ++i) {
    platform.clock.advance(0.001);
    store.add({{"dest", "e"}, {"n", i}});
  }
  const std::pair<NetworkStatus, const char*> rows[] = {
      {NetworkStatus::NotReachable, "[KesuManager:1951]**** Not Reachable ****"},
      {NetworkStatus::Reachable, "[KesuManager:1953]**** wifi ****"},
      {NetworkStatus::ReachableCell, "[KesuManager:1955]**** cell ****"}};
  for (const auto& [status, line] : rows) {
    resendPass.start(status);
    platform.settle();
    EXPECT_EQ(platform.log.takeLines().front().text, line);
  }
  ASSERT_EQ(platform.http.requestCount(), 40U) << "passes know nothing of each other";
  platform.http.answerAll(200);
  platform.settle();
  EXPECT_TRUE(store.storedFiles().empty());
  EXPECT_TRUE(platform.log.contains("[KesuStore:129]FAILED removing "));
}

TEST_F(ResendPassTest, WarnsOncePerPassOfFilesThatCannotBeRead) {
  for (const char* name : {"a", "b", "c", "d"}) {
    files.writeAtomically(files.documentsDirectory() + "/" + name + ".kesuCache", "no property list");
  }
  KesuPriorityLogger::sharedLogger().setLogLevel(2);
  files.failNextRead(FileStatus::NotFound);  // Deleted by an earlier pass whose replies come meanwhile.
  resendPass.start(NetworkStatus::Reachable);
  platform.settle();
  const auto lines = platform.log.takeLines();
  ASSERT_EQ(lines.size(), 1U);
  EXPECT_EQ(lines[0].text, "No record can be read from /home/Documents/b.kesuCache, the first of 3 such files");
  EXPECT_EQ(lines[0].level, 2);
}

TEST_F(ResendPassTest, DeletesTheFileOfADeliveredRecordOnly) {
  for (int i = 0; i < 3; ++i) {
    platform.clock.advance(0.001);
    store.add({{"dest", "e"}, {"n", i}});
  }
  resendPass.start(NetworkStatus::Reachable);
  platform.settle();
  answer(1, 200);
  EXPECT_EQ(store.storedFiles().size(), 2U) << "it waits for no other reply";
  answer(0, 403);
  outbox.beginEnd();
  answer(2, 204);
  EXPECT_EQ(store.storedFiles().size(), 1U);
}

TEST_F(ResendPassTest, TakesTheFirstDeliveryAfterAFailureAsNews) {
  postOne(500);
  postOne(500);
  ASSERT_EQ(store.storedFiles().size(), 2U);
  postOne(200);
  EXPECT_EQ(platform.http.answerAll(200), 2U) << "both stored records are sent again";
  platform.settle();
  EXPECT_TRUE(store.storedFiles().empty());
  postOne(200);
  EXPECT_EQ(platform.http.answerAll(200), 0U) << "no news";
}

TEST_F(ResendPassTest, SendsOncePerPauseWhileRecordsAreLeftBehind) {
  postOne(500);
  for (int round = 0; round < 3; ++round) {
    postOne(200);
    resendPass.start(NetworkStatus::Reachable);
    resendPass.start(NetworkStatus::Reachable);
    platform.settle();
    if (round > 0) {
      EXPECT_EQ(platform.http.answerAll(503), 0U) << "three signs of life within the pause";
      pass(60.0);
      EXPECT_EQ(platform.http.answerAll(503), 1U);
    } else {
      platform.http.answerAll(503);
    }
    platform.settle();
  }
}

TEST_F(ResendPassTest, HandsOutWhatCouldNotBeStored) {
  files.failWrites(FileStatus::NoSpace);
  postOne(500);
  postOne(500);
  EXPECT_TRUE(store.storedFiles().empty());
  EXPECT_EQ(platform.log.takeLines().size(), 1U) << "told once";
  files.failWrites(FileStatus::Ok);
  EXPECT_EQ(platform.outbox.openCount(), 2U);
  resendPass.start(NetworkStatus::Reachable);
  platform.settle();
  EXPECT_EQ(platform.http.answerAll(200), 2U);
  platform.settle();
  EXPECT_EQ(platform.outbox.openCount(), 0U);
}

}  // namespace
}  // namespace kesu
