#include "lifecycle/Location.h"

#include <gtest/gtest.h>

#include "testing/ScopedPlatform.h"

namespace kesu {
namespace {

struct CountingManager : LocationManager {
  explicit CountingManager(int& calls) : calls_(calls) {}
  void stopUpdatingLocation() override { ++calls_; }
  void clearDelegate() override { ++calls_; }
  int& calls_;
};

class LocationTest : public ::testing::Test {
 protected:
  testing::ScopedPlatform platform;
  Location location{platform.mainLoop};
};

TEST_F(LocationTest, DestroysItsManagerAfterAnUpdate) {
  int calls = 0;
  location.setManager(std::make_unique<CountingManager>(calls));
  location.didUpdateLocations({});
  EXPECT_FALSE(location.fetched());
  EXPECT_EQ(calls, 0);
  location.didUpdateLocations({{-1.0, 2.0, 3.0}});
  location.stopUpdatingLocation();
  EXPECT_EQ(calls, 2);
}

}  // namespace
}  // namespace kesu
