#include "message_ui/MessageBars.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace kesu {
namespace {

/// Bars of the second of three messages, which has two buttons.
class MessageBarsTest : public ::testing::Test {
 protected:
  MessageBarsTest() { bars.show({&data, 1, 3, Color::white(), Color::redColor(), {}}); }

  std::shared_ptr<KesuCustomBtn> button(std::size_t index) const {
    return std::dynamic_pointer_cast<KesuCustomBtn>(bars.controlBarView()->subviews().at(index));
  }
  KesuCustomBtn* arrow(std::int64_t tag) const { return dynamic_cast<KesuCustomBtn*>(bars.focusAfter(tag)); }
  std::shared_ptr<Label> counter() const {
    return std::dynamic_pointer_cast<Label>(bars.bottomBarView()->subviews().back()->subviews().front());
  }

  static void expectDressed(const KesuCustomBtn& shown) {
    EXPECT_EQ(shown.cornerRadius(), 6.0);
    EXPECT_EQ(shown.borderWidth(), 1.0);
    EXPECT_EQ(shown.focusedScaleFactor(), 1.2000000476837158) << "set up";
  }

  const Array entry{Value("Watch"), Value("tv://x"), Value("#112233"), Value("#ffeedd")};
  const InAppTemplateData data{{{"buttons", Array{Value(entry), Value(entry)}}}, false};
  std::int64_t pressed = 0;
  MessageBars bars{[this](Button& from) { pressed += from.tag() + 100; },
                   [this](Button& from) { pressed += from.tag(); }};
};

TEST_F(MessageBarsTest, DressesActionButtonsAsAgreed) {
  EXPECT_EQ(bars.bottomBarView()->bounds().size(), (Size{580.0, 160.0}));
  EXPECT_EQ(bars.buttonBarView()->bounds().size(), (Size{580.0, 80.0}));
  EXPECT_EQ(button(1)->tag(), 1);
  EXPECT_EQ(button(1)->frame(), actionButtonFrames(2, 580.0)[1]);
  EXPECT_EQ(button(1)->font(), (Font{"HelveticaNeue-Light", 30.0}));
  EXPECT_EQ(button(1)->titleColor(), (Color{1.0, 238.0 / 255.0, 221.0 / 255.0, 1.0}));
  expectDressed(*button(1));
  button(1)->activate();
  EXPECT_EQ(pressed, 101);
}

TEST_F(MessageBarsTest, DressesArrowsAsAgreed) {
  for (const auto& [tag, title] : {std::pair(kPreviousTag, "\u276E"), std::pair(kNextTag, "\u276F")}) {
    EXPECT_EQ(arrow(tag)->title(), title);
    EXPECT_EQ(arrow(tag)->tag(), tag);
    EXPECT_EQ(arrow(tag)->font(), Font::system(36.0));
    EXPECT_EQ(arrow(tag)->titleColor(), Color::redColor());
    EXPECT_EQ(arrow(tag)->backgroundImage()->pixels()[0], 0U);
    EXPECT_EQ(arrow(tag)->borderColor(), Color::clear());
    expectDressed(*arrow(tag));
  }
}

TEST_F(MessageBarsTest, ShowsNeitherButtonsNorArrowsForASingleMessage) {
  bars.show({nullptr, 0, 1, Color::white(), {}, {}});
  EXPECT_EQ(counter()->text(), "Showing 1 of 1 in-app messages");
  EXPECT_EQ(counter()->textColor(), Color::white());
  EXPECT_EQ(bars.controlBarView(), nullptr);
  EXPECT_EQ(bars.buttonBarView()->bounds().height, 0.0);
  EXPECT_EQ(bars.firstFocus(), nullptr);
}

TEST(ImageWithColor, IsOnePremultipliedPixel) {
  EXPECT_EQ(imageWithColor({1.0, 0.0, 0.5, 0.5})->pixels()[0], 0x80800040U);
}

}  // namespace
}  // namespace kesu
