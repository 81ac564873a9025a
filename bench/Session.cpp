#include "Session.h"

#include <kesu.h>
#include <poll.h>
#include <sys/resource.h>
#include <time.h>

#include <atomic>
#include <fstream>
#include <future>

#include "Stopwatch.h"
#include "facade/Wiring.h"
#include "records/Destinations.h"

namespace kesu::bench {
namespace {

constexpr double kKilobytesPerMegabyte = 1024.0;

Platform& installed(const std::string& home, const std::string& url, std::string caFile) {
  PlatformOptions options;
  options.homeDirectory = home;
  options.collectorUrl = url;
  options.caFile = std::move(caFile);
  options.logSink = [](int, std::string_view) {};
  installLinuxPlatform(options);
  return Platform::current();
}

}  // namespace

Attributes fiveAttributes(std::size_t number) {
  return {{"world", "glacier"},
          {"difficulty", "hard"},
          {"score", "128400"},
          {"seconds played", "93.5"},
          {"n", std::to_string(number)}};
}

void postNumbered(std::size_t number) {
  KesuCustomEvent::postWithEventName(kEventName, fiveAttributes(number));
}

Dictionary usualRecord(std::size_t number) {
  Dictionary record = fiveAttributes(number);
  record.set("en", kEventName);
  record.set("dest", k_TableEvents);
  record.set("kak", "benchmark key");
  record.set("~v", "10-i-3.2.3");
  record.set("kaid", "3q2+796tvu/erb7v3q2+7w==");
  record.set("ace", "1520000000000");
  record.set("ase", "");
  record.set("msg_id", "yv66vsr+ur7K/rq+yv66vg==");
  record.set("ldt", "2018-03-02 14:13:20 +0000");
  record.set("rv", "42");
  record.set("av", "1.4.2");
  record.set("ov", "12.11");
  record.set("rch", "w");
  return record;
}

Session::Session(const std::string& homeDirectory, const std::string& collectorUrl, Launch launch, std::string caFile)
    : platform_(installed(homeDirectory, collectorUrl, std::move(caFile))) {
  Kesu::initialize("benchmark key");
  if (launch == Launch::Full) {
    Application::shared().didFinishLaunching();
    settle();
  }
}

void Session::settle(std::size_t mostPending) {
  // Not drain(): this thread would do the worker's work.
  std::atomic<bool> isWorkerDone{false};
  platform_.background.post([&isWorkerDone] { isWorkerDone = true; });
  do {
    turn(1);
  } while (!isWorkerDone || wiring().outbox.pendingCount() > mostPending ||
           platform_.http.pendingCount() > mostPending || platform_.mainLoop.nextDue() == 0.0);
}

void Session::deliverAll() {
  constexpr double kMostSeconds = 10.0;
  const double end = secondsNow() + kMostSeconds;
  do {
    settle();
  } while (secondsNow() < end && !wiring().store.storedFiles().empty());
}

void Session::idle(double seconds) {
  for (const double end = secondsNow() + seconds; secondsNow() < end;) {
    turn(50);
  }
}

double Session::turn(int mostMilliseconds) {
  pollfd work{platform_.mainLoop.fd(), POLLIN, 0};
  ::poll(&work, 1, mostMilliseconds);
  return secondsOf([this] { platform_.mainLoop.pump(); });
}

double processorSeconds() {
  rusage usage{};
  ::getrusage(RUSAGE_SELF, &usage);
  return static_cast<double>(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
         static_cast<double>(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) * 1e-6;
}

double workerSeconds(Platform& platform) {
  std::promise<timespec> answer;
  platform.background.post([&answer] {
    timespec time{};
    ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    answer.set_value(time);
  });
  const timespec time = answer.get_future().get();
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

long statusField(const std::string& name) {
  std::ifstream file("/proc/self/status");
  for (std::string line; std::getline(file, line);) {
    if (line.starts_with(name + ":")) {
      return std::stol(line.substr(name.size() + 1));
    }
  }
  return 0;
}

double residentMegabytes() {
  return static_cast<double>(statusField("VmRSS")) / kKilobytesPerMegabyte;
}

double privateMegabytes() {
  return static_cast<double>(statusField("RssAnon")) / kKilobytesPerMegabyte;
}

void resetPeakMemory() {
  std::ofstream("/proc/self/clear_refs") << "5";
}

}  // namespace kesu::bench
