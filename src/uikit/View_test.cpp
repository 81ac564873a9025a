#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "testing/CardWindow.h"
#include "uikit/InputTargets.h"
#include "uikit/ViewDrawing.h"

namespace kesu {
namespace {

class ViewTest : public ::testing::Test, protected testing::CardWindow {};

TEST_F(ViewTest, ReplacesNumbersThatAreNotFinite) {
  const double nan = std::nan("");
  const double infinite = std::numeric_limits<double>::infinity();
  button->setFrame({nan, 5.0, -3.0, infinite});
  EXPECT_EQ(button->frame(), (Rect{0.0, 5.0, 0.0, 0.0}));
  button->setCenter({infinite, nan});
  button->setAlpha(nan);
  button->setTransform({nan, 2.0, -infinite, 1e300});
  button->setShadow({Color::black(), infinite, -1.0, {nan, 0.0}});
  button->setCornerRadius(-2.0);
  button->setBorder(nan, Color::white());
  EXPECT_EQ(button->center(), (Point{0.0, 0.0}));
  EXPECT_EQ(button->alpha(), 0.0);
  EXPECT_EQ(button->transform(), (Transform{0.0, 2.0, 0.0, 1e9}));
  EXPECT_EQ(button->shadow(), (Shadow{Color::black(), 0.0, 0.0, {0.0, 0.0}}));
  EXPECT_EQ(button->cornerRadius() + button->borderWidth(), 0.0);
  EXPECT_TRUE(std::isfinite(ViewDrawing::drawnExtent(*card).width));
}

TEST_F(ViewTest, LiesInTheWindowWithoutTransforms) {
  bar->setTransform(Transform::scale(2.0));
  EXPECT_EQ(placeInWindow(*button), (Rect{300.0, 370.0, 100.0, 60.0}));
  EXPECT_EQ(button->window(), &window);
  card->removeFromSuperview();
  EXPECT_EQ(button->window(), nullptr);
  EXPECT_EQ(placeInWindow(*button), (Rect{200.0, 320.0, 100.0, 60.0})) << "then in the outermost view";
}

TEST_F(ViewTest, KeepsATreeWhateverIsAdded) {
  card->addSubview(nullptr);
  button->addSubview(card);
  button->addSubview(button);
  EXPECT_EQ(card->subviews().size(), 1u);
  EXPECT_TRUE(button->subviews().empty());
  card->addSubview(button);
  EXPECT_EQ(button->superview(), card.get());
  EXPECT_TRUE(bar->subviews().empty());
  card->bringSubviewToFront(*button);
  EXPECT_EQ(card->subviews(), (std::vector<ViewPtr>{bar, button}));
  card->addSubview(bar);
  EXPECT_EQ(card->subviews(), (std::vector<ViewPtr>{button, bar})) << "in front, also when added again";
  EXPECT_TRUE(card->contains(*button) && !bar->contains(*button));
  std::weak_ptr<View> gone = card;
  card.reset();
  window.removeAllSubviews();
  EXPECT_TRUE(gone.expired());
  EXPECT_EQ(button->superview(), nullptr) << "whoever outlives its superview stands alone";
}

TEST_F(ViewTest, FindsTheFrontmostViewThatCanBeTouched) {
  const auto cover = testing::viewIn(*bar, {250.0, 0.0, 100.0, 100.0});
  const Point both{360.0, 380.0};
  EXPECT_EQ(hitTest(window, both), cover.get());
  cover->setUserInteractionEnabled(false);
  EXPECT_EQ(hitTest(window, both), button.get());
  button->setAlpha(0.0);
  EXPECT_EQ(hitTest(window, both), bar.get());
  button->setAlpha(1.0);
  button->setTransform(Transform::scale(2.0));
  EXPECT_EQ(hitTest(window, {260.0, 375.0}), button.get()) << "as large as the user sees it";
  button->setTransform(Transform::scale(0.0));
  EXPECT_EQ(hitTest(window, both), bar.get());
  bar->setHidden(true);
  EXPECT_EQ(hitTest(window, both), card.get());
  button->setTransform({1.0, 1.0, 0.0, 200.0});
  bar->setHidden(false);
  EXPECT_EQ(hitTest(window, {320.0, 570.0}), button.get()) << "beside its superview";
  bar->setClipsToBounds(true);
  EXPECT_EQ(hitTest(window, {320.0, 570.0}), &window);
}

}  // namespace
}  // namespace kesu
