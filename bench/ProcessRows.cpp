// Start and end of a process that uses the library, and its idle time in between.
#include <kesu.h>
#include <poll.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>

#include "Child.h"
#include "Collector.h"
#include "Rows.h"
#include "Scratch.h"
#include "Session.h"
#include "Stopwatch.h"
#include "StoreFiles.h"
#include "foundation/PropertyList.h"

namespace kesu::bench {
namespace {

constexpr int kStarts = 25;
constexpr int kEnds = 5;
constexpr std::size_t kPosts = 1000;

/// What bench/start/main.cpp prints: microseconds inside Kesu::initialize, and its memory in kB.
struct Started {
  double initializeMicroseconds = 0.0;
  double memoryKilobytes = 0.0;
  double processSeconds = 0.0;
};

Started startProgram(const char* program, const std::string& home) {
  Started started;
  const ChildResult result = runProgram({program, home});
  std::istringstream(result.output) >> started.initializeMicroseconds >> started.memoryKilobytes;
  started.processSeconds = result.endedAt - result.startedAt;
  return started;
}

/// Medians over many starts: each in a new home directory, or all in one that has been used before.
Started usualStart(const char* program, bool firstEver) {
  const Scratch shared;
  startProgram(program, shared.path());
  std::vector<double> times;
  std::vector<double> memory;
  std::vector<double> processes;
  for (int round = 0; round < kStarts; ++round) {
    const Scratch fresh;
    const Started one = startProgram(program, firstEver ? fresh.path() : shared.path());
    times.push_back(one.initializeMicroseconds);
    memory.push_back(one.memoryKilobytes);
    processes.push_back(one.processSeconds);
  }
  return {median(times), median(memory), median(processes)};
}

/// The numbers of the records in the store.
std::set<std::string> storedNumbers(const std::string& home) {
  std::set<std::string> numbers;
  std::error_code missing;
  for (const auto& entry : std::filesystem::directory_iterator(home + "/Documents", missing)) {
    std::ifstream file(entry.path());
    const std::string bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    const auto record = parsePropertyList(bytes);
    const std::string* number =
        record && record->dictionary() != nullptr ? record->dictionary()->findText("n") : nullptr;
    if (number != nullptr) {
      numbers.insert(*number);
    }
  }
  return numbers;
}

std::size_t countLost(const Collector& collector, const std::string& home) {
  const std::set<std::string> stored = storedNumbers(home);
  std::size_t lost = 0;
  for (std::size_t number = 0; number < kPosts; ++number) {
    lost += collector.hasAccepted(number) || stored.contains(std::to_string(number)) ? 0U : 1U;
  }
  return lost;
}

struct Ending {
  std::vector<double> times;  ///< Until willTerminate(), or what the library does at exit, is over.
  std::vector<double> gone;   ///< Until the system has taken the process down.
  std::size_t lost = 0;
};

Ending endOften(Behaviour behaviour, const std::string& way) {
  Ending ending;
  for (int round = 0; round < kEnds; ++round) {
    const Collector collector(behaviour);
    const Scratch home;
    const ChildResult result = runOwn("post-and-end", {home.path(), collector.url(), std::to_string(kPosts), way});
    double begin = 0.0;
    double end = 0.0;
    const bool isWhole = result.ended && std::istringstream(result.output) >> begin >> end;
    ending.times.push_back(isWhole ? end - begin : 1e9);
    ending.gone.push_back(isWhole ? result.endedAt - begin : 1e9);
    ending.lost += countLost(collector, home.path());
  }
  return ending;
}

/// What the system alone takes for files like those that are left.
double secondsOfBareFiles() {
  const Scratch directory;
  return secondsOf([&] {
    for (std::size_t number = 0; number < kPosts; ++number) {
      writeAndRename(directory.path(), number, usualRecordBytes());
    }
  });
}

void addEnding(Figures& figures, Behaviour behaviour, const char* label) {
  for (const std::string way : {"terminate", "return"}) {
    const Ending ending = endOften(behaviour, way);
    const std::string what =
        (way == "terminate" ? "willTerminate" : "return from main") + std::string(", 1,000 posted, collector ") + label;
    figures.add(Figure(what, median(ending.times) * 1e3, "ms")
                    .compared("1,000 bare files", secondsOfBareFiles() * 1e3)
                    .atMost(50.0));
    figures.add(Figure(what + ": until the process is gone", median(ending.gone) * 1e3, "ms"));
    figures.add(Figure(what + ": lost", static_cast<double>(ending.lost), "records").atMost(0.0));
  }
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

int postAndEnd(const std::vector<std::string>& arguments) {
  const bool terminates = arguments.at(3) == "terminate";
  if (!terminates) {
    // Registered before the library registers its own, so it runs after that.
    std::atexit([] { std::printf("%.9f\n", secondsNow()); });
  }
  Session session(arguments.at(0), arguments.at(1), Session::Launch::InitializeOnly);
  const auto count = static_cast<std::size_t>(std::stoul(arguments.at(2)));
  Application::shared().didFinishLaunching();
  for (const double end = secondsNow() + 0.3; secondsNow() < end;) {
    session.turn(50);
  }
  for (std::size_t number = 0; number < count; ++number) {
    postNumbered(number);
  }
  std::printf("%.9f ", secondsNow());
  if (terminates) {
    Application::shared().willTerminate();
    std::printf("%.9f\n", secondsNow());
  }
  return 0;
}

void measureStart(Figures& figures) {
  const Started bare = usualStart(KESU_BENCH_START_BARE, false);
  const Started warm = usualStart(KESU_BENCH_START, false);
  const Started first = usualStart(KESU_BENCH_START, true);
  figures.add(Figure("Kesu::initialize, warm", warm.initializeMicroseconds / 1e3, "ms").atMost(2.0));
  figures.add(Figure("Kesu::initialize, first ever", first.initializeMicroseconds / 1e3, "ms").atMost(10.0));
  figures.add(Figure("whole process that initialises and ends", warm.processSeconds * 1e3, "ms")
                  .compared("the same without library", bare.processSeconds * 1e3));
}

void measureSize(Figures& figures) {
  const Scratch directory;
  const std::string stripped = directory / "libkesu.so";
  runProgram({"strip", "--strip-unneeded", "-o", stripped, KESU_BENCH_LIBRARY});
  std::error_code missing;
  const double bytes = static_cast<double>(std::filesystem::file_size(stripped, missing));
  figures.add(Figure("libkesu.so, stripped", bytes / 1e6, "MB").atMost(1.5));
  const ChildResult foreign = runProgram(
      {"sh", "-c",
       "nm -DC --defined-only \"$0\" | grep -vE ' ((vtable|typeinfo|typeinfo name|guard variable) for )?kesu::' | "
       "grep -vE ' (non-)?virtual thunk to kesu::| [VWu] ' | wc -l",
       KESU_BENCH_LIBRARY});
  figures.add(Figure("exported symbols outside kesu", std::stod(foreign.output), "symbols").atMost(0.0));
  const double bare = usualStart(KESU_BENCH_START_BARE, false).memoryKilobytes / 1024.0;
  const double libraries = usualStart(KESU_BENCH_START_LIBRARIES, false).memoryKilobytes / 1024.0;
  const double with = usualStart(KESU_BENCH_START, false).memoryKilobytes / 1024.0;
  figures.add(Figure("memory (RSS) added by the library, initialised", with - bare, "MB")
                  .compared("the system's libraries alone", libraries - bare)
                  .atMost(6.0));
}

void measureExit(Figures& figures) {
  addEnding(figures, Behaviour::Refuse, "refuses");
  addEnding(figures, Behaviour::Hang, "hangs");
  addEnding(figures, Behaviour::Fail, "answers 500");
  addEnding(figures, Behaviour::Accept, "answers 200");
}

void measureIdle(Figures& figures) {
  constexpr double kQuietSeconds = 10.0;
  const Collector collector(Behaviour::Accept);
  const Scratch home;
  Session session(home.path(), collector.url(), Session::Launch::Full);
  for (const double end = secondsNow() + 3.0; secondsNow() < end;) {
    session.turn(100);
  }
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
