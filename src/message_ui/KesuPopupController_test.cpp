#include "message_ui/KesuPopupController.h"

#include <gtest/gtest.h>
#include <kesu/ui/Window.h>

#include <memory>
#include <string>
#include <vector>

#include "testing/ScopedPlatform.h"
#include "uikit/Animator.h"
#include "uikit/ViewDrawing.h"
#include "uikit/WindowInput.h"

namespace kesu {
namespace {

struct Delegate : KesuPopoverDelegate {
  void didPopoverClosed() override { ++closed; }
  int closed = 0;
};

/// A window with a popup of two views, 100 and 50 high, and time in hand.
class PopupTest : public ::testing::Test {
 protected:
  PopupTest() {
    window.makeKeyAndVisible();
    popup = std::make_unique<KesuPopupController>(std::vector<ViewPtr>{first, second}, nullptr, &delegate);
  }
  ~PopupTest() override {
    popup.reset();
    Animator::shared().finishAll();
  }

  /// Lets animations run for so long; the first tick of each is its beginning.
  void pass(double seconds) {
    platform.settle();
    Animator::shared().tick(now);
    now += seconds;
    Animator::shared().tick(now);
    platform.settle();
  }

  void present(bool animated = false) {
    popup->presentPopupControllerAnimated(animated, [this](bool flag) { completions.push_back(flag); });
  }

  bool isUp() const { return popup->contentView().superview() == &window; }

  testing::ScopedPlatform platform;
  Window window;
  Delegate delegate;
  ViewPtr first = std::make_shared<View>(Rect{7.0, 7.0, 580.0, 100.0});
  ViewPtr second = std::make_shared<View>(Rect{0.0, 0.0, 560.0, 50.0});
  std::unique_ptr<KesuPopupController> popup;
  std::vector<bool> completions;
  double now = 10.0;
};

TEST_F(PopupTest, IsBuiltAsAgreed) {
  EXPECT_EQ(popup->contentView().frame(), window.bounds());
  EXPECT_EQ(popup->contentView().backgroundColor(), Color::black().withAlpha(0.7));
  EXPECT_TRUE(popup->contentView().isModal());
  EXPECT_EQ(popup->popupView().frame(), Rect{});
  EXPECT_EQ(popup->popupView().backgroundColor(), Color::clear());
  EXPECT_TRUE(popup->popupView().clipsToBounds());
  EXPECT_TRUE(ViewDrawing::isComposited(popup->popupView()));
  EXPECT_EQ(popup->gesture().allowedPressTypes(), std::vector<RemoteButton>{RemoteButton::Menu});
  EXPECT_EQ(popup->gesture().delegate(), popup.get());
  EXPECT_EQ(popup->swipeGesture(), nullptr);
  EXPECT_EQ(popup->theme().popupStyle, 0U);
  EXPECT_EQ(popup->applicationWindow(), &window);
  EXPECT_EQ(KesuPopupTheme::defaultTheme().popupStyle, 1U);
  EXPECT_EQ(KesuPopupTheme::defaultTheme().presentationStyle, 2);
  const KesuPopupController single(first, nullptr, nullptr);
  EXPECT_EQ(single.views(), std::vector<ViewPtr>{first});
}

TEST_F(PopupTest, PresentsAtOnceWithoutAnimation) {
  present();
  EXPECT_TRUE(isUp());
  EXPECT_EQ(completions, std::vector<bool>{true});
  EXPECT_EQ(first->frame(), (Rect{0.0, 0.0, 580.0, 100.0}));
  EXPECT_EQ(second->frame(), (Rect{0.0, 100.0, 560.0, 50.0}));
  EXPECT_EQ(popup->popupView().frame(), (Rect{670.0, 930.0, 580.0, 150.0}));
  EXPECT_EQ(ViewDrawing::presented(popup->contentView()).alpha, 1.0);
  EXPECT_EQ(popup->popupView().borderColor(), Color::white());
  EXPECT_EQ(popup->popupView().borderWidth(), 1.0);
}

TEST_F(PopupTest, SlidesInFromBelowWithinThreeTenths) {
  present(true);
  EXPECT_EQ(ViewDrawing::presented(popup->contentView()).alpha, 0.0);
  EXPECT_EQ(ViewDrawing::presented(popup->popupView()).center, (Point{960.0, 1080.0 + 150.0}));
  pass(0.29);
  EXPECT_TRUE(completions.empty());
  EXPECT_LT(ViewDrawing::presented(popup->contentView()).alpha, 1.0);
  pass(0.02);
  EXPECT_EQ(completions, std::vector<bool>{true});
  EXPECT_EQ(ViewDrawing::presented(popup->popupView()).center, (Point{960.0, 1080.0 - 75.0}));
  EXPECT_TRUE(popup->popupView().isUserInteractionEnabled());
}

TEST_F(PopupTest, ClosesOnceForTheUserThoughItDismissesTwice) {
  int removed = 0;
  popup->setRemovalHandler([&] { ++removed; });
  present(true);
  pass(0.4);
  EXPECT_TRUE(WindowInput::of(window).press(RemoteButton::Menu, PressPhase::Began));
  EXPECT_TRUE(WindowInput::of(window).press(RemoteButton::Menu, PressPhase::Ended));
  EXPECT_EQ(delegate.closed, 1);
  pass(0.2);
  EXPECT_TRUE(isUp()) << "still sliding out";
  EXPECT_GT(ViewDrawing::presented(popup->contentView()).alpha, 0.0);
  pass(0.2);
  EXPECT_FALSE(isUp());
  EXPECT_EQ(removed, 1);
}

TEST_F(PopupTest, AsksTheThemeWhetherABackgroundTapCloses) {
  present();
  popup->theme().shouldDismissOnBackgroundTouch = false;
  popup->simulateWideTap();
  EXPECT_FALSE(isUp()) << "the allowed press type alone dismisses";
  EXPECT_EQ(delegate.closed, 0);
  present();
  popup->theme().shouldDismissOnBackgroundTouch = true;
  popup->gesture().setAllowedPressTypes({});
  popup->handleBackgroundTapGesture(nullptr);
  EXPECT_FALSE(isUp());
  EXPECT_EQ(delegate.closed, 1);
}

TEST_F(PopupTest, IgnoresTapsOnTheCard) {
  present();
  WindowInput::of(window).tap({960.0, 1000.0});
  EXPECT_EQ(delegate.closed, 0);
  EXPECT_FALSE(popup->shouldReceiveTouch(popup->gesture(), popup->popupView()));
  EXPECT_FALSE(popup->shouldReceiveTouch(popup->gesture(), *first));
  EXPECT_TRUE(popup->shouldReceiveTouch(popup->gesture(), popup->contentView()));
  WindowInput::of(window).tap({100.0, 100.0});
  EXPECT_EQ(delegate.closed, 1);
}

TEST_F(PopupTest, TellsTheLogOfEveryReleaseAndTouchWithoutAnyThreshold) {
  const auto lines = [this] {
    std::string all;
    for (const auto& line : platform.log.takeLines()) {
      all += std::to_string(line.level) + " " + line.text + "|";
    }
    return all;
  };
  const std::string line = "0 Menu button released|";
  present();
  popup->simulateWideTap();
  EXPECT_EQ(lines(), "") << "nothing was released";
  present();
  WindowInput::of(window).tap({960.0, 1000.0});
  EXPECT_EQ(lines(), line) << "on the card, where nothing closes";
  WindowInput::of(window).press(RemoteButton::Menu, PressPhase::Began);
  EXPECT_EQ(lines(), "");
  WindowInput::of(window).press(RemoteButton::Menu, PressPhase::Ended);
  EXPECT_EQ(lines(), line);
  present();
  WindowInput::of(window).tap({100.0, 100.0});
  EXPECT_EQ(lines(), line + line) << "the touch, and the gesture that it makes";
}

TEST_F(PopupTest, LeavesHiddenViewsOut) {
  first->setHidden(true);
  present();
  EXPECT_EQ(second->frame(), (Rect{0.0, 0.0, 560.0, 50.0}));
  EXPECT_EQ(popup->popupView().bounds().size(), (Size{560.0, 50.0}));
}

TEST_F(PopupTest, GrowsInTwoSteps) {
  present();
  popup->updatePopoverHeight(100.0);
  EXPECT_FALSE(Animator::shared().isRunning()) << "the height that it has already";
  popup->updatePopoverHeight(300.0);
  EXPECT_EQ(first->bounds().height, 300.0);
  EXPECT_EQ(second->frame().y, 300.0);
  EXPECT_EQ(popup->popupView().bounds().height, 150.0) << "not before the next turn";
  Animator::shared().tick(now);
  EXPECT_LT(ViewDrawing::presented(*first).size.height, 300.0);
  Animator::shared().tick(now += 0.1);
  EXPECT_EQ(ViewDrawing::presented(*first).size.height, 300.0);
  platform.settle();
  EXPECT_EQ(popup->popupView().bounds().height, 350.0);
  EXPECT_EQ(popup->popupView().center(), (Point{960.0, 1080.0 - 175.0}));
  pass(0.49);
  EXPECT_NE(ViewDrawing::presented(popup->popupView()).center, popup->popupView().center());
  pass(0.02);
  EXPECT_EQ(ViewDrawing::presented(popup->popupView()).center, popup->popupView().center());
}

TEST_F(PopupTest, ForgetsAGrowthThatADismissalOvertakes) {
  present();
  popup->updatePopoverHeight(300.0);
  popup->dismissPopupControllerAnimated(true);
  pass(0.4);
  EXPECT_FALSE(isUp());
  EXPECT_EQ(popup->contentView().alpha(), 0.0);
  popup->updatePopoverHeight(200.0);
  popup.reset();
  pass(0.4);  // Nothing is left to touch.
}

TEST_F(PopupTest, MayBePresentedAgainWhileItSlidesOut) {
  present();
  popup->dismissPopupControllerAnimated(true);
  pass(0.1);
  present(true);
  pass(0.4);
  EXPECT_TRUE(isUp());
  EXPECT_EQ(popup->popupView().center(), (Point{960.0, 1005.0}));
}

TEST_F(PopupTest, SlidesOutWithoutItsController) {
  present();
  View* backdrop = &popup->contentView();
  popup->dismissPopupControllerAnimated(true);
  popup.reset();
  ASSERT_EQ(backdrop->superview(), &window);
  WindowInput::of(window).press(RemoteButton::Menu, PressPhase::Began);
  WindowInput::of(window).press(RemoteButton::Menu, PressPhase::Ended);
  pass(0.4);
  EXPECT_TRUE(window.subviews().empty());
  EXPECT_EQ(delegate.closed, 0);
}

TEST_F(PopupTest, FollowsTheTheme) {
  struct Case {
    std::uint64_t style;
    double radius;
    std::int64_t presentation;
  };
  for (const Case& one : {Case{0, 5.0, 2}, Case{1, 9.0, 7}, Case{2, 5.0, 0}, Case{3, 5.0, 7}}) {
    KesuPopupTheme theme;
    theme.popupStyle = one.style;
    theme.presentationStyle = 7;
    theme.cornerRadius = 9.0;
    theme.backgroundColor = Color::blueColor();
    theme.maskType = static_cast<std::int64_t>(one.style % 2);
    popup->setTheme(theme);
    popup->applyTheme();
    EXPECT_EQ(popup->popupView().cornerRadius(), one.radius);
    EXPECT_EQ(popup->theme().presentationStyle, one.presentation);
    EXPECT_EQ(popup->popupView().backgroundColor(), Color::blueColor());
    EXPECT_EQ(popup->contentView().backgroundColor(), Color::black().withAlpha(0.7)) << "whatever the mask type";
  }
}

TEST_F(PopupTest, KeepsClearOfTheScreensEdgesWhenAsked) {
  popup->setScreenInsets({10.0, 30.0, 40.0, 10.0});
  present();
  EXPECT_EQ(popup->popupView().center(), (Point{970.0, 1080.0 - 40.0 - 75.0}));
}

TEST_F(PopupTest, FollowsTheScreensGeometry) {
  present();
  window.setFrame({0.0, 0.0, 1440.0, 1080.0});
  popup->orientationWillChange();
  pass(0.31);
  EXPECT_EQ(ViewDrawing::presented(popup->contentView()).size, (Size{1440.0, 1080.0}));
  EXPECT_EQ(ViewDrawing::presented(popup->popupView()).center, (Point{720.0, 1005.0}));
}

TEST_F(PopupTest, HasNoGeometryWithoutAWindow) {
  auto none = std::make_unique<Window>();
  none->makeKeyAndVisible();
  none.reset();
  KesuPopupController lost(std::make_shared<View>(Rect{0.0, 0.0, 580.0, 100.0}), nullptr, nullptr);
  EXPECT_EQ(lost.applicationWindow(), nullptr);
  EXPECT_EQ(lost.contentView().frame(), Rect{});
  lost.presentPopupControllerAnimated(false);
  EXPECT_EQ(lost.contentView().superview(), nullptr);
}

}  // namespace
}  // namespace kesu
