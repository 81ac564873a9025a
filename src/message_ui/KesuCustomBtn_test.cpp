#include "message_ui/KesuCustomBtn.h"

#include <gtest/gtest.h>
#include <kesu/ui/Window.h>

#include <memory>

#include "testing/ScopedPlatform.h"
#include "uikit/Animator.h"
#include "uikit/ViewDrawing.h"
#include "uikit/WindowInput.h"

namespace kesu {
namespace {

/// Two buttons in a window, of which the other one is focused, and time in hand.
class FocusButtonTest : public ::testing::Test {
 protected:
  FocusButtonTest() {
    window.makeKeyAndVisible();
    const auto backdrop = std::make_shared<View>(window.bounds());
    backdrop->setModal(true);  // Only what lies in a modal view is ever focused.
    window.addSubview(backdrop);
    for (const auto& one : {button, other}) {
      one->setup();
      one->setClipsToBounds(true);
      backdrop->addSubview(one);
    }
    window.setFocusedView(other.get());
    pass(0.3);
  }
  ~FocusButtonTest() override { Animator::shared().finishAll(); }

  /// Lets animations run for so long; the first tick of each is its beginning.
  void pass(double seconds) {
    Animator::shared().tick(now);
    now += seconds;
    Animator::shared().tick(now);
  }

  void expectNormal() const {
    EXPECT_EQ(button->transform(), Transform{});
    EXPECT_TRUE(button->clipsToBounds());
  }
  void expectFocused() const {
    EXPECT_EQ(button->transform(), Transform::scale(1.2000000476837158));
    EXPECT_FALSE(button->clipsToBounds());
    EXPECT_EQ(button->shadow(), (Shadow{Color::black(), 0.25, 10.0, {0.0, 27.0}}));
  }

  testing::ScopedPlatform platform;
  Window window;
  double now = 10.0;
  std::shared_ptr<KesuCustomBtn> button = std::make_shared<KesuCustomBtn>(Rect{0.0, 0.0, 100.0, 40.0});
  std::shared_ptr<KesuCustomBtn> other = std::make_shared<KesuCustomBtn>(Rect{120.0, 0.0, 100.0, 40.0});
};

TEST_F(FocusButtonTest, HasTheAgreedLooks) {
  EXPECT_EQ(button->animationDuration(), 0.20000000298023224);
  expectNormal();
  window.setFocusedView(button.get());
  expectFocused();
  pass(0.19);
  EXPECT_NE(ViewDrawing::presented(*button).transform, button->transform());
  pass(0.02);
  EXPECT_EQ(ViewDrawing::presented(*button).transform, button->transform());
  window.setFocusedView(other.get());
  expectNormal();
  EXPECT_EQ(button->shadow().opacity, 0.25) << "the shadow stays; clipping hides it";
}

TEST_F(FocusButtonTest, LooksPushedInWhileSelectIsHeld) {
  int activated = 0;
  button->setAction([&](Button&) { ++activated; });
  window.setFocusedView(button.get());
  pass(0.1);  // Also while it still grows.
  WindowInput::of(window).press(RemoteButton::Select, PressPhase::Began);
  pass(0.3);
  EXPECT_EQ(button->transform(), Transform{});
  EXPECT_EQ(button->shadow().offset, (Size{0.0, 10.0}));
  WindowInput::of(window).press(RemoteButton::Select, PressPhase::Cancelled);
  expectFocused();
  EXPECT_EQ(activated, 0);
  WindowInput::of(window).press(RemoteButton::Select, PressPhase::Began);
  WindowInput::of(window).press(RemoteButton::Select, PressPhase::Ended);
  pass(0.3);
  expectFocused();
  EXPECT_EQ(activated, 1);
}

TEST_F(FocusButtonTest, IgnoresPressesWithoutFocus) {
  button->pressesBegan(RemoteButton::Select);
  button->pressesEnded(RemoteButton::Select);
  expectNormal();
  EXPECT_EQ(button->shadow().opacity, 0.0);
}

TEST_F(FocusButtonTest, EndsInTheNormalLookWhenTheFocusLeavesEarly) {
  window.setFocusedView(button.get());
  pass(0.1);
  window.setFocusedView(other.get());
  pass(0.3);
  expectNormal();
  EXPECT_EQ(ViewDrawing::presented(*button).transform, Transform{});
}

TEST_F(FocusButtonTest, KeepsTheFocusedLookWhenItsAnimationIsInterrupted) {
  window.setFocusedView(button.get());
  pass(0.1);
  button->setTransform({});
  button->setShadow({});
  pass(0.3);
  expectFocused();
}

TEST_F(FocusButtonTest, WouldVanishWithoutSetup) {
  const KesuCustomBtn bare;
  EXPECT_EQ(bare.focusedScaleFactor(), 0.0);
  EXPECT_EQ(bare.animationDuration(), 0.0);
}

}  // namespace
}  // namespace kesu
