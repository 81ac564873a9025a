// The road of a record over real HTTP, real files and real user defaults.
#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <map>
#include <set>
#include <thread>

#include "foundation/Json.h"
#include "foundation/PropertyList.h"
#include "testing/LoopbackServer.h"
#include "testing/RealPlatform.h"
#include "testing/TemporaryDirectory.h"
#include "testing/TestCertificates.h"

namespace kesu {
namespace {

using testing::Fault;
using testing::LoopbackServer;
using testing::RealPlatform;

bool longRun() {
  return std::getenv("KESU_LONG_TESTS") != nullptr;
}

LinuxHttpClientOptions quickToGiveUp() {
  LinuxHttpClientOptions options;
  options.idleTimeoutSeconds = 0.3;
  return options;
}

std::string messageIdentifier(const std::string& body) {
  const auto parsed = parseJson(body);
  const std::string* identifier = parsed ? parsed->dictionary()->findText("msg_id") : nullptr;
  return identifier != nullptr ? *identifier : "";
}

class DeliveryTest : public ::testing::Test {
 protected:
  /// Posts one event to a collector; returns how many files are stored afterwards.
  std::size_t storedAfter(const std::string& collectorUrl, LinuxHttpClientOptions options) {
    testing::TemporaryDirectory ownHome;
    RealPlatform platform(ownHome.path(), collectorUrl, std::move(options));
    Kesu::initialize("key");
    KesuCustomEvent::postWithEventName("event");
    EXPECT_TRUE(platform.settle());
    return platform.storedFiles().size();
  }

  /// Posts 1,000 events to a collector and ends in order; returns the identifiers of the records that the next process
  /// delivers to another one.
  std::set<std::string> leftAtTheEnd(const std::string& collectorUrl) {
    testing::TemporaryDirectory ownHome;
    std::size_t stored = 0;
    {
      RealPlatform platform(ownHome.path(), collectorUrl);
      Kesu::initialize("key");
      for (int i = 0; i < 1000; ++i) {
        KesuCustomEvent::postWithEventName("event");
      }
      Application::shared().willTerminate();
      stored = platform.storedFiles().size();  // Before the end; the end itself has no time for files.
    }
    LoopbackServer next;
    RealPlatform platform(ownHome.path(), next.url());
    platform.launch();
    EXPECT_TRUE(platform.settle());
    EXPECT_TRUE(stored == 0 || platform.pumpUntil([&platform] { return platform.storedFiles().empty(); }));
    std::set<std::string> identifiers;
    for (const auto& request : next.requests()) {
      identifiers.insert(messageIdentifier(request.body));
    }
    EXPECT_EQ(identifiers.size(), next.requestCount()) << "each is sent once";
    return identifiers;
  }

  static constexpr std::size_t kPostsAndEnd = 1002;  // The end itself is a state change and its activations.

  testing::TemporaryDirectory home;
  LoopbackServer server;
};

TEST_F(DeliveryTest, StoresWhatTheCollectorDidNotTake) {
  LoopbackServer other;
  const std::vector<std::tuple<const char*, Fault, std::size_t>> rows = {
      {"200", Fault::reply(200, "ok"), 0},
      {"204", Fault::reply(204), 0},
      {"301, where a GET succeeds", Fault::redirect(301, "/moved"), 1},
      {"302, where a GET succeeds", Fault::redirect(302, "/moved"), 1},
      {"303, where a GET succeeds", Fault::redirect(303, "/moved"), 1},
      {"307 with its body", Fault::redirect(307, "/moved"), 0},
      {"301 to another host", Fault::redirect(301, other.url()), 1},
      {"307 to another host", Fault::redirect(307, other.url()), 1},
      {"308 in a circle", Fault::redirect(308, "/"), 1},
      {"400", Fault::reply(400), 0},
      {"403", Fault::reply(403), 0},
      {"404", Fault::reply(404), 1},
      {"429", Fault::reply(429), 1},
      {"500", Fault::reply(500), 1},
      {"reset", Fault::reset(), 1},
      {"hang", Fault::hang(), 1},
      {"cut body", Fault::cutBody(100, "part"), 1},
      {"bad gzip", Fault::badGzip(), 1},
      {"100 MB reply", Fault::endless(100'000'000), 0}};
  server.onPath("/moved", Fault::reply(200));
  for (const auto& [name, fault, stored] : rows) {
    server.setDefault(fault);
    EXPECT_EQ(storedAfter(server.url(), quickToGiveUp()), stored) << name;
  }
  EXPECT_EQ(other.requestCount(), 0U) << "nothing is sent to a host that was not named";
}

TEST_F(DeliveryTest, StoresWhatFindsNoTrustworthyCollector) {
  const testing::TestCertificates made;
  LoopbackServer wrongHost(made.wrongHost());
  LoopbackServer selfSigned(made.selfSigned());
  server.stop();
  LinuxHttpClientOptions options;
  options.caFile = made.caFile();
  for (const std::string& url : {server.url(), std::string("http://nowhere.invalid/"), wrongHost.url(),
                                 selfSigned.url(), std::string("ftp://127.0.0.1/"), std::string("no url")}) {
    EXPECT_EQ(storedAfter(url, options), 1U) << url;
  }
  EXPECT_EQ(wrongHost.requestCount() + selfSigned.requestCount(), 0U);
}

TEST_F(DeliveryTest, SendsStoredRecordsOnceTheCollectorIsBack) {
  RealPlatform platform(home.path(), server.url("/collect"));
  platform.launch();
  ASSERT_TRUE(platform.settle());
  const std::size_t before = server.requestCount();
  server.stop();
  for (int i = 0; i < 50; ++i) {
    KesuCustomEvent::postWithEventName("event " + std::to_string(i));
  }
  ASSERT_TRUE(platform.pumpUntil([&platform] { return platform.storedFiles().size() == 50; }));
  server.start();
  ASSERT_TRUE(platform.pumpUntil([&platform] { return platform.storedFiles().empty(); }));
  std::set<std::string> identifiers;
  const auto requests = server.requests();
  for (std::size_t i = before; i < requests.size(); ++i) {
    EXPECT_EQ(requests[i].header("t"), "e");
    identifiers.insert(messageIdentifier(requests[i].body));
  }
  EXPECT_EQ(identifiers.size(), 50U);
  EXPECT_EQ(requests.size(), before + 50U);
}

TEST_F(DeliveryTest, LosesNothingWhenItEndsInOrder) {
  const std::pair<const char*, Fault> rows[] = {
      {"200", Fault::reply(200)}, {"hanging", Fault::hang()}, {"500", Fault::reply(500)}, {"none", {}}};
  for (const auto& [name, fault] : rows) {
    LoopbackServer collector;
    collector.setDefault(fault);
    if (std::string_view(name) == "none") {
      collector.stop();
    }
    std::set<std::string> found = leftAtTheEnd(collector.url());
    if (std::string_view(name) == "200") {
      for (const auto& request : collector.requests()) {
        found.insert(messageIdentifier(request.body));
      }
    }
    found.erase("");
    EXPECT_GE(found.size(), kPostsAndEnd) << name;
  }
}

TEST_F(DeliveryTest, DeliversEachRecordOfEightThreadsOnce) {
  const int perThread = longRun() ? 12'500 : 1'250;
  RealPlatform platform(home.path(), server.url());
  platform.launch();
  ASSERT_TRUE(platform.settle());
  const std::size_t before = server.requestCount();
  std::atomic<int> running{8};
  std::vector<std::thread> threads;
  for (int t = 0; t < 8; ++t) {
    threads.emplace_back([&running, perThread] {
      for (int i = 0; i < perThread; ++i) {
        KesuCustomEvent::postWithEventName("event", {{"i", i}});
      }
      --running;
    });
  }
  int flips = 0;
  const auto everyThreadEnded = [&] {
    platform.notifications.post("kNetworkKesuReachabilityChangedNotification");
    ++flips;
    return running == 0;
  };
  EXPECT_TRUE(platform.pumpUntil(everyThreadEnded, 300.0));
  for (std::thread& thread : threads) {
    thread.join();
  }
  EXPECT_TRUE(platform.settle(300.0));
  std::map<std::string, int> seen;
  const auto requests = server.requests();
  for (std::size_t i = before; i < requests.size(); ++i) {
    ++seen[messageIdentifier(requests[i].body)];
  }
  EXPECT_EQ(seen.size(), 8U * static_cast<std::size_t>(perThread));
  EXPECT_EQ(requests.size() - before, seen.size());
  EXPECT_GT(flips, 0);
}

TEST_F(DeliveryTest, ContinuesWithoutAWritableHome) {
  for (const std::string& unusable : {std::string(""), std::string("/proc/kesu"), std::string("/dev/null/home")}) {
    server.setDefault(Fault::reply(500));
    RealPlatform platform(unusable, server.url());
    Kesu::initialize("key", 3);
    platform.log.takeLines();
    KesuCustomEvent::postWithEventName("event");
    EXPECT_TRUE(platform.settle()) << unusable;
    EXPECT_TRUE(platform.log.contains("[KesuPost:177]Error writing dictionary to disk ")) << unusable;
    Kesu::logThrottling(0);
  }
}

TEST_F(DeliveryTest, LeavesDamagedFilesAloneAndDeliversTheOthers) {
  std::string good;
  {
    RealPlatform platform(home.path(), server.url());
    Kesu::initialize("key");
    server.setDefault(Fault::reply(500));
    KesuCustomEvent::postWithEventName("event", {{"title", "Night Train"}});
    ASSERT_TRUE(platform.settle());
    good = platform.files.read(platform.storedFiles().at(0), 1'000'000).bytes;
  }
  server.setDefault(Fault::reply(200));
  RealPlatform platform(home.path(), server.url());
  std::size_t damaged = 0;
  const std::string documents = platform.files.documentsDirectory();
  for (std::size_t length = 0; length < good.size(); length += 7) {
    const std::string path = documents + "/cut" + std::to_string(++damaged) + ".kesuCache";
    platform.files.writeAtomically(path, std::string_view(good).substr(0, length));
  }
  Kesu::initialize("key");
  Application::shared().didFinishLaunching();
  EXPECT_TRUE(platform.pumpUntil([&] { return platform.storedFiles().size() == damaged; }));
  EXPECT_TRUE(platform.settle());
  EXPECT_EQ(platform.storedFiles().size(), damaged);
}

}  // namespace
}  // namespace kesu
