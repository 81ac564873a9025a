// The store on the real file system, without the network.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>

#include "Rows.h"
#include "Scratch.h"
#include "Session.h"
#include "Stopwatch.h"
#include "StoreFiles.h"
#include "facade/Wiring.h"
#include "foundation/PropertyList.h"

namespace kesu::bench {
namespace {

// Port 9 on loopback: nothing is sent in these rows.
constexpr const char* kNowhere = "http://127.0.0.1:9/";

}  // namespace

void writeAndRename(const std::string& directory, std::size_t number, const std::string& bytes) {
  const std::string name = directory + "/" + std::to_string(number);
  const std::string temporary = name + ".tmp";
  const int fd = ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
  if (::write(fd, bytes.data(), bytes.size()) != static_cast<ssize_t>(bytes.size())) {
    std::perror("write");
  }
  ::close(fd);
  ::rename(temporary.c_str(), name.c_str());
}

const std::string& usualRecordBytes() {
  static const std::string bytes = writePropertyList(usualRecord(0)).value_or("");
  return bytes;
}

int fillStore(const std::vector<std::string>& arguments) {
  const Session session(arguments.at(0), kNowhere, Session::Launch::InitializeOnly);
  const auto count = static_cast<std::size_t>(std::stoul(arguments.at(1)));
  for (std::size_t number = 0; number < count; ++number) {
    if (!wiring().store.add(usualRecord(number))) {
      return 1;
    }
  }
  return 0;
}

void measureStoreWrite(Figures& figures) {
  constexpr std::size_t kWrites = 4000;
  const Scratch home;
  const Session session(home.path(), kNowhere, Session::Launch::InitializeOnly);
  const std::string beside = home.path() + "/Beside";
  ::mkdir(beside.c_str(), 0700);
  std::vector<double> adds;
  std::vector<double> writes;
  for (std::size_t number = 0; number < kWrites; ++number) {
    const Dictionary record = usualRecord(number);
    adds.push_back(secondsOf([&] { wiring().store.add(record); }));
    writes.push_back(secondsOf([&] { writeAndRename(beside, number, usualRecordBytes()); }));
  }
  figures.add(Figure("store a record, p50", median(adds) * 1e6, "µs")
                  .compared("create, write, rename", median(writes) * 1e6)
                  .ratioAtMost(1.5));
  figures.add(Figure("store a record, p99", quantile(adds, 0.99) * 1e6, "µs")
                  .compared("create, write, rename", quantile(writes, 0.99) * 1e6));
}

void measureReadBack(Figures& figures) {
  constexpr int kRounds = 5;
  const Scratch home;
  fillStore({home.path(), "5000"});
  std::vector<double> reads;
  std::size_t count = 0;
  for (int round = 0; round < kRounds; ++round) {
    reads.push_back(secondsOf([&] { count = wiring().store.dictionariesToRepost().size(); }));
  }
  figures.add(Figure("read back 5,000 stored records", quantile(reads, 0.0) * 1e3, "ms").atMost(120.0));
  figures.add(Figure("read back: missing", 5000.0 - static_cast<double>(count), "records").atMost(0.0));
}

}  // namespace kesu::bench
