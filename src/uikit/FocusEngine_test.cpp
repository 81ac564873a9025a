#include "uikit/FocusEngine.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace kesu {
namespace {

using Rects = std::vector<Rect>;

constexpr int kNone = -1;

int moved(const Rects& frames, std::size_t from, RemoteButton arrow) {
  const auto to = focusGraph(frames)[from][static_cast<std::size_t>(arrow)];
  return to ? static_cast<int>(*to) : kNone;
}

std::size_t countReachable(const std::vector<FocusMoves>& graph, std::size_t start) {
  std::vector<std::size_t> seen{start};
  for (std::size_t next = 0; next < seen.size(); ++next) {
    for (const auto& to : graph[seen[next]]) {
      if (to && std::ranges::find(seen, *to) == seen.end()) {
        seen.push_back(*to);
      }
    }
  }
  return seen.size();
}

::testing::AssertionResult isConnected(const Rects& frames) {
  const std::vector<FocusMoves> graph = focusGraph(frames);
  for (std::size_t start = 0; start < frames.size(); ++start) {
    if (const std::size_t reached = countReachable(graph, start); reached != frames.size()) {
      return ::testing::AssertionFailure() << "from " << start << " only " << reached << " of " << frames.size();
    }
  }
  return ::testing::AssertionSuccess();
}

TEST(FocusEngineTest, MovesAsTheEyeExpects) {
  // A text over three buttons over two paging arrows, as in the popup.
  const Rects popup = {{0.0, 0.0, 580.0, 600.0},    {8.0, 610.0, 182.0, 74.0}, {198.0, 610.0, 182.0, 74.0},
                       {388.0, 610.0, 184.0, 74.0}, {8.0, 700.0, 60.0, 60.0},  {512.0, 700.0, 60.0, 60.0}};
  // A shelf: a tile far to the right, and one nearer but aside.
  const Rects shelf = {{0.0, 0.0, 100.0, 100.0}, {600.0, 20.0, 100.0, 100.0}, {250.0, 140.0, 100.0, 100.0}};
  struct Case {
    const char* what;
    const Rects& frames;
    std::size_t from;
    RemoteButton arrow;
    int to;
  };
  const std::vector<Case> cases = {
      {"text down to the middle", popup, 0, RemoteButton::Down, 2},
      {"text not aside", popup, 0, RemoteButton::Right, kNone},
      {"text not up", popup, 0, RemoteButton::Up, kNone},
      {"along the row", popup, 1, RemoteButton::Right, 2},
      {"back along the row", popup, 3, RemoteButton::Left, 2},
      {"not over the row's end", popup, 3, RemoteButton::Right, kNone},
      {"from the row to the text", popup, 2, RemoteButton::Up, 0},
      {"down to the arrow below", popup, 1, RemoteButton::Down, 4},
      {"down to the other arrow", popup, 3, RemoteButton::Down, 5},
      {"over the gap", popup, 4, RemoteButton::Right, 5},
      {"up again", popup, 5, RemoteButton::Up, 3},
      {"straight before near", shelf, 0, RemoteButton::Right, 1},
      {"within 45 degrees", shelf, 2, RemoteButton::Right, 1},
  };
  for (const Case& one : cases) {
    EXPECT_EQ(moved(one.frames, one.from, one.arrow), one.to) << one.what;
  }
  EXPECT_TRUE(isConnected(popup));
  EXPECT_TRUE(isConnected(shelf));
}

TEST(FocusEngineTest, GoesFurtherAsideBeforeAnythingIsLost) {
  // The second item is nearest to none, and too far aside of the first one.
  const Rects aside = {{50.0, 60.0, 30.0, 110.0}, {110.0, 0.0, 150.0, 110.0}, {80.0, 160.0, 150.0, 110.0}};
  EXPECT_TRUE(isConnected(aside));
  EXPECT_EQ(moved(aside, 2, RemoteButton::Right), kNone) << "but no further than needed";
  const Rects hidden = {{140.0, 90.0, 140.0, 80.0}, {160.0, 180.0, 10.0, 60.0}, {120.0, 170.0, 20.0, 100.0}};
  EXPECT_TRUE(isConnected(hidden)) << "an arrow leaves its nearest aim for one that nothing else leads to";
  const Rects overlapping(5, {3.0, 3.0, 50.0, 50.0});
  EXPECT_TRUE(isConnected(overlapping)) << "even what lies in one place";
  const Rects empty(3, Rect{});
  EXPECT_TRUE(isConnected(empty));
  EXPECT_TRUE(focusGraph({}).empty());
  EXPECT_EQ(moved({{0.0, 0.0, 10.0, 10.0}}, 0, RemoteButton::Up), kNone);
}

/// Rectangles that do not overlap, of any size, some in rows.
Rects randomLayout(std::mt19937& random) {
  Rects frames;
  const int wanted = std::uniform_int_distribution(2, 24)(random);
  const int grid = std::uniform_int_distribution(1, 60)(random);
  for (int tries = 0; tries < 300 && static_cast<int>(frames.size()) < wanted; ++tries) {
    const auto number = [&](int most) { return std::uniform_int_distribution(0, most)(random) / grid * grid; };
    const Rect frame{static_cast<double>(number(1800)), static_cast<double>(number(1000)),
                     static_cast<double>(number(400) + 1), static_cast<double>(number(200) + 1)};
    if (std::ranges::none_of(frames, [&](const Rect& other) { return !frame.intersected(other).isEmpty(); })) {
      frames.push_back(frame);
    }
  }
  return frames;
}

TEST(FocusEngineTest, ReachesEverythingFromEverythingInAnyLayout) {
  std::mt19937 random(20210417);
  for (int layout = 0; layout < 1500; ++layout) {
    const Rects frames = randomLayout(random);
    ASSERT_TRUE(isConnected(frames)) << "layout " << layout;
  }
}

TEST(FocusEngineTest, NeverLeadsBackwards) {
  std::mt19937 random(7);
  for (int layout = 0; layout < 300; ++layout) {
    const Rects frames = randomLayout(random);
    const std::vector<FocusMoves> graph = focusGraph(frames);
    for (std::size_t from = 0; from < frames.size(); ++from) {
      const auto difference = [&](RemoteButton arrow, double Point::*axis) {
        const auto to = graph[from][static_cast<std::size_t>(arrow)];
        return to ? frames[*to].center().*axis - frames[from].center().*axis : 0.0;
      };
      ASSERT_GE(difference(RemoteButton::Right, &Point::x), 0.0);
      ASSERT_LE(difference(RemoteButton::Left, &Point::x), 0.0);
      ASSERT_GE(difference(RemoteButton::Down, &Point::y), 0.0);
      ASSERT_LE(difference(RemoteButton::Up, &Point::y), 0.0);
    }
  }
}

TEST(FocusEngineTest, ReadsRowsFromTheLeft) {
  const Rects frames = {
      {300.0, 5.0, 50.0, 40.0}, {0.0, 100.0, 50.0, 40.0}, {10.0, 0.0, 50.0, 40.0}, {90.0, 95.0, 50.0, 40.0}};
  EXPECT_EQ(readingOrder(frames), (std::vector<std::size_t>{2, 0, 1, 3}));
  EXPECT_EQ(nearestInReadingOrder(frames, {150.0, 100.0, 50.0, 40.0}), 3u) << "nothing comes after it";
  EXPECT_EQ(nearestInReadingOrder(frames, {0.0, -90.0, 50.0, 40.0}), 2u) << "nothing comes before it";
  EXPECT_EQ(nearestInReadingOrder(frames, {240.0, 5.0, 50.0, 40.0}), 0u) << "the nearer one";
  EXPECT_EQ(nearestInReadingOrder({}, {}), std::nullopt);
}

}  // namespace
}  // namespace kesu
