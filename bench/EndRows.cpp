// What becomes of records when the process ends, is killed, or cannot reach the collector for long.
#include <kesu.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>

#include "Child.h"
#include "Collector.h"
#include "Rows.h"
#include "Scratch.h"
#include "Session.h"
#include "Stopwatch.h"
#include "StoreFiles.h"

namespace kesu::bench {
namespace {

constexpr int kRounds = 5;
constexpr std::size_t kFew = 1000;
constexpr std::size_t kMany = 5000;

constexpr std::pair<Behaviour, const char*> kBehaviours[] = {{Behaviour::Accept, "answers 200"},
                                                             {Behaviour::Refuse, "refuses"},
                                                             {Behaviour::Hang, "hangs"},
                                                             {Behaviour::Fail, "answers 500"}};

struct Ending {
  std::vector<double> times;  ///< Until willTerminate(), or what the library does at exit, is over.
  std::vector<double> gone;   ///< Until the system has taken the process down.
  std::size_t lost = 0;
  std::size_t repeated = 0;
};

/// Has a process post and end, then another one deliver what is left; counts what no collector has got.
void endOnce(Ending& ending, Behaviour behaviour, std::size_t count, const std::string& way) {
  const Collector collector(behaviour);
  const Collector later(Behaviour::Accept);
  const Scratch home;
  const ChildResult result = runOwn("post-and-end", {home.path(), collector.url(), std::to_string(count), way});
  double begin = 0.0;
  double end = 0.0;
  const bool isWhole = result.ended && std::istringstream(result.output) >> begin >> end;
  ending.times.push_back(isWhole ? end - begin : 1e9);
  ending.gone.push_back(isWhole ? result.endedAt - begin : 1e9);
  runOwn("deliver-all", {home.path(), later.url()});
  ending.repeated += later.countRepeated(count);
  for (std::size_t number = 0; number < count; ++number) {
    const bool isFirst = collector.hasAccepted(number);
    const bool isLater = later.hasAccepted(number);
    ending.lost += isFirst || isLater ? 0U : 1U;
    ending.repeated += isFirst && isLater ? 1U : 0U;
  }
}

/// What the system alone takes for one file per record.
double secondsOfBareFiles(std::size_t count) {
  const Scratch directory;
  return secondsOf([&] {
    for (std::size_t number = 0; number < count; ++number) {
      writeAndRename(directory.path(), number, usualRecordBytes());
    }
  });
}

void addEnding(Figures& figures, const std::string& collector, Behaviour behaviour, std::size_t count) {
  for (const std::string way : {"terminate", "return"}) {
    Ending ending;
    for (int round = 0; round < kRounds; ++round) {
      endOnce(ending, behaviour, count, way);
    }
    const std::string what = (way == "terminate" ? "willTerminate, " : "return from main, ") + std::to_string(count) +
                             " posted, collector " + collector;
    figures.add(Figure(what, median(ending.times) * 1e3, "ms")
                    .compared("as many bare files", secondsOfBareFiles(count) * 1e3)
                    .atMost(50.0));
    figures.add(Figure(what + ": until the process is gone", median(ending.gone) * 1e3, "ms"));
    figures.add(Figure(what + ": lost", static_cast<double>(ending.lost), "records").atMost(0.0));
  }
}

std::string writeBody(const Scratch& directory, const std::string& body) {
  std::ofstream(directory / "body") << body;
  return directory / "body";
}

/// Seconds from the start of a program to the arrival of the last record.
double secondsToLast(const Collector& collector, const std::string& program, std::vector<std::string> arguments) {
  const ChildResult result = runOwn(program, std::move(arguments));
  return collector.lastAcceptedAt() - result.startedAt;
}

void addRestart(Figures& figures, bool isLogged) {
  const std::string count = std::to_string(kMany);
  std::vector<double> library;
  std::vector<double> bare;
  std::size_t missing = 0;
  for (int round = 0; round < kRounds; ++round) {
    const Collector nobody(Behaviour::Refuse);
    const Collector collector(Behaviour::Accept);
    const Scratch home;
    if (isLogged) {
      runOwn("post-and-end", {home.path(), nobody.url(), count, "kill"});
    } else {
      runOwn("fill-store", {home.path(), count});
    }
    library.push_back(secondsToLast(collector, "deliver-all", {home.path(), collector.url()}));
    for (std::size_t number = 0; number < kMany; ++number) {
      missing += collector.hasAccepted(number) ? 0U : 1U;
    }
    bare.push_back(
        secondsToLast(collector, "send-bare", {collector.url(), writeBody(home, collector.lastBody()), count}));
  }
  const std::string what = std::string("restart with 5,000 ") + (isLogged ? "in the log" : "store files");
  figures.add(Figure(what + ": exec to the last one arrived", median(library) * 1e3, "ms")
                  .compared("bare client", median(bare) * 1e3)
                  .ratioAtMost(1.2));
  figures.add(Figure(what + ": missing", static_cast<double>(missing), "records").atMost(0.0));
}

}  // namespace

int postAndEnd(const std::vector<std::string>& arguments) {
  const std::string& way = arguments.at(3);
  ::alarm(10);  // An end that hangs is a figure, not the end of the table.
  if (way == "return") {
    // Registered before the library registers its own, so it runs after that.
    std::atexit([] { std::printf("%.9f\n", secondsNow()); });
  }
  Session session(arguments.at(0), arguments.at(1), Session::Launch::InitializeOnly);
  const auto count = static_cast<std::size_t>(std::stoul(arguments.at(2)));
  Application::shared().didFinishLaunching();
  if (way != "kill unpumped") {
    session.idle(0.3);
  }
  for (std::size_t number = 0; number < count; ++number) {
    postNumbered(number);
    if (way == "kill" && number % 100 == 99) {
      session.turn(0);
    }
  }
  if (way.starts_with("kill")) {
    ::kill(::getpid(), SIGKILL);
  }
  std::printf("%.9f ", secondsNow());
  if (way == "terminate") {
    Application::shared().willTerminate();
    std::printf("%.9f\n", secondsNow());
  }
  return 0;
}

int deliverAll(const std::vector<std::string>& arguments) {
  Session session(arguments.at(0), arguments.at(1), Session::Launch::InitializeOnly);
  Application::shared().didFinishLaunching();
  session.idle(0.1);  // Until the collector is known to be there.
  session.deliverAll();
  return 0;
}

int postAndWait(const std::vector<std::string>& arguments) {
  Session session(arguments.at(0), arguments.at(1), Session::Launch::InitializeOnly);
  const auto count = static_cast<std::size_t>(std::stoul(arguments.at(2)));
  Application::shared().didFinishLaunching();
  postNumbered(count);
  session.idle(1.0);
  const double before = residentMegabytes();
  const double privateBefore = privateMegabytes();
  double longestPump = 0.0;
  for (std::size_t number = 0; number < count; ++number) {
    postNumbered(number);
    if (number % 100 == 99) {
      longestPump = std::max(longestPump, session.turn(0));
    }
  }
  for (const double end = secondsNow() + 2.0; secondsNow() < end;) {
    longestPump = std::max(longestPump, session.turn(50));
  }
  std::printf("%f %f %f\n", residentMegabytes() - before, privateMegabytes() - privateBefore, longestPump * 1e3);
  std::fflush(stdout);
  ::_exit(0);
}

void measureKill(Figures& figures) {
  const auto add = [&figures](const std::string& what, Behaviour behaviour, const std::string& way) {
    Ending ending;
    for (int round = 0; round < kRounds; ++round) {
      endOnce(ending, behaviour, kFew, way);
    }
    figures.add(
        Figure("kill -9 after 1,000 posts, collector " + what + ": lost", static_cast<double>(ending.lost), "records")
            .atMost(0.0));
    // Those under way at the kill, at most.
    figures.add(Figure("kill -9 after 1,000 posts, collector " + what + ": delivered twice",
                       static_cast<double>(ending.repeated), "records")
                    .atMost(kRounds * 256.0));
  };
  for (const auto& [behaviour, what] : kBehaviours) {
    add(what, behaviour, "kill");
  }
  add("answers 200, host never pumps", Behaviour::Accept, "kill unpumped");
}

void measureExit(Figures& figures) {
  for (const std::size_t count : {kFew, kMany}) {
    for (const auto& [behaviour, what] : kBehaviours) {
      addEnding(figures, what, behaviour, count);
    }
  }
}

void measureAway(Figures& figures) {
  for (const auto& [behaviour, what] : {kBehaviours[1], kBehaviours[2]}) {
    std::vector<double> grown;
    std::vector<double> grownPrivate;
    std::vector<double> pumps;
    for (int round = 0; round < kRounds; ++round) {
      const Collector collector(behaviour);
      const Scratch home;
      const ChildResult result = runOwn("post-and-wait", {home.path(), collector.url(), std::to_string(kMany)});
      std::istringstream numbers(result.output);
      for (std::vector<double>* values : {&grown, &grownPrivate, &pumps}) {
        values->push_back(1e9);
        numbers >> values->back();
      }
    }
    const std::string title = std::string("5,000 wait, collector ") + what;
    figures.add(Figure(title + ": growth of memory (RSS)", median(grown), "MB")
                    .compared("of that private", median(grownPrivate))
                    .atMost(4.0));
    figures.add(Figure(title + ": longest pump", median(pumps), "ms").atMost(2.0));
  }
}

void measureRestart(Figures& figures) {
  addRestart(figures, true);
  addRestart(figures, false);
}

}  // namespace kesu::bench
