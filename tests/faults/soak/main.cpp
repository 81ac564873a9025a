// A host that posts for minutes while its collector comes and goes: counts what is lost and what arrives twice, and
// watches memory and descriptors. Argument: the seconds. Run by scripts/soak.
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include "tests/faults/HostProcess.h"
#include "tests/faults/NumberedCollector.h"
#include "tools/loopback/TemporaryDirectory.h"

namespace {

using kesu::testing::HostProcess;
using kesu::testing::NumberedCollector;
using Mode = NumberedCollector::Mode;

constexpr int kRecordsPerSecond = 50;
constexpr int kSecondsPerMode = 10;
constexpr int kSecondsPerReport = 30;
constexpr Mode kModes[] = {Mode::Up, Mode::Refusing, Mode::Failing, Mode::Hanging};
constexpr int kSecondsOfCycle = kSecondsPerMode * static_cast<int>(std::size(kModes));

// What one cycle takes at its worst is compared: a collector that hangs costs memory and connections for a while.
constexpr int kSecondsUntilSteady = 20;
constexpr int kShortestRun = kSecondsUntilSteady + 2 * kSecondsOfCycle;
constexpr long kMostGrowthInKilobytes = 2048;
constexpr long kMostMoreDescriptors = 8;  // What happens to be open at one of the moments.

// Kept: the store deletes one file when its counter passes this number, and never again.
constexpr std::size_t kStoredUntilOneIsDeleted = 5000;

constexpr double kSecondsUntilDelivered = 120;

struct Usage {
  long kilobytes = 0;
  long descriptors = 0;
};

Usage usageOf(pid_t process) {
  const std::string directory = "/proc/" + std::to_string(process);
  Usage usage;
  long pages = 0;
  std::ifstream(directory + "/statm") >> pages >> pages;
  usage.kilobytes = pages * (::sysconf(_SC_PAGESIZE) / 1024);
  std::error_code error;
  for (std::filesystem::directory_iterator entry(directory + "/fd", error), end; !error && entry != end;
       entry.increment(error)) {
    ++usage.descriptors;
  }
  return usage;
}

Usage mostOf(const std::vector<Usage>& usages, int from, int seconds) {
  Usage most;
  for (int second = from; second < from + seconds; ++second) {
    const Usage& usage = usages[static_cast<std::size_t>(second)];
    most = {std::max(most.kilobytes, usage.kilobytes), std::max(most.descriptors, usage.descriptors)};
  }
  return most;
}

std::size_t copiesIn(NumberedCollector& collector) {
  std::size_t copies = 0;
  for (const auto& [identifier, count] : collector.byIdentifier()) {
    copies += static_cast<std::size_t>(count) - 1;
  }
  return copies;
}

int report(int seconds, HostProcess& host, NumberedCollector& collector, const std::vector<Usage>& usages) {
  collector.setMode(Mode::Up);
  std::set<std::int64_t> missing;
  const int status = [&] {
    host.closeInput();
    const int ended = host.wait();
    HostProcess last(host.home(), collector.url(), {"launch", "serve"});
    missing = collector.missingAfter(host.acknowledged(), kSecondsUntilDelivered);
    return ended != 0 ? ended : last.wait();
  }();
  const Usage before = mostOf(usages, kSecondsUntilSteady, kSecondsOfCycle);
  const Usage after = mostOf(usages, seconds - kSecondsOfCycle, kSecondsOfCycle);
  const std::size_t allowed = host.acknowledged().size() > kStoredUntilOneIsDeleted ? 1 : 0;
  const bool loses = missing.size() > allowed;
  const bool grows = after.kilobytes > before.kilobytes + kMostGrowthInKilobytes ||
                     after.descriptors > before.descriptors + kMostMoreDescriptors;
  std::printf(
      "%zu records, %zu lost (%zu by the limit of the store), %zu copies; most memory %ld -> %ld kB, most "
      "descriptors %ld -> %ld\n",
      host.acknowledged().size(), missing.size(), allowed, copiesIn(collector), before.kilobytes, after.kilobytes,
      before.descriptors, after.descriptors);
  std::printf("%s\n", status != 0 ? "FAILED: the host crashed or hangs"
                      : loses     ? "FAILED: records are lost"
                      : grows     ? "FAILED: memory or descriptors grow"
                                  : "nothing lost, nothing grows");
  return status != 0 || loses || grows ? 1 : 0;
}

}  // namespace

int main(int argc, char** argv) {
  const int seconds = std::max(argc > 1 ? static_cast<int>(std::strtol(argv[1], nullptr, 10)) : 0, kShortestRun);
  const kesu::loopback::TemporaryDirectory home;
  NumberedCollector collector;
  HostProcess host(home.path(), collector.url(), {"launch", "steady=1," + std::to_string(kRecordsPerSecond)});
  std::vector<Usage> usages;
  for (int second = 0; second < seconds; ++second) {
    if (second % kSecondsPerMode == 0) {
      collector.setMode(kModes[static_cast<std::size_t>(second / kSecondsPerMode) % std::size(kModes)]);
    }
    std::this_thread::sleep_for(std::chrono::seconds(1));
    host.readLines();
    usages.push_back(usageOf(host.id()));
    if ((second + 1) % kSecondsPerReport == 0) {
      std::printf("%4d s: %zu posted, %zu delivered, %zu copies, %ld kB, %ld descriptors\n", second + 1,
                  host.acknowledged().size(), collector.byNumber().size(), copiesIn(collector), usages.back().kilobytes,
                  usages.back().descriptors);
      std::fflush(stdout);
    }
  }
  return report(seconds, host, collector, usages);
}
