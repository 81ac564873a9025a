#include "platform/linux/LinuxRandom.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <set>
#include <thread>
#include <vector>

#include "testing/ChildProcess.h"

namespace kesu {
namespace {

using Identifier = std::array<std::uint8_t, 16>;

std::vector<Identifier> identifiers(Random& random, int count) {
  std::vector<Identifier> all(static_cast<std::size_t>(count));
  for (Identifier& identifier : all) {
    random.fill(identifier);
  }
  return all;
}

TEST(LinuxRandom, FillsEveryByteOfEveryRequest) {
  LinuxRandom random;
  for (const std::size_t size : {0U, 1U, 5U, 16U, 31U, 32U, 33U, 512U, 1000U}) {
    std::vector<bool> wasSet(size);
    for (int round = 0; round < 64; ++round) {
      std::vector<std::uint8_t> bytes(size + 1, 0);
      random.fill(std::span(bytes).first(size));
      EXPECT_EQ(bytes[size], 0) << "one byte too many";
      for (std::size_t i = 0; i < size; ++i) {
        wasSet[i] = wasSet[i] || bytes[i] != 0;
      }
    }
    EXPECT_EQ(std::count(wasSet.begin(), wasSet.end(), false), 0) << size;
  }
}

TEST(LinuxRandom, ThreadsNeverGetTheSameIdentifier) {
  LinuxRandom random;
  std::vector<std::vector<Identifier>> drawn(4);
  std::vector<std::thread> threads;
  for (auto& list : drawn) {
    threads.emplace_back([&random, &list] { list = identifiers(random, 2000); });
  }
  std::set<Identifier> all;
  for (std::size_t i = 0; i < threads.size(); ++i) {
    threads[i].join();
    all.insert(drawn[i].begin(), drawn[i].end());
  }
  EXPECT_EQ(all.size(), 8000U);
}

TEST(LinuxRandom, AForkedChildDrawsItsOwn) {
  LinuxRandom random;
  std::vector<Identifier> mine = identifiers(random, 1);
  int ends[2];
  ASSERT_EQ(::pipe(ends), 0);
  const auto status = testing::runInChild([&] {
    const std::vector<Identifier> theirs = identifiers(random, 40);
    const ssize_t size = static_cast<ssize_t>(theirs.size() * sizeof(Identifier));
    return ::write(ends[1], theirs.data(), static_cast<std::size_t>(size)) == size ? 0 : 1;
  });
  ASSERT_EQ(status, 0);
  std::vector<Identifier> theirs(40);
  EXPECT_EQ(::read(ends[0], theirs.data(), 640), 640);
  const auto later = identifiers(random, 40);
  std::set<Identifier> all(theirs.begin(), theirs.end());
  all.insert(mine.begin(), mine.end());
  all.insert(later.begin(), later.end());
  EXPECT_EQ(all.size(), 81U);
  ::close(ends[0]);
  ::close(ends[1]);
}

}  // namespace
}  // namespace kesu
