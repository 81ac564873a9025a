// Several processes on one home, several threads that post while the process ends, and children of such a process.
#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>

#include "testing/TemporaryDirectory.h"
#include "tests/faults/HostProcess.h"
#include "tests/faults/NumberedCollector.h"

namespace kesu {
namespace {

using testing::HostProcess;
using testing::NumberedCollector;

constexpr double kSecondsOfPatience = 60;

class ManyAtOnce : public ::testing::Test {
 protected:
  std::unique_ptr<HostProcess> start(const std::vector<std::string>& commands) const {
    return std::make_unique<HostProcess>(home.path(), collector.url(), commands);
  }

  /// One more process must deliver what is left of these.
  void expectDelivered(const std::set<std::int64_t>& numbers) {
    collector.setMode(NumberedCollector::Mode::Up);
    const auto last = start({"launch", "serve"});
    EXPECT_EQ(collector.missingAfter(numbers, kSecondsOfPatience), std::set<std::int64_t>());
    EXPECT_EQ(last->wait(), 0);
  }

  static std::set<std::int64_t> firstNumbers(std::int64_t count) {
    std::set<std::int64_t> numbers;
    for (std::int64_t number = 1; number <= count; ++number) {
      numbers.insert(number);
    }
    return numbers;
  }

  testing::TemporaryDirectory home;
  NumberedCollector collector;
};

TEST_F(ManyAtOnce, ProcessesSendEachStoredRecordOnce) {
  collector.setMode(NumberedCollector::Mode::Refusing);
  const auto first = start({"post=1,600", "stored=600", "serve"});
  ASSERT_TRUE(first->waitForLine("stored"));
  EXPECT_EQ(first->wait(), 0);
  collector.setMode(NumberedCollector::Mode::Up);
  std::vector<std::unique_ptr<HostProcess>> hosts;
  for (int process = 0; process < 3; ++process) {
    hosts.push_back(start({"launch", "serve"}));
  }
  EXPECT_EQ(collector.missingAfter(firstNumbers(600), kSecondsOfPatience), std::set<std::int64_t>());
  for (const auto& host : hosts) {
    EXPECT_EQ(host->wait(), 0);
  }
  for (const auto& [number, count] : collector.byNumber()) {
    EXPECT_EQ(count, 1) << number;
  }
}

TEST_F(ManyAtOnce, ProcessesLoseNothingWhileOneIsKilled) {
  for (const auto mode : {NumberedCollector::Mode::Up, NumberedCollector::Mode::Failing}) {
    collector.setMode(mode);
    const std::int64_t base = mode == NumberedCollector::Mode::Up ? 0 : 10'000'000;
    std::vector<std::unique_ptr<HostProcess>> hosts;
    for (std::int64_t process = 0; process < 3; ++process) {
      hosts.push_back(start({"launch", "flood=" + std::to_string(base + process * 1'000'000)}));
    }
    for (std::int64_t process = 0; process < 3; ++process) {  // The next one goes on for 200 records more.
      const std::int64_t enough = base + process * 1'000'000 + 200 * (process + 1);
      EXPECT_TRUE(hosts[static_cast<std::size_t>(process)]->waitForLine("ack " + std::to_string(enough)));
      hosts[static_cast<std::size_t>(process)]->kill();
    }
    std::set<std::int64_t> acknowledged;
    for (const auto& host : hosts) {
      acknowledged.merge(host->acknowledged());
    }
    expectDelivered(acknowledged);
  }
}

TEST_F(ManyAtOnce, ThreadsThatGoOnPostingNeitherHoldUpTheEndNorLoseARecord) {
  for (const auto mode :
       {NumberedCollector::Mode::Up, NumberedCollector::Mode::Refusing, NumberedCollector::Mode::Hanging}) {
    collector.setMode(mode);
    const int first = static_cast<int>(mode) * 1'000'000 + 1;
    const auto host = start({"launch", "threads=" + std::to_string(first) + ",6", "turns=50", "end"});
    ASSERT_TRUE(host->waitForLine("end")) << "the end of the process hangs";
    EXPECT_EQ(host->wait(), 0);
    expectDelivered(host->acknowledged());
  }
}

TEST_F(ManyAtOnce, ChildrenOfAPostingProcessDoNotHang) {
  const auto host = start({"launch", "threads=1,4", "forks=300", "end"});
  ASSERT_TRUE(host->waitForLine("end"));
  EXPECT_EQ(host->wait(), 0);
  for (const std::string& line : host->lines()) {
    EXPECT_FALSE(line.ends_with("hangs")) << line;
  }
  expectDelivered(host->acknowledged());
  for (const Dictionary& record : collector.others()) {
    const std::string* name = record.findText("~e");
    EXPECT_TRUE(name == nullptr || *name != "of a child");
  }
}

}  // namespace
}  // namespace kesu
