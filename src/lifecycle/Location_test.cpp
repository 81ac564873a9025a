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

TEST_F(LocationTest, KeepsTheLastPositionWithoutItsSigns) {
  location.didUpdateLocations({{1.0, 2.0, 3.0}, {-52.5, -13.25, -7.0}});
  const auto position = location.fetched();
  ASSERT_TRUE(position);
  EXPECT_EQ(position->latitude, 52.5);
  EXPECT_EQ(position->longitude, 13.25);
  EXPECT_EQ(position->altitude, 7.0);
}

}  // namespace
}  // namespace kesu
