#include "message_ui/MessageLayout.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

namespace kesu {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

TEST(MessageLayout, AddsUpTheHeightOfAMessage) {
  struct Case {
    MessageMeasures measures;
    double expected;
  };
  const Case cases[] = {{{0.0, {}, {}, false}, 0 + 8 + 8 + 24 + 8},
                        {{326.25, 42.0, 120.0, false}, 326.25 + 8 + (120 + 8) + (42 + 8 + 8) + 8},
                        {{326.25, 42.0, 120.0, true}, 326.25 + 8 + (120 + 8) + 24 + 8},
                        {{60.0, 42.0, 120.0, true}, 60 + 8 + (120 + 8) + (42 + 8 + 8) + 8},
                        {{0.0, 42.0, 120.0, true}, 0 + 8 + (120 + 8) + (42 + 8 + 8) + 8},
                        {{0.0, 42.0, {}, false}, 0 + 8 + 8 + (42 + 8 + 8) + 8},
                        {{0.0, {}, 120.0, false}, 0 + 8 + (120 + 8) + 24 + 8}};
  for (const Case& one : cases) {
    EXPECT_DOUBLE_EQ(calculateContentHeight(one.measures), one.expected);
    const CellFrames frames = cellFrames(one.measures);
    EXPECT_DOUBLE_EQ(frames.height, one.expected);
    const Rect last = frames.message.isEmpty() ? frames.title : frames.message;
    EXPECT_LE(last.bottom() + 16.0, frames.height) << "room under the last part";
    EXPECT_DOUBLE_EQ(frames.message.x * 2 + (frames.message.isEmpty() ? 580.0 : 557.0), 580.0);
  }
}

TEST(MessageLayout, KeepsVisibleAndVirtualHeights) {
  EXPECT_DOUBLE_EQ(calculateVisibleHeight(1080.0, false), 1080.0 * 0.89999997615814209 - 80.0);
  EXPECT_DOUBLE_EQ(calculateVisibleHeight(1080.0, true), 1080.0 * 0.89999997615814209 - 160.0);
  EXPECT_DOUBLE_EQ(virtualHeight(500.0, 892.0), 500.0);
  EXPECT_DOUBLE_EQ(virtualHeight(2000.0, 892.0), 892.0);
}

TEST(MessageLayout, PlacesTheTitleOverThePictureThatHasRoomForIt) {
  for (const double imageHeight : {10.0, 60.0, 190.0, 194.0, 326.0, 900.0}) {
    const CellFrames frames = cellFrames({imageHeight, 170.0, 50.0, true});
    EXPECT_EQ(frames.title.height, 170.0) << "whole";
    if (imageHeight < 194.0) {
      EXPECT_GE(frames.title.y, imageHeight);
      EXPECT_TRUE(frames.scrim.isEmpty());
      continue;
    }
    EXPECT_GE(frames.title.y, 0.0);
    EXPECT_LE(frames.title.bottom(), imageHeight);
    EXPECT_LE(frames.scrim.y, frames.title.y);
    EXPECT_DOUBLE_EQ(frames.scrim.bottom(), imageHeight);
    EXPECT_DOUBLE_EQ(frames.message.y, imageHeight + 24.0);
  }
}

TEST(MessageLayout, ScalesPicturesAndRefusesImpossibleSizes) {
  EXPECT_EQ(clippedSizeFromImageSize({1160.0, 600.0}, 580.0), (Size{580.0, 300.0}));
  EXPECT_EQ(clippedSizeFromImageSize({290.0, 100.0}, 580.0), (Size{580.0, 200.0}));
  for (const Size none : {Size{0.0, 100.0}, Size{-5.0, 100.0}, Size{100.0, 0.0}, Size{100.0, -1.0}, Size{kNaN, 100.0},
                          Size{100.0, kNaN}, Size{100.0, kInfinity}, Size{kInfinity, 100.0}}) {
    EXPECT_EQ(clippedSizeFromImageSize(none, 580.0), Size{});
  }
  const double hostile = clippedSizeFromImageSize({1.0, 9e18}, 580.0).height;
  EXPECT_GT(hostile, 1080.0);
  EXPECT_LE(hostile, 20000.0);
}

TEST(MessageLayout, SharesTheBarAmongButtons) {
  for (const std::size_t count : {1U, 2U, 3U, 5U, 20U}) {
    const auto frames = actionButtonFrames(count, 580.0);
    ASSERT_EQ(frames.size(), count);
    const double number = static_cast<double>(count);
    const double width = (580.0 - (number + 1.0) * 8.0) / number;
    for (std::size_t i = 0; i < count; ++i) {
      const double index = static_cast<double>(i);
      EXPECT_EQ(frames[i], (Rect{(index + 1.0) * 8.0 + index * width, 2.0, width, 74.0}));
      const double shown = actionTitleWidth(frames[i], 580.0, 1.2) * 1.2;
      EXPECT_GE(frames[i].center().x - shown / 2.0, 0.0) << "no title is cut while focused";
      EXPECT_LE(frames[i].center().x + shown / 2.0, 580.0);
    }
    EXPECT_NEAR(frames.back().right(), 572.0, 1e-9);
  }
  EXPECT_TRUE(actionButtonFrames(0, 580.0).empty());
  EXPECT_EQ(actionButtonFrames(200, 580.0).size(), kMostActionButtons);
  EXPECT_GT(actionButtonFrames(200, 580.0).front().width, 0.0);
  EXPECT_EQ(actionButtonFrames(3, 0.0).front().width, 0.0);
}

TEST(MessageLayout, PlacesThePagingBar) {
  const PagingFrames frames = pagingFrames(580.0);
  EXPECT_DOUBLE_EQ(frames.label.x, 290.0 - 125.0);
  EXPECT_DOUBLE_EQ(frames.label.height, 40.0);
  EXPECT_LT(frames.previous.right(), frames.label.x);
  EXPECT_GT(frames.next.x, frames.label.right());
  EXPECT_DOUBLE_EQ(frames.previous.x, 580.0 - frames.next.right());
}

TEST(MessageLayout, KnowsWhatTheCardCutsOffAButton) {
  EXPECT_EQ(uncutPart({8.0, 2.0, 564.0, 74.0}, 580.0, 1.25), (Rect{50.0, 0.0, 464.0, 74.0})) << "at both ends";
  EXPECT_EQ(uncutPart({0.0, 2.0, 200.0, 74.0}, 580.0, 1.25), (Rect{20.0, 0.0, 180.0, 74.0})) << "at the left one";
  EXPECT_EQ(uncutPart({190.0, 2.0, 200.0, 74.0}, 580.0, 1.25), (Rect{0.0, 0.0, 200.0, 74.0})) << "nothing";
}

TEST(MessageLayout, KeepsTextsLegible) {
  EXPECT_EQ(legibleColor(Color::blueColor(), Color::white()), Color::blueColor());
  EXPECT_TRUE(isLight(Color::white()));
  EXPECT_FALSE(isLight(legibleColor(Color::white(), Color::white())));
  EXPECT_EQ(legibleColor(Color::black(), Color{0.05, 0.05, 0.05, 1.0}), Color::white());
  EXPECT_EQ(legibleBackground({}, {}), Color::white());
  EXPECT_EQ(legibleBackground(Color::black(), {}), Color::white());
  EXPECT_EQ(legibleBackground(Color::black(), Color::white()), Color::white()) << "no better on dark";
  EXPECT_FALSE(isLight(legibleBackground({}, Color::white())));
}

}  // namespace
}  // namespace kesu
