#include "foundation/SharedInstance.h"

#include <gtest/gtest.h>

#include <thread>

namespace kesu {
namespace {

using Ends = std::vector<std::string>;

struct Inner {
  explicit Inner(Ends& list) : ends(list) {}
  ~Inner() { ends.push_back("inner"); }
  Ends& ends;
};

struct Outer {
  explicit Outer(Inner& used) : inner(used) {}
  ~Outer() { inner.ends.push_back("outer"); }
  Inner& inner;
};

class SharedInstanceTest : public ::testing::Test {
 protected:
  SharedInstanceTest() { resetSharedInstances(); }
  ~SharedInstanceTest() override { resetSharedInstances(); }

  Inner& inner() {
    return SharedInstance<Inner>::get([this] { return std::make_unique<Inner>(ends_); });
  }
  Outer& outer() {
    return SharedInstance<Outer>::get([this] {
      ++made_;
      return std::make_unique<Outer>(inner());
    });
  }

  Ends ends_;
  int made_ = 0;
};

TEST_F(SharedInstanceTest, MakesOneInstanceOnFirstUse) {
  Outer& first = outer();
  EXPECT_EQ(&outer(), &first);
  EXPECT_EQ(made_, 1);
  EXPECT_EQ(&first.inner, &inner());
}

TEST_F(SharedInstanceTest, ResetDestroysNewestFirstAndAllowsFreshOnes) {
  outer();
  resetSharedInstances();
  EXPECT_EQ(ends_, (Ends{"outer", "inner"}));
  outer();
  EXPECT_EQ(made_, 2);
  resetSharedInstances();
  EXPECT_EQ(ends_.size(), 4u);
}

TEST_F(SharedInstanceTest, ThreadsThatAskTogetherGetTheSame) {
  std::atomic<int> made{0};
  std::vector<int*> got(8, nullptr);
  std::vector<std::thread> threads;
  for (int*& slot : got) {
    threads.emplace_back(
        [&slot, &made] { slot = &SharedInstance<int>::get([&made] { return std::make_unique<int>(++made); }); });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  EXPECT_EQ(made, 1);
  EXPECT_EQ(got, std::vector<int*>(8, &SharedInstance<int>::get()));
}

}  // namespace
}  // namespace kesu
