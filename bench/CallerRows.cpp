// What the library costs the thread that calls it, and what a record costs the worker.
#include <fcntl.h>
#include <kesu.h>
#include <rapidjson/document.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>
#include <sqlite3.h>
#include <unistd.h>

#include "Allocations.h"
#include "Collector.h"
#include "Rows.h"
#include "Scratch.h"
#include "Session.h"
#include "Stopwatch.h"
#include "outbox/OutboxEntry.h"
#include "support/KesuPriorityLogger.h"

namespace kesu::bench {
namespace {

constexpr double kMicro = 1e6;
constexpr double kNano = 1e9;
constexpr std::size_t kWindow = 1000;
constexpr std::size_t kPosts = 100'000;

// A host posts in bursts and pumps in between.
constexpr std::size_t kBurst = 100;
constexpr std::size_t kMostPending = 50;

[[gnu::noinline]] void copyAttributes(const Object& name, const Attributes& attributes) {
  const Object nameCopy = name;
  const Attributes copy = attributes;
  keep(nameCopy);
  keep(copy);
}

/// The seconds of each of many calls, and of copying the attributes beside each of them; the allocations of all calls.
struct PostTimes {
  std::vector<double> posts;
  std::vector<double> copies;
  std::size_t allocations = 0;
};

/// Posts in a row, with one turn of the host's loop per burst.
PostTimes timePosts(Session& session, std::size_t count) {
  PostTimes times;
  times.posts.reserve(count);
  times.copies.reserve(count);
  const Object name = kEventName;
  for (std::size_t number = 0; number < count; ++number) {
    const Attributes attributes = fiveAttributes(number);
    times.copies.push_back(secondsOf([&] { copyAttributes(name, attributes); }));
    const std::size_t before = allocationsOfThisThread();
    times.posts.push_back(secondsOf([&] { KesuCustomEvent::postWithEventName(name, attributes); }));
    times.allocations += allocationsOfThisThread() - before;
    if (number % kBurst == kBurst - 1) {
      session.turn(0);
    }
  }
  session.settle();
  return times;
}

/// About what the log keeps of such an event.
std::string loggedBytes(std::size_t number) {
  PendingRecord frame;
  frame.kind = RecordKind::Table;
  std::string bytes;
  appendChanges(bytes, {});
  Dictionary entries = fiveAttributes(number);
  entries.set("en", kEventName);
  appendRecord(bytes, frame, entries);
  return bytes;
}

/// The seconds of each insert of one row into a database with a write-ahead log.
std::vector<double> timeInserts(const std::string& file, const std::string& synchronous, std::size_t count) {
  sqlite3* database = nullptr;
  sqlite3_stmt* insert = nullptr;
  const std::string setUp =
      "PRAGMA journal_mode=WAL; PRAGMA synchronous=" + synchronous + "; CREATE TABLE records (bytes BLOB)";
  std::vector<double> times;
  if (sqlite3_open(file.c_str(), &database) == SQLITE_OK &&
      sqlite3_exec(database, setUp.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK &&
      sqlite3_prepare_v2(database, "INSERT INTO records VALUES (?)", -1, &insert, nullptr) == SQLITE_OK) {
    for (std::size_t number = 0; number < count; ++number) {
      const std::string bytes = loggedBytes(number);
      times.push_back(secondsOf([&] {
        sqlite3_bind_blob(insert, 1, bytes.data(), static_cast<int>(bytes.size()), nullptr);
        sqlite3_step(insert);
        sqlite3_reset(insert);
      }));
    }
  }
  sqlite3_finalize(insert);
  sqlite3_close(database);
  return times;
}

std::vector<double> timeAppends(const std::string& file, std::size_t count) {
  const int fd = ::open(file.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
  std::vector<double> times;
  for (std::size_t number = 0; number < count; ++number) {
    const std::string bytes = loggedBytes(number);
    ssize_t written = 0;
    times.push_back(secondsOf([&] { written = ::write(fd, bytes.data(), bytes.size()); }));
    keep(written);
  }
  ::close(fd);
  return times;
}

/// Returns the median and the 99th percentile beside those of a peer.
std::pair<Figure, Figure> postFigures(const std::vector<double>& posts, const std::string& peer,
                                      const std::vector<double>& others) {
  Figure usual("post an event, p50", median(posts) * kMicro, "µs");
  Figure late("post an event, p99", quantile(posts, 0.99) * kMicro, "µs");
  return {usual.compared(peer, median(others) * kMicro), late.compared(peer, quantile(others, 0.99) * kMicro)};
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
  const PostTimes times = timePosts(session, kPosts);
  auto [usual, late] = postFigures(times.posts, "copy of attributes", times.copies);
  figures.add(usual.atMost(1.0));
  figures.add(late.atMost(10.0));
  const std::pair<const char*, std::vector<double>> peers[] = {
      {"write(2)", timeAppends(home / "append", kPosts)},
      {"SQLite, WAL, OFF", timeInserts(home / "off.db", "OFF", kPosts)},
      {"SQLite, WAL, NORMAL", timeInserts(home / "normal.db", "NORMAL", kPosts)}};
  for (const auto& [peer, peerTimes] : peers) {
    const auto beside = postFigures(times.posts, peer, peerTimes);
    figures.add(beside.first);
    figures.add(beside.second);
  }
  figures.add(Figure("post an event, longest", quantile(times.posts, 1.0) * kMicro, "µs"));
  addFlatness(figures, "the last 1,000 of 100,000 events, p50", times.posts);
  figures.add(Figure("allocations of a post", static_cast<double>(times.allocations) / kPosts, "times").atMost(0.1));
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
