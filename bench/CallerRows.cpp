// What the library costs the thread that calls it, and what a record costs the worker.
#include <kesu.h>
#include <rapidjson/document.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include "Collector.h"
#include "Rows.h"
#include "Scratch.h"
#include "Session.h"
#include "Stopwatch.h"
#include "support/KesuPriorityLogger.h"

namespace kesu::bench {
namespace {

constexpr double kMicro = 1e6;
constexpr double kNano = 1e9;
constexpr std::size_t kWindow = 1000;

// A host posts in bursts and pumps in between.
constexpr std::size_t kBurst = 100;
constexpr std::size_t kMostPending = 50;

[[gnu::noinline]] void copyAttributes(const Object& name, const Attributes& attributes) {
  const Object nameCopy = name;
  const Attributes copy = attributes;
  keep(nameCopy);
  keep(copy);
}

/// The seconds of each of many calls, and of copying the attributes beside each of them.
struct PostTimes {
  std::vector<double> posts;
  std::vector<double> copies;
};

PostTimes timePosts(Session& session, std::size_t count) {
  PostTimes times;
  times.posts.reserve(count);
  times.copies.reserve(count);
  const Object name = kEventName;
  for (std::size_t number = 0; number < count; ++number) {
    const Attributes attributes = fiveAttributes(number);
    times.copies.push_back(secondsOf([&] { copyAttributes(name, attributes); }));
    times.posts.push_back(secondsOf([&] { KesuCustomEvent::postWithEventName(name, attributes); }));
    if (number % kBurst == kBurst - 1) {
      session.settle(kMostPending);
    }
  }
  session.settle();
  return times;
}

void addPostWindow(Figures& figures, const PostTimes& times, std::size_t last, std::size_t count, const char* label) {
  const auto posts = window(times.posts, last - count, count);
  const auto copies = window(times.copies, last - count, count);
  const std::string what = std::string("post an event, ") + label;
  figures.add(Figure(what + ", p50", median(posts) * kMicro, "µs")
                  .compared("copy of attributes", median(copies) * kMicro)
                  .atMost(10.0));
  figures.add(Figure(what + ", p99", quantile(posts, 0.99) * kMicro, "µs")
                  .compared("copy of attributes", quantile(copies, 0.99) * kMicro)
                  .atMost(40.0));
}

/// The last thousand against the first.
void addFlatness(Figures& figures, const std::string& what, const std::vector<double>& samples) {
  figures.add(Figure(what, median(window(samples, samples.size() - kWindow, kWindow)) * kMicro, "µs")
                  .compared("first 1,000", median(window(samples, 0, kWindow)) * kMicro)
                  .ratioAtMost(1.2));
}

double secondsOfRapidJson(const std::string& body) {
  rapidjson::Document document;
  document.Parse(body.c_str());
  constexpr int kRounds = 10'000;
  return secondsOf([&] {
           for (int round = 0; round < kRounds; ++round) {
             rapidjson::StringBuffer text;
             rapidjson::Writer<rapidjson::StringBuffer> writer(text);
             document.Accept(writer);
             keep(text);
           }
         }) /
         kRounds;
}

}  // namespace

void measurePosting(Figures& figures) {
  const Collector collector(Behaviour::Accept);
  const Scratch home;
  Session session(home.path(), collector.url(), Session::Launch::Full);
  const PostTimes times = timePosts(session, 100'000);
  addPostWindow(figures, times, kWindow, kWindow, "the first 1,000");
  addPostWindow(figures, times, 10'000, 5'000, "the 5,000 before the 10,000th");
  addPostWindow(figures, times, 100'000, 10'000, "the 10,000 before the 100,000th");
  addFlatness(figures, "the last 1,000 of 100,000 events, p50", times.posts);
}

void measureRecordRoad(Figures& figures) {
  constexpr std::size_t kRecords = 5000;
  const Collector collector(Behaviour::Accept);
  const Scratch home;
  Session session(home.path(), collector.url(), Session::Launch::Full);
  timePosts(session, kBurst * 10);
  const double before = workerSeconds(session.platform());
  timePosts(session, kRecords);
  const double each = (workerSeconds(session.platform()) - before) / kRecords;
  figures.add(Figure("worker's processor time per record", each * kMicro, "µs")
                  .compared("RapidJSON writing it", secondsOfRapidJson(collector.lastBody()) * kMicro)
                  .atMost(30.0));
}

void measureScreens(Figures& figures) {
  constexpr std::size_t kScreens = 10'000;
  const Collector collector(Behaviour::Accept);
  const Scratch home;
  Session session(home.path(), collector.url(), Session::Launch::Full);
  std::vector<double> times;
  for (std::size_t number = 0; number < kScreens; ++number) {
    times.push_back(secondsOf([] { screenAppeared("Level select"); }));
    times.push_back(secondsOf([] { screenDisappeared("Level select"); }));
    if (number % kBurst == kBurst - 1) {
      session.settle(kMostPending);
    }
  }
  figures.add(Figure("a screen appears or disappears, p50", median(times) * kMicro, "µs").atMost(50.0));
  figures.add(Figure("a screen appears or disappears, p99", quantile(times, 0.99) * kMicro, "µs"));
  addFlatness(figures, "the last 500 of 10,000 screens, p50", times);
}

void measureLogging(Figures& figures) {
  constexpr int kLines = 100'000'000;
  const double empty = secondsOf([] {
    for (int line = 0; line < kLines; ++line) {
      asm volatile("" : : : "memory");
    }
  });
  const double suppressed = secondsOf([] {
    for (int line = 0; line < kLines; ++line) {
      KESU_LOG(3, "line %d", line);
      asm volatile("" : : : "memory");
    }
  });
  figures.add(Figure("a suppressed log line", (suppressed - empty) / kLines * kNano, "ns")
                  .compared("empty loop", empty / kLines * kNano)
                  .atMost(1.0));
}

}  // namespace kesu::bench
