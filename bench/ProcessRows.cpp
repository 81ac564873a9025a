// Start of a process that uses the library, its idle time and its size.
#include <kesu.h>
#include <poll.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "Child.h"
#include "Collector.h"
#include "Rows.h"
#include "Scratch.h"
#include "Session.h"
#include "Stopwatch.h"

namespace kesu::bench {
namespace {

constexpr int kStarts = 25;

/// What bench/start/main.cpp prints: microseconds inside Kesu::initialize and until the launch is over; memory in kB;
/// how many shared libraries it has loaded.
struct Started {
  double initializeMicroseconds = 0.0;
  double memoryKilobytes = 0.0;
  double launchMicroseconds = 0.0;
  double launchedKilobytes = 0.0;
  double libraries = 0.0;
  double drawMilliseconds = 0.0;
  double linkSeconds = 0.0;  ///< From the start of the process to main().
  double processSeconds = 0.0;
};

Started startProgram(const char* program, const std::string& home, int waitMilliseconds, bool draws = false) {
  Started started;
  std::vector<std::string> command{program, home, std::to_string(waitMilliseconds)};
  if (draws) {
    command.emplace_back("text");
  }
  const ChildResult result = runProgram(command);
  double mainAt = 0.0;
  std::istringstream(result.output) >> started.initializeMicroseconds >> started.memoryKilobytes >>
      started.launchMicroseconds >> started.launchedKilobytes >> mainAt >> started.libraries >>
      started.drawMilliseconds;
  started.linkSeconds = mainAt - result.startedAt;
  started.processSeconds = result.endedAt - result.startedAt;
  return started;
}

/// Medians over many starts: each in a new home directory, or all in one that has been used before.
Started usualStart(const char* program, bool firstEver, int waitMilliseconds = 0, bool draws = false) {
  const Scratch shared;
  startProgram(program, shared.path(), waitMilliseconds, draws);
  std::vector<Started> all;
  for (int round = 0; round < kStarts; ++round) {
    const Scratch fresh;
    all.push_back(startProgram(program, firstEver ? fresh.path() : shared.path(), waitMilliseconds, draws));
  }
  const auto medianOf = [&all](double Started::*field) {
    std::vector<double> values;
    for (const Started& one : all) {
      values.push_back(one.*field);
    }
    return median(values);
  };
  Started usual;
  for (const auto field : {&Started::initializeMicroseconds, &Started::memoryKilobytes, &Started::launchMicroseconds,
                           &Started::launchedKilobytes, &Started::libraries, &Started::drawMilliseconds,
                           &Started::linkSeconds, &Started::processSeconds}) {
    usual.*field = medianOf(field);
  }
  return usual;
}

double strippedMegabytes(const char* library) {
  const Scratch directory;
  const std::string stripped = directory / "library.so";
  runProgram({"strip", "--strip-unneeded", "-o", stripped, library});
  std::error_code missing;
  return static_cast<double>(std::filesystem::file_size(stripped, missing)) / 1e6;
}

/// How often threads of this process have gone to sleep so far.
long voluntarySwitches() {
  long switches = 0;
  for (const auto& task : std::filesystem::directory_iterator("/proc/self/task")) {
    std::ifstream file(task.path() / "status");
    for (std::string line; std::getline(file, line);) {
      if (line.starts_with("voluntary_ctxt_switches:")) {
        switches += std::stol(line.substr(line.find(':') + 1));
      }
    }
  }
  return switches;
}

}  // namespace

void measureStart(Figures& figures) {
  const Started bare = usualStart(KESU_BENCH_START_BARE, false);
  const Started warm = usualStart(KESU_BENCH_START, false);
  const Started first = usualStart(KESU_BENCH_START, true);
  figures.add(Figure("Kesu::initialize, warm", warm.initializeMicroseconds / 1e3, "ms"));
  figures.add(Figure("Kesu::initialize and didFinishLaunching, warm", warm.launchMicroseconds / 1e3, "ms").atMost(1.5));
  figures.add(Figure("Kesu::initialize, first ever", first.initializeMicroseconds / 1e3, "ms").atMost(10.0));
  figures.add(Figure("whole process that initialises and ends", warm.processSeconds * 1e3, "ms")
                  .compared("the same without library", bare.processSeconds * 1e3));
  // In turn: how busy the machine is, changes what the kernel's share of a start takes.
  const Scratch home;
  std::vector<double> ours;
  std::vector<double> besides;
  Started libraries;
  for (int round = 0; round < kStarts; ++round) {
    ours.push_back(startProgram(KESU_BENCH_START, home.path(), 0).linkSeconds * 1e3);
    libraries = startProgram(KESU_BENCH_START_LIBRARIES, home.path(), 0);
    besides.push_back(libraries.linkSeconds * 1e3);
  }
  figures.add(Figure("from the start of the process to main()", median(ours), "ms")
                  .compared("the system's libraries alone", median(besides))
                  .ratioAtMost(1.1));
  figures.add(Figure("shared libraries loaded, no message", warm.libraries, "libraries")
                  .compared("the system's libraries alone", libraries.libraries));
  figures.add(Figure("first frame with a text, with the loading of what draws",
                     usualStart(KESU_BENCH_START, false, 0, true).drawMilliseconds, "ms"));
}

void measureSize(Figures& figures) {
  const double core = strippedMegabytes(KESU_BENCH_LIBRARY);
  const double drawing = strippedMegabytes(KESU_BENCH_DRAWING_LIBRARY);
  figures.add(Figure("libkesu.so, stripped", core, "MB"));
  figures.add(Figure("libkesu-drawing.so, stripped", drawing, "MB"));
  figures.add(Figure("both together", core + drawing, "MB").atMost(1.1));
  const ChildResult foreign = runProgram(
      {"sh", "-c",
       "nm -DC --defined-only \"$0\" | grep -vE ' ((vtable|typeinfo|typeinfo name|guard variable) for )?kesu::' | "
       "grep -vE ' (non-)?virtual thunk to kesu::| [VWu] ' | wc -l",
       KESU_BENCH_LIBRARY});
  figures.add(Figure("exported symbols outside kesu", std::stod(foreign.output), "symbols").atMost(0.0));
  const double bare = usualStart(KESU_BENCH_START_BARE, false).memoryKilobytes / 1024.0;
  const double libraries = usualStart(KESU_BENCH_START_LIBRARIES, false).memoryKilobytes / 1024.0;
  const Started with = usualStart(KESU_BENCH_START, false, 300);
  figures.add(Figure("memory (RSS), launched, no message", with.launchedKilobytes / 1024.0, "MB")
                  .compared("the system's libraries alone", libraries)
                  .atMost(13.0));
  figures.add(Figure("memory (RSS) added by the library, initialised", with.memoryKilobytes / 1024.0 - bare, "MB")
                  .compared("the system's libraries alone", libraries - bare)
                  .atMost(6.0));
}

void measureIdle(Figures& figures) {
  constexpr double kQuietSeconds = 10.0;
  const Collector collector(Behaviour::Accept);
  const Scratch home;
  Session session(home.path(), collector.url(), Session::Launch::Full);
  session.idle(3.0);
  session.settle();
  const long before = voluntarySwitches();
  const double end = secondsNow() + kQuietSeconds;
  long sleeps = 0;
  for (double now = secondsNow(); now < end; now = secondsNow(), ++sleeps) {
    pollfd work{session.platform().mainLoop.fd(), POLLIN, 0};
    ::poll(&work, 1, static_cast<int>((end - now) * 1e3) + 1);
    session.platform().mainLoop.pump();
  }
  figures.add(Figure("idle for 10 s: wake-ups of the main loop", static_cast<double>(sleeps - 1), "times").atMost(0.0));
  figures.add(Figure("idle for 10 s: wake-ups of all other threads",
                     static_cast<double>(voluntarySwitches() - before - sleeps), "times")
                  .atMost(0.0));
}

}  // namespace kesu::bench
