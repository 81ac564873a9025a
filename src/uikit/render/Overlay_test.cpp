#include <gtest/gtest.h>
#include <kesu/ui/Button.h>
#include <kesu/ui/Overlay.h>
#include <kesu/ui/Window.h>

#include <memory>
#include <optional>

#include "drawing/DrawingModule.h"
#include "testing/FontRelease.h"
#include "testing/ScopedPlatform.h"
#include "uikit/Animator.h"
#include "uikit/KeyWindow.h"

namespace kesu {
namespace {

class OverlayTest : public ::testing::Test {
 protected:
  OverlayTest() {
    overlay_.setNeedsFrameCallback([this] { ++requests_; });
    overlay_.layers(0.0);
    requests_ = 0;
  }
  ~OverlayTest() override { Animator::shared().finishAll(); }

  /// A modal view over all of the screen with a button.
  void showButton() {
    dialog_ = std::make_shared<View>(Rect{0.0, 0.0, 1920.0, 1080.0});
    dialog_->setBackgroundColor(Color::black());
    dialog_->setModal(true);
    button_ = std::make_shared<Button>(Rect{960.0, 540.0, 200.0, 80.0});
    button_->setAction([this](Button&) { ++activations_; });
    dialog_->addSubview(button_);
    keyWindow()->addSubview(dialog_);
  }

  Overlay overlay_;
  ViewPtr dialog_;
  std::shared_ptr<Button> button_;
  int requests_ = 0;
  int activations_ = 0;
};

TEST_F(OverlayTest, MakesAWindowUnlessTheHostHasOne) {
  ASSERT_NE(keyWindow(), nullptr);
  EXPECT_FALSE(overlay_.isModal());
  EXPECT_FALSE(overlay_.press(RemoteButton::Select, PressPhase::Began));
  Window hosts;
  hosts.makeKeyAndVisible();
  showButton();
  EXPECT_TRUE(overlay_.isModal());
  EXPECT_EQ(keyWindow(), &hosts);
}

TEST_F(OverlayTest, ForwardsPressesTapsAndSwipesToTheWindow) {
  showButton();
  overlay_.setPixelSize(1024, 540);
  overlay_.layers(0.1);
  EXPECT_TRUE(overlay_.press(RemoteButton::Select, PressPhase::Began));
  EXPECT_TRUE(overlay_.press(RemoteButton::Select, PressPhase::Ended));
  EXPECT_EQ(activations_, 1);
  // Half a pixel a point, and 64 / 2 pixels more on either side than a screen of 16:9.
  EXPECT_TRUE(overlay_.tap(480.0 + 32.0 + 5.0, 275.0));
  EXPECT_EQ(activations_, 2);
  EXPECT_TRUE(overlay_.tap(480.0 + 32.0 - 5.0, 275.0));
  EXPECT_EQ(activations_, 2);
  EXPECT_TRUE(overlay_.swipe(SwipeDirection::Left));
  EXPECT_FALSE(overlay_.accessibilityTree().empty());
}

TEST_F(OverlayTest, ShowsViewsOnceWhatDrawsThemIsLoaded) {
  static const DrawingSource* linked = nullptr;
  static constexpr DrawingSource kLate{[] { return linked->find(); }, false};
  linked = replaceDrawingSource(&kLate);
  testing::ScopedPlatform platform;
  showButton();
  button_->setTitle("Title");
  EXPECT_TRUE(overlay_.layers(0.1).empty());
  EXPECT_EQ(overlay_.flatten(0.1).pixels[0], 0U);
  EXPECT_TRUE(overlay_.needsFrame());
  platform.imageWorker.runAll();
  EXPECT_TRUE(overlay_.needsFrame());
  EXPECT_EQ(overlay_.flatten(0.2).pixels[0], 0xFF000000U);
  EXPECT_FALSE(overlay_.layers(0.2).empty());
  EXPECT_FALSE(overlay_.needsFrame());
  replaceDrawingSource(linked);
}

TEST_F(OverlayTest, RequestsOneFrameUntilItIsDrawn) {
  EXPECT_FALSE(overlay_.needsFrame());
  showButton();
  EXPECT_TRUE(overlay_.needsFrame());
  button_->setTitle("Title");
  EXPECT_EQ(requests_, 1);
  overlay_.layers(0.1);
  EXPECT_FALSE(overlay_.needsFrame());
  button_->setTitle("Other");
  EXPECT_EQ(requests_, 2);
  overlay_.flatten(0.2);
  EXPECT_FALSE(overlay_.needsFrame());
  overlay_.setPixelSize(1280, 720);
  EXPECT_TRUE(overlay_.needsFrame());
  EXPECT_EQ(requests_, 3);
}

TEST_F(OverlayTest, NeedsFramesWhileAnythingIsMoving) {
  showButton();
  overlay_.layers(0.1);
  bool isFinished = false;
  animate(
      0.3, [&] { dialog_->setAlpha(0.0); }, [&](bool finished) { isFinished = finished; });
  for (double now = 0.1; now < 0.35; now += 0.05) {
    EXPECT_TRUE(overlay_.needsFrame());
    EXPECT_FALSE(isFinished);
    EXPECT_FALSE(overlay_.layers(now).empty());
  }
  EXPECT_TRUE(overlay_.layers(0.5).empty());
  EXPECT_TRUE(isFinished);
  EXPECT_FALSE(overlay_.needsFrame());
}

TEST_F(OverlayTest, TakesSnapshotsWithoutChangingTheNextFrame) {
  showButton();
  overlay_.setPixelSize(192, 108);
  const ImagePtr picture = overlay_.snapshot();
  ASSERT_NE(picture, nullptr);
  EXPECT_EQ(picture->width(), 192);
  EXPECT_EQ(picture->pixels()[0], 0xFF000000U);
  EXPECT_TRUE(overlay_.needsFrame());
  EXPECT_EQ(overlay_.flatten(0.1).damage, (PixelRect{0, 0, 192, 108}));
}

TEST_F(OverlayTest, OutlivesWindowsAndIsOutlivedByThem) {
  {
    Window hosts;
    hosts.makeKeyAndVisible();
    overlay_.layers(0.1);
  }
  EXPECT_TRUE(overlay_.layers(0.2).empty());
  Window longer;
  longer.makeKeyAndVisible();
  int asked = 0;
  {
    Overlay shorter;
    shorter.setNeedsFrameCallback([&] { ++asked; });
    shorter.layers(0.3);
  }
  longer.addSubview(std::make_shared<View>(Rect{0.0, 0.0, 10.0, 10.0}));
  EXPECT_EQ(asked, 0);
}

TEST_F(OverlayTest, DistinguishesWindowsAtTheSameAddress) {
  std::optional<Window> hosts;
  hosts.emplace().makeKeyAndVisible();
  overlay_.layers(0.1);
  requests_ = 0;
  hosts.emplace();
  EXPECT_EQ(requests_, 1) << "its window has gone";
  hosts->makeKeyAndVisible();
  overlay_.layers(0.2);
  hosts->addSubview(std::make_shared<View>(Rect{0.0, 0.0, 10.0, 10.0}));
  EXPECT_EQ(requests_, 2);
  EXPECT_TRUE(overlay_.needsFrame());
}

TEST_F(OverlayTest, RequestsFramesOfAWindowThatTheHostMakesKey) {
  Window hosts;
  hosts.makeKeyAndVisible();
  EXPECT_EQ(requests_, 1);
  overlay_.layers(0.1);
  Window others;
  others.addSubview(std::make_shared<View>(Rect{0.0, 0.0, 10.0, 10.0}));
  others.makeKeyAndVisible();
  EXPECT_EQ(requests_, 2);
}

TEST(OverlayOfItsOwnWindow, MayBeDestroyedByTheHostsFunctionsThatItCalls) {
  auto pressed = std::make_unique<Overlay>();
  const auto button = std::make_shared<Button>(Rect{0.0, 0.0, 200.0, 80.0});
  button->setModal(true);
  int asked = 0;
  button->setAction([&](Button& me) {
    pressed->layers(1.0);
    asked = 0;
    pressed.reset();
    me.setTitle("x");
    EXPECT_EQ(asked, 0) << "what its request refers to may be gone";
  });
  keyWindow()->addSubview(button);
  Overlay& overlay = *pressed;
  overlay.setNeedsFrameCallback([&] { ++asked; });
  overlay.press(RemoteButton::Select, PressPhase::Began);
  EXPECT_TRUE(overlay.press(RemoteButton::Select, PressPhase::Ended));
  EXPECT_EQ(pressed, nullptr);
  EXPECT_EQ(keyWindow(), nullptr);

  for (const bool isFlat : {false, true}) {
    auto drawn = std::make_unique<Overlay>();
    Overlay& drawing = *drawn;
    drawing.layers(0.0);
    animate(
        0.1, [&] { button->setAlpha(isFlat ? 0.25 : 0.75); }, [&](bool) { drawn.reset(); });
    drawing.layers(1.0);
    EXPECT_TRUE(isFlat ? drawing.flatten(2.0).pixels == nullptr : drawing.layers(2.0).empty());
    EXPECT_EQ(keyWindow(), nullptr);
  }
}

}  // namespace
}  // namespace kesu
