#include "uikit/Animator.h"

#include <gtest/gtest.h>
#include <kesu/ui/Window.h>

#include <cmath>
#include <stdexcept>

#include "foundation/SharedInstance.h"
#include "testing/ScopedPlatform.h"
#include "uikit/ViewDrawing.h"

namespace kesu {
namespace {

class AnimatorTest : public ::testing::Test {
 protected:
  ~AnimatorTest() override {
    while (Animator::shared().isRunning()) {
      Animator::shared().finishAll();
    }
  }

  AnimationCompletion note(const std::string& name) {
    return [this, name](bool finished) { heard += name + (finished ? "+" : "-"); };
  }
  void fade(double seconds, double aim, const std::string& name) {
    animate(
        seconds, [&] { view->setAlpha(aim); }, note(name));
  }
  void move(double seconds, const Point& center, const std::string& name) {
    animate(
        seconds, [&] { view->setCenter(center); }, note(name));
  }
  std::string take() { return std::exchange(heard, {}); }
  double alpha() const { return ViewDrawing::presented(*view).alpha; }
  double x() const { return ViewDrawing::presented(*view).center.x; }

  testing::ScopedPlatform platform;
  std::shared_ptr<View> view = std::make_shared<View>(Rect{0.0, 0.0, 100.0, 100.0});
  std::string heard;
};

TEST_F(AnimatorTest, GoesSlowlyAtBothEnds) {
  fade(0.4, 0.0, "a");
  EXPECT_EQ(view->alpha(), 0.0) << "the aim is told at once";
  EXPECT_EQ(alpha(), 1.0);
  Animator::shared().tick(10.0);
  EXPECT_EQ(alpha(), 1.0) << "the first tick is the beginning";
  Animator::shared().tick(10.1);
  EXPECT_NEAR(alpha(), 1.0 - 0.15625, 1e-9);
  Animator::shared().tick(10.2);
  EXPECT_NEAR(alpha(), 0.5, 1e-9);
  Animator::shared().tick(10.3);
  EXPECT_NEAR(alpha(), 0.15625, 1e-9);
  EXPECT_EQ(heard, "");
  Animator::shared().tick(10.4);
  EXPECT_EQ(alpha(), 0.0);
  EXPECT_EQ(heard, "a+");
  EXPECT_FALSE(Animator::shared().isRunning());
}

TEST_F(AnimatorTest, MovesEveryValueOnItsOwn) {
  const Shadow shadow{Color::redColor(), 0.5, 9.0, {2.0, 4.0}};
  view->setShadow({Color::black(), 0.0, 1.0, {0.0, 0.0}});
  animate(1.0, [&] {
    view->setFrame({100.0, 200.0, 300.0, 50.0});
    view->setTransform({2.0, 3.0, 10.0, 20.0});
    view->setShadow(shadow);
  });
  Animator::shared().tick(0.0);
  Animator::shared().tick(0.5);
  const ViewGeometry half{
      {150.0, 137.5}, {200.0, 75.0}, {1.5, 2.0, 5.0, 10.0}, 1.0, {{0.5, 0.0, 0.0, 1.0}, 0.25, 5.0, {1.0, 2.0}}};
  EXPECT_TRUE(ViewDrawing::presented(*view) == half);
  view->setTransform({});
  Animator::shared().tick(1.0);
  EXPECT_EQ(ViewDrawing::presented(*view).size, (Size{300.0, 50.0}));
  EXPECT_EQ(ViewDrawing::presented(*view).shadow, shadow);
  EXPECT_EQ(ViewDrawing::presented(*view).transform, Transform{});
}

TEST_F(AnimatorTest, GoesOnFromWhereItIsWhenAnotherTakesOver) {
  const std::function<void()> change = [&] {
    view->setAlpha(0.0);
    view->setCenter({150.0, 50.0});
  };
  animate(1.0, change, note("a"));
  Animator::shared().tick(0.0);
  Animator::shared().tick(0.5);
  fade(1.0, 1.0, "b");
  Animator::shared().tick(0.6);
  EXPECT_NEAR(alpha(), 0.5, 1e-9);
  Animator::shared().tick(1.0);
  EXPECT_EQ(x(), 150.0);
  EXPECT_EQ(take(), "a-") << "one of its values did not arrive, the other had its time";
  Animator::shared().tick(1.1);
  EXPECT_NEAR(alpha(), 0.75, 1e-9);
  view->setAlpha(0.25);
  EXPECT_EQ(alpha(), 0.25);
  EXPECT_EQ(heard, "") << "nobody is called in the midst of a change";
  EXPECT_TRUE(Animator::shared().isRunning());
  platform.settle();
  EXPECT_EQ(take(), "b-");
  EXPECT_FALSE(Animator::shared().isRunning());
}

TEST_F(AnimatorTest, LeavesAnAnimationToTheSameAimAlone) {
  fade(0.3, 0.0, "a");
  Animator::shared().tick(0.0);
  fade(0.3, 0.0, "b");
  view->setAlpha(0.0);
  EXPECT_EQ(alpha(), 1.0);
  Animator::shared().tick(0.1);
  Animator::shared().tick(0.3);
  EXPECT_EQ(take(), "a+");
  Animator::shared().tick(0.4);
  EXPECT_EQ(take(), "b+") << "one without anything to move takes its time all the same";
}

TEST_F(AnimatorTest, SetsAtOnceWithoutDuration) {
  for (const double seconds : {0.0, -1.0, std::nan("")}) {
    view->setAlpha(1.0);
    fade(seconds, 0.5, "a");
    EXPECT_EQ(alpha(), 0.5);
    EXPECT_EQ(take(), "a+");
  }
  animate(
      1.0,
      [&] {
        view->setCenter({1.0, 1.0});
        fade(0.0, 0.0, "in");
        auto made = std::make_shared<View>(Rect{5.0, 5.0, 10.0, 10.0});
        EXPECT_EQ(ViewDrawing::presented(*made).size.width, 10.0) << "what is new does not grow from nothing";
      },
      note("out"));
  EXPECT_EQ(alpha(), 0.0);
  EXPECT_EQ(x(), 50.0);
  EXPECT_EQ(take(), "in+");
}

TEST_F(AnimatorTest, LetsCompletionsDoAnything) {
  animate(
      0.1, [&] { view->setAlpha(0.0); },
      [&](bool) {
        heard += "a";
        animate(
            0.1, [&] { view->setAlpha(1.0); },
            [&](bool) {
              view.reset();
              heard += "b";
            });
      });
  move(5.0, {9.0, 9.0}, "c");
  Animator::shared().tick(0.0);
  Animator::shared().tick(0.1);
  EXPECT_EQ(heard, "a");
  Animator::shared().tick(0.2);
  Animator::shared().tick(0.3);
  EXPECT_EQ(view, nullptr);
  EXPECT_EQ(take(), "abc-") << "the view that went away ends its other animation";
  EXPECT_FALSE(Animator::shared().isRunning());
}

TEST_F(AnimatorTest, FollowsEndsThatCauseEndsInOneFrame) {
  animate(
      0.2, [&] { view->setTransform(Transform::scale(1.2)); },
      [&](bool finished) {
        heard += finished ? "a+" : "a-";
        view->setTransform(Transform::scale(1.2));
      });
  Animator::shared().tick(0.0);
  animate(
      0.2, [&] { view->setTransform({}); },
      [&](bool finished) {
        heard += finished ? "b+" : "b-";
        view->setTransform({});
      });
  Animator::shared().tick(0.1);
  EXPECT_EQ(take(), "a-b-");
  EXPECT_EQ(ViewDrawing::presented(*view).transform, Transform{});
}

TEST_F(AnimatorTest, NeverGoesBackInTime) {
  fade(1.0, 0.0, "a");
  Animator::shared().tick(100.0);
  Animator::shared().tick(100.5);
  Animator::shared().tick(3.0);
  Animator::shared().tick(std::nan(""));
  EXPECT_NEAR(alpha(), 0.5, 1e-9);
  Animator::shared().tick(3.5);
  EXPECT_EQ(take(), "a+") << "the clock went on from where it fell back to";
}

TEST_F(AnimatorTest, GoesOnAfterAClockThatWentWild) {
  for (const double wild : {1.7e18, -1e300, 1e308, HUGE_VAL, -1e308}) {
    Animator::shared().tick(wild);
  }
  Animator::shared().tick(5.0);
  fade(1.0, 0.0, "a");
  Animator::shared().tick(5.0);
  Animator::shared().tick(5.5);
  EXPECT_NEAR(alpha(), 0.5, 1e-9);
  Animator::shared().tick(6.0);
  EXPECT_EQ(take(), "a+");
}

TEST_F(AnimatorTest, GoesOnWhateverTheHostThrows) {
  const auto fail = [] { throw std::runtime_error("from the host"); };
  EXPECT_THROW(animate(0.3, [&] { fail(); }), std::runtime_error);
  view->setCenter({7.0, 50.0});
  EXPECT_EQ(x(), 7.0) << "no call is open any more";
  Animator::shared().tick(1.0);
  Animator::shared().tick(1.3);
  EXPECT_FALSE(Animator::shared().isRunning());
  animate(
      0.3, [&] { view->setAlpha(0.0); }, [&](bool) { fail(); });
  move(0.3, {9.0, 50.0}, "b");
  Animator::shared().tick(2.0);
  EXPECT_THROW(Animator::shared().tick(2.3), std::runtime_error);
  EXPECT_TRUE(Animator::shared().isRunning()) << "another frame is wanted";
  Animator::shared().tick(2.4);
  EXPECT_EQ(take(), "b+");
}

TEST_F(AnimatorTest, EndsWhatNobodyDraws) {
  fade(0.3, 0.0, "a");
  platform.mainLoop.runFor(1.2);
  EXPECT_EQ(alpha(), 1.0);
  platform.mainLoop.runFor(0.2);
  EXPECT_EQ(alpha(), 0.0);
  EXPECT_EQ(take(), "a+");
  EXPECT_EQ(platform.mainLoop.nextDue(), std::nullopt) << "an idle application has no timer";
  fade(0.3, 1.0, "b");
  Animator::shared().tick(0.0);
  Animator::shared().tick(0.3);
  EXPECT_EQ(take(), "b+");
  EXPECT_EQ(platform.mainLoop.nextDue(), std::nullopt);
}

TEST_F(AnimatorTest, WaitsForWhomDrawsSlowly) {
  fade(0.3, 0.0, "a");
  platform.mainLoop.runFor(1.0);
  Animator::shared().tick(1.0);
  platform.mainLoop.runFor(1.0);
  EXPECT_EQ(alpha(), 1.0) << "somebody draws";
  platform.mainLoop.runFor(1.0);
  EXPECT_EQ(take(), "a+") << "but not any more";
}

TEST_F(AnimatorTest, LetsGoOfWhatItsCompletionsOwn) {
  const std::weak_ptr<View> gone = view;
  animate(
      0.3, [&] { view->setAlpha(0.0); }, [owned = view](bool) {});
  view.reset();
  EXPECT_FALSE(gone.expired());
  resetSharedInstances();
  EXPECT_TRUE(gone.expired());
}

TEST_F(AnimatorTest, WantsFrames) {
  Window window;
  window.makeKeyAndVisible();
  window.addSubview(view);
  const std::uint64_t before = ViewDrawing::changeCount(window);
  animate(0.3, [&] { view->setAlpha(0.0); });
  const std::uint64_t moving = ViewDrawing::changeCount(window);
  EXPECT_GT(moving, before);
  animate(0.3, [] {});
  EXPECT_GT(ViewDrawing::changeCount(window), moving);
}

}  // namespace
}  // namespace kesu
