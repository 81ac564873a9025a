#include "message_ui/MessageLayout.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

#include "graphics/TextLayout.h"
#include "message_ui/MessageBars.h"
#include "message_ui/MessagePaging.h"
#include "message_ui/UnreadBadge.h"

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

TEST(MessageLayout, PlacesTheTitleOverThePictureAndNeverOutsideOfIt) {
  for (const double imageHeight : {10.0, 60.0, 326.0, 900.0}) {
    const CellFrames frames = cellFrames({imageHeight, 170.0, 50.0, true});
    EXPECT_GE(frames.title.y, 0.0);
    EXPECT_LE(frames.title.bottom(), imageHeight);
    EXPECT_LE(frames.scrim.y, frames.title.y);
    EXPECT_DOUBLE_EQ(frames.scrim.bottom(), imageHeight);
    EXPECT_DOUBLE_EQ(frames.message.y, imageHeight + 24.0);
  }
}

TEST(MessageLayout, ScalesPicturesAndRefusesSizesThatAreNone) {
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

TEST(MessageLayout, MeasuresTexts) {
  EXPECT_EQ(heightForText({}, kMessageFont, 557.0), 0.0);
  EXPECT_EQ(heightForText("text", {}, 557.0), 0.0);
  const double one = heightForText("text", kMessageFont, 557.0);
  EXPECT_EQ(one, std::ceil(heightOfText("text", kMessageFont, 557.0)) + 1.0);
  EXPECT_GT(heightForText("text\ntext", kMessageFont, 557.0), one);
  EXPECT_EQ(titleHeight("A title", kTitleFont), heightForText("A title", kTitleFont, 557.0));
  std::string endless;
  for (int word = 0; word < 200; ++word) {
    endless += "endless ";
  }
  EXPECT_LT(titleHeight(endless, kTitleFont), 6.0 * titleHeight("A title", kTitleFont));
}

TEST(MessageLayout, KeepsTextsLegible) {
  EXPECT_EQ(legibleColor(Color::blueColor(), Color::white()), Color::blueColor());
  EXPECT_TRUE(isLight(Color::white()));
  EXPECT_FALSE(isLight(legibleColor(Color::white(), Color::white())));
  EXPECT_EQ(legibleColor(Color::black(), Color{0.05, 0.05, 0.05, 1.0}), Color::white());
}

Array headers(const std::string& states) {
  Array made;
  for (const char state : states) {
    made.push_back(state == '-' ? Dictionary{{"mid", "m"}} : Dictionary{{"mid", "m"}, {"contentRead", state == 'r'}});
  }
  return made;
}

TEST(MessagePaging, ChoosesTheFirstMessageByItsRule) {
  const std::pair<const char*, int> cases[] = {{"", 0},     {"r", 0},    {"rrr", 0}, {"u", 0},    {"uuu", 0},
                                               {"ruru", 2}, {"rrur", 2}, {"urr", 0}, {"r-r-", 2}, {"rrru", 3}};
  for (const auto& [states, expected] : cases) {
    EXPECT_EQ(firstMessageIndex(headers(states)), expected) << states;
  }
}

TEST(MessagePaging, StopsAtTheEnds) {
  EXPECT_EQ(pagedIndex(kNextTag, 0, 3), 1);
  EXPECT_EQ(pagedIndex(kNextTag, 2, 3), 2);
  EXPECT_EQ(pagedIndex(kNextTag, 0, 0), 0);
  EXPECT_EQ(pagedIndex(kPreviousTag, 2, 3), 1);
  EXPECT_EQ(pagedIndex(kPreviousTag, 0, 3), 0);
  EXPECT_EQ(pagedIndex(5, 2, 3), 1) << "every other tag is previous";
}

TEST(MessageBars, DressButtonsArrowsAndCounterAsAgreed) {
  const Array entry{Value("Watch"), Value("tv://x"), Value("#112233"), Value("#ffeedd")};
  const InAppTemplateData data({{"buttons", Array{Value(entry), Value(entry)}}}, false);
  std::int64_t told = 0;
  MessageBars bars([&](Button& button) { told += button.tag() + 100; }, [&](Button& button) { told += button.tag(); });
  bars.show({&data, 1, 3, Color::white(), Color::redColor(), {}});
  EXPECT_EQ(bars.bottomBarView()->bounds().size(), (Size{580.0, 160.0}));
  EXPECT_EQ(bars.buttonBarView()->bounds().size(), (Size{580.0, 80.0}));
  const auto button = std::dynamic_pointer_cast<KesuCustomBtn>(bars.controlBarView()->subviews().at(1));
  EXPECT_EQ(button->tag(), 1);
  EXPECT_EQ(button->frame(), actionButtonFrames(2, 580.0)[1]);
  EXPECT_EQ(button->font(), (Font{"HelveticaNeue-Light", 30.0}));
  EXPECT_EQ(button->titleColor(), (Color{1.0, 238.0 / 255.0, 221.0 / 255.0, 1.0}));
  button->activate();
  EXPECT_EQ(told, 101);
  for (const auto& [tag, title] : {std::pair(kPreviousTag, "\u276E"), std::pair(kNextTag, "\u276F")}) {
    auto* arrow = dynamic_cast<KesuCustomBtn*>(bars.focusAfter(tag));
    EXPECT_EQ(arrow->title(), title);
    EXPECT_EQ(arrow->tag(), tag);
    EXPECT_EQ(arrow->font(), Font::system(36.0));
    EXPECT_EQ(arrow->titleColor(), Color::redColor());
    EXPECT_EQ(arrow->backgroundImage()->pixels()[0], 0U);
    EXPECT_EQ(arrow->borderColor(), Color::clear());
    for (const KesuCustomBtn* one : {arrow, button.get()}) {
      EXPECT_EQ(one->cornerRadius(), 6.0);
      EXPECT_EQ(one->borderWidth(), 1.0);
      EXPECT_EQ(one->focusedScaleFactor(), 1.2000000476837158) << "set up";
    }
  }
  const auto counter = std::dynamic_pointer_cast<Label>(bars.bottomBarView()->subviews().back()->subviews().front());
  EXPECT_EQ(counter->text(), "Showing 2 of 3 in-app messages");
  EXPECT_EQ(counter->font(), (Font{"HelveticaNeue-Regular", 18.0}));
  EXPECT_EQ(counter->textColor(), Color::redColor());
  EXPECT_EQ(counter->minimumScaleFactor(), 0.85);
  EXPECT_EQ(counter->frame().x, 165.0);
  bars.show({nullptr, 0, 1, Color::white(), {}, {}});
  EXPECT_EQ(counter->text(), "Showing 1 of 1 in-app messages");
  EXPECT_EQ(counter->textColor(), Color::white());
  EXPECT_EQ(bars.controlBarView(), nullptr);
  EXPECT_EQ(bars.buttonBarView()->bounds().height, 0.0);
  EXPECT_EQ(bars.firstFocus(), nullptr) << "no arrow for a single message";
  EXPECT_EQ(imageWithColor({1.0, 0.0, 0.5, 0.5})->pixels()[0], 0x80800040U);
}

TEST(UnreadBadge, LooksAsItAlwaysDid) {
  EXPECT_EQ(unreadBadgeFrame({100.0, 50.0, 40.0, 30.0}), (Rect{127.0, 37.0, 26.0, 26.0}));
  EXPECT_EQ(unreadBadgeFrame({}), (Rect{-13.0, -13.0, 26.0, 26.0}));
  const auto parent = std::make_shared<View>();
  const auto view = std::make_shared<View>(Rect{100.0, 50.0, 40.0, 30.0});
  addUnreadBadge(*view, 3);  // Without a superview nothing happens.
  parent->addSubview(view);
  addUnreadBadge(*view, 0);
  addUnreadBadge(*view, 12);
  ASSERT_EQ(parent->subviews().size(), 3U) << "each call adds another one";
  const auto badge = std::dynamic_pointer_cast<Label>(parent->subviews().back());
  EXPECT_EQ(badge->text(), "12");
  EXPECT_EQ(std::dynamic_pointer_cast<Label>(parent->subviews()[1])->text(), "0");
  EXPECT_EQ(badge->font(), Font::system(14.0));
  EXPECT_EQ(badge->backgroundColor(), Color::redColor());
  EXPECT_EQ(badge->cornerRadius(), 14.0);
  EXPECT_EQ(badge->borderWidth(), 1.0);
  EXPECT_EQ(badge->borderColor(), Color::clear());
  EXPECT_TRUE(badge->clipsToBounds());
  EXPECT_EQ(badge->shadow().opacity, 0.0);
}

}  // namespace
}  // namespace kesu
