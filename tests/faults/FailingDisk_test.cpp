// One call on a file below the home directory fails, or all from one on: nothing that was taken is lost, but for what
// the library said it cannot keep; the installation keeps its identity; the next run is well.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <ostream>
#include <random>
#include <sstream>

#include "testing/TemporaryDirectory.h"
#include "tests/faults/HostProcess.h"
#include "tests/faults/NumberedCollector.h"

namespace kesu {
namespace {

namespace fs = std::filesystem;
using testing::HostProcess;
using testing::NumberedCollector;

// Nobody listens there.
constexpr const char* kNobody = "http://127.0.0.1:1/";

constexpr std::size_t kSelectedFaults = 50;
constexpr double kSecondsUntilDelivered = 20;
constexpr const char* kNotKept = "log 0 Records are not kept on disk until they are delivered";

/// What fails.
struct DiskFault {
  long call = 0;
  std::string error;
  bool lasts = false;
  std::string name;  ///< Of the call in the run that listed them.

  friend std::ostream& operator<<(std::ostream& out, const DiskFault& fault) {
    return out << fault.error << (fault.lasts ? " from call " : " in call ") << fault.call << " (" << fault.name
               << ") on";
  }
};

std::set<std::int64_t> numbersFrom(std::int64_t first, std::int64_t count) {
  std::set<std::int64_t> numbers;
  for (std::int64_t number = first; number < first + count; ++number) {
    numbers.insert(number);
  }
  return numbers;
}

/// The numbers that were acknowledged before the library said that it cannot keep records.
std::set<std::int64_t> keptBy(const HostProcess& host) {
  std::set<std::int64_t> numbers;
  for (const std::string& line : host.lines()) {
    if (line.starts_with(kNotKept)) {
      break;
    }
    if (line.starts_with("ack ")) {
      numbers.insert(std::strtoll(line.c_str() + 4, nullptr, 10));
    }
  }
  return numbers;
}

/// One line of the trace that the preloaded library writes: number, name, path, possible errors.
void addFaults(const std::string& line, std::vector<DiskFault>& faults) {
  std::istringstream words(line);
  DiskFault fault;
  std::string path;
  words >> fault.call >> fault.name >> path;
  fault.name += " " + path.substr(path.find_last_of('/') + 1);
  while (words >> fault.error) {
    for (const bool lasts : {false, true}) {
      // Who repeats an interrupted call would do so for ever; SQLite tries for 10 s at each access to get a lock.
      if (!lasts || (fault.error != "EINTR" && fault.name.rfind("fcntl", 0) != 0)) {
        fault.lasts = lasts;
        faults.push_back(fault);
      }
    }
  }
}

class FailingDisk : public ::testing::Test {
 protected:
  static std::vector<std::string> preloaded(const std::string& home, const DiskFault& fault,
                                            const std::string& trace = {}) {
    std::vector<std::string> variables = {std::string("LD_PRELOAD=") + KESU_FAULTY_CALLS, "KESU_FAULT_HOME=" + home,
                                          "KESU_FAULT_CALL=" + std::to_string(fault.call),
                                          "KESU_FAULT_ERROR=" + fault.error};
    if (fault.lasts) {
      variables.emplace_back("KESU_FAULT_LASTS=1");
    }
    if (!trace.empty()) {
      variables.push_back("KESU_FAULT_TRACE=" + trace);
    }
    return variables;
  }

  /// Runs the session without a fault and returns what can fail in it: everything in long runs, else a selection.
  std::vector<DiskFault> faultsOf(const std::string& home, const std::string& url,
                                  const std::vector<std::string>& session) {
    const std::string trace = scratch / "trace";
    HostProcess host(home, url, session, preloaded(home, {}, trace));
    EXPECT_EQ(host.wait(), 0);
    std::vector<DiskFault> faults;
    std::ifstream lines(trace);
    for (std::string line; std::getline(lines, line);) {
      addFaults(line, faults);
    }
    EXPECT_GT(faults.size(), 100U) << "the preloaded library sees no calls";
    fs::remove(trace);
    if (std::getenv("KESU_LONG_TESTS") == nullptr) {
      // SQLite takes and drops some hundred locks: fewer of these.
      std::erase_if(
          faults, [locks = 0](const DiskFault& fault) mutable { return fault.error == "ENOLCK" && ++locks % 8 != 0; });
      std::shuffle(faults.begin(), faults.end(), std::mt19937(20170315));
      faults.resize(std::min(faults.size(), kSelectedFaults));
    }
    return faults;
  }

  /// A run without a fault must deliver these and a record of its own.
  static void expectDelivered(const std::string& home, NumberedCollector& collector, std::set<std::int64_t> numbers,
                              std::int64_t own) {
    HostProcess host(home, collector.url(), {"launch", "post=" + std::to_string(own) + ",1", "serve"});
    numbers.insert(own);
    EXPECT_EQ(collector.missingAfter(numbers, kSecondsUntilDelivered), std::set<std::int64_t>());
    EXPECT_EQ(host.wait(), 0);
  }

  /// Runs the session with the fault. Returns the numbers that must reach the collector.
  static std::set<std::int64_t> runWith(const DiskFault& fault, const std::string& home,
                                        const NumberedCollector& collector, const std::vector<std::string>& session,
                                        std::size_t count) {
    HostProcess host(home, collector.url(), session, preloaded(home, fault));
    EXPECT_EQ(host.wait(), 0) << "it crashed or hangs after " << (host.lines().empty() ? "" : host.lines().back());
    EXPECT_EQ(host.acknowledged().size(), count);
    return fault.lasts ? keptBy(host) : host.acknowledged();
  }

  /// Expects one identity in all numbered records but those from `from` up to `to`.
  static void expectOneIdentity(NumberedCollector& collector, std::int64_t from, std::int64_t to) {
    std::set<std::string> found;
    for (const auto& [number, identity] : collector.identities()) {
      if (number < from || number >= to) {
        found.insert(identity);
      }
    }
    EXPECT_EQ(found.size(), 1U) << ::testing::PrintToString(found);
  }

  static void expectOnceOrTwice(NumberedCollector& collector) {
    for (const auto& [number, count] : collector.byNumber()) {
      EXPECT_LE(count, 2) << "record " << number;
    }
  }

  static void expectNoDamage(const std::string& home) {
    for (const auto& entry : fs::recursive_directory_iterator(home)) {
      EXPECT_EQ(entry.path().string().find(".corrupt"), std::string::npos) << entry.path();
    }
  }

  testing::TemporaryDirectory scratch;
};

TEST_F(FailingDisk, LosesNothingOfTheFirstRun) {
  const std::vector<std::string> session = {"launch", "post=1,30", "turns=40", "background", "end"};
  for (const DiskFault& fault : faultsOf(scratch / "listing", kNobody, session)) {
    SCOPED_TRACE(::testing::Message() << fault);
    const testing::TemporaryDirectory home;
    NumberedCollector collector;
    collector.setMode(NumberedCollector::Mode::Refusing);
    const std::set<std::int64_t> kept = runWith(fault, home.path(), collector, session, 30);
    collector.setMode(NumberedCollector::Mode::Up);
    expectDelivered(home.path(), collector, kept, 101);
    expectDelivered(home.path(), collector, {}, 102);
    expectOneIdentity(collector, 1, fault.lasts ? 101 : 1);
    expectOnceOrTwice(collector);
    expectNoDamage(home.path());
  }
}

TEST_F(FailingDisk, LosesNothingOfAnEarlierRun) {
  const std::string stored = scratch / "stored";
  {
    HostProcess host(stored, kNobody, {"launch", "post=1,10", "turns=200", "post=11,20", "background", "end"});
    ASSERT_EQ(host.wait(), 0);
  }
  const std::vector<std::string> session = {"launch", "post=101,5", "turns=60", "background", "end"};
  const std::string listing = scratch / "listing";
  fs::copy(stored, listing, fs::copy_options::recursive);
  NumberedCollector first;
  for (const DiskFault& fault : faultsOf(listing, first.url(), session)) {
    SCOPED_TRACE(::testing::Message() << fault);
    const testing::TemporaryDirectory home;
    fs::copy(stored, home.path(), fs::copy_options::recursive);
    NumberedCollector collector;
    std::set<std::int64_t> kept = runWith(fault, home.path(), collector, session, 5);
    kept.merge(numbersFrom(1, 30));
    expectDelivered(home.path(), collector, kept, 201);
    // A run that can never read who it is cannot know better.
    expectOneIdentity(collector, 101, fault.lasts ? 201 : 101);
    if (!fault.lasts) {
      expectOnceOrTwice(collector);
    }
    expectNoDamage(home.path());
  }
}

// A disk that many others use. The time only tells that from a wait: it is half of what one sync takes.
TEST_F(FailingDisk, MakesNoHostWaitForASyncOfTheWorker) {
  constexpr int kSecondsOfASync = 40;
  const testing::TemporaryDirectory home;
  NumberedCollector collector;
  collector.setMode(NumberedCollector::Mode::Hanging);
  const std::string trace = scratch / "trace";
  std::vector<std::string> slow = preloaded(home.path(), {}, trace);
  slow.push_back("KESU_FAULT_SLOW=" + std::to_string(kSecondsOfASync));
  HostProcess host(home.path(), collector.url(),
                   {"launch", "screen=Home", "post=1,100", "background", "turns=300", "foreground", "gone=Home",
                    "event=Play", "post=101,100", "end"},
                   slow);
  EXPECT_TRUE(host.waitForLine("end", kSecondsOfASync / 2));
  EXPECT_EQ(host.wait(kSecondsOfASync / 2), 0);
  std::ifstream calls(trace);
  const std::string text{std::istreambuf_iterator<char>(calls), {}};
  EXPECT_NE(text.find("fdatasync"), std::string::npos) << "nothing was slow";
  collector.setMode(NumberedCollector::Mode::Up);
  expectDelivered(home.path(), collector, numbersFrom(1, 200), 201);
}

}  // namespace
}  // namespace kesu
