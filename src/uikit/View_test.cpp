#include <gtest/gtest.h>
#include <kesu/ui/Window.h>

#include <cmath>
#include <limits>

#include "uikit/InputTargets.h"
#include "uikit/ViewDrawing.h"

namespace kesu {

void PrintTo(const Rect& rect, std::ostream* out) {
  *out << "{" << rect.x << ", " << rect.y << ", " << rect.width << ", " << rect.height << "}";
}

namespace {

std::shared_ptr<View> viewIn(View& superview, const Rect& frame) {
  auto view = std::make_shared<View>(frame);
  superview.addSubview(view);
  return view;
}

/// A window with a card, which is composited, and a button in the card.
class ViewTest : public ::testing::Test {
 protected:
  ViewTest() { settle(); }

  void settle() {
    ViewDrawing::extractDamage(*card);
    changes = ViewDrawing::changeCount(window);
  }
  bool hasChanged() const { return ViewDrawing::changeCount(window) != changes; }

  Window window;
  std::shared_ptr<View> card = viewIn(window, {100.0, 50.0, 600.0, 400.0});
  std::shared_ptr<View> bar = viewIn(*card, {0.0, 300.0, 600.0, 100.0});
  std::shared_ptr<View> button = viewIn(*bar, {200.0, 20.0, 100.0, 60.0});
  std::uint64_t changes = 0;
};

TEST_F(ViewTest, TakesNoNumberThatIsNone) {
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
  const auto cover = viewIn(*bar, {250.0, 0.0, 100.0, 100.0});
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

TEST_F(ViewTest, KnowsAllThatItTouches) {
  button->setTransform({2.0, 1.0, 0.0, 10.0});
  EXPECT_EQ(ViewDrawing::drawnExtent(*button), (Rect{150.0, 30.0, 200.0, 60.0}));
  button->setTransform({});
  button->setShadow({Color::black(), 0.5, 10.0, {0.0, 27.0}});
  EXPECT_EQ(ViewDrawing::drawnExtent(*button), (Rect{169.0, 16.0, 162.0, 122.0}));
  EXPECT_EQ(ViewDrawing::drawnExtent(*card), (Rect{100.0, 50.0, 600.0, 438.0})) << "the shadow sticks out below";
  ViewDrawing::setComposited(*bar, true);
  EXPECT_EQ(ViewDrawing::pictureExtent(*card), (Rect{0.0, 0.0, 600.0, 400.0})) << "the bar is a picture of its own";
  EXPECT_EQ(ViewDrawing::pictureExtent(*bar), (Rect{0.0, 0.0, 600.0, 138.0}));
  button->setClipsToBounds(true);
  EXPECT_EQ(ViewDrawing::drawnExtent(*button), button->frame());
  button->setHidden(true);
  EXPECT_TRUE(ViewDrawing::drawnExtent(*button).isEmpty());
}

TEST_F(ViewTest, DamagesWhatAChangeTouches) {
  struct Case {
    const char* what;
    std::function<void()> change;
    Rect damage;
  };
  const Rect place{200.0, 320.0, 100.0, 60.0};  // Of the button in the card.
  const std::vector<Case> cases = {
      {"colour", [&] { button->setBackgroundColor(Color::redColor()); }, place},
      {"border", [&] { button->setBorder(1.0, Color::white()); }, place},
      {"corners", [&] { button->setCornerRadius(6.0); }, place},
      {"fading", [&] { button->setAlpha(0.5); }, place},
      {"move",
       [&] {
         button->setCenter({260.0, 50.0});
       },
       {200.0, 320.0, 110.0, 60.0}},
      {"move back",
       [&] {
         button->setCenter({250.0, 50.0});
       },
       {200.0, 320.0, 110.0, 60.0}},
      {"growth", [&] { button->setTransform(Transform::scale(2.0)); }, {150.0, 290.0, 200.0, 120.0}},
      {"shrinking", [&] { button->setTransform({}); }, {150.0, 290.0, 200.0, 120.0}},
      {"hiding", [&] { button->setHidden(true); }, place},
      {"hidden",
       [&] {
         button->setCenter({250.0, 50.0});
       },
       {}},
      {"showing", [&] { button->setHidden(false); }, place},
      {"leaving", [&] { button->removeFromSuperview(); }, place},
      {"alone", [&] { button->setBackgroundColor(Color::white()); }, {}},
      {"coming", [&] { bar->addSubview(button); }, place},
      {"resizing",
       [&] {
         button->setFrame({200.0, 20.0, 50.0, 60.0});
       },
       place},
      {"clipping", [&] { bar->setClipsToBounds(true); }, {0.0, 300.0, 600.0, 100.0}},
      {"clipped",
       [&] {
         button->setCenter({225.0, 90.0});
       },
       {200.0, 320.0, 50.0, 80.0}},
      {"nothing",
       [&] {
         button->setCenter({225.0, 90.0});
       },
       {}},
  };
  for (const Case& one : cases) {
    settle();
    one.change();
    EXPECT_EQ(ViewDrawing::extractDamage(*card), one.damage) << one.what;
    EXPECT_EQ(hasChanged(), !one.damage.isEmpty()) << one.what;
  }
}

TEST_F(ViewTest, MovesAPictureWithoutDrawingItAgain) {
  const auto changed = [&](const std::function<void()>& change) {
    settle();
    change();
    return hasChanged() && ViewDrawing::extractDamage(*card).isEmpty() && ViewDrawing::extractDamage(window).isEmpty();
  };
  EXPECT_TRUE(changed([&] { card->setCenter({0.0, 0.0}); }));
  EXPECT_TRUE(changed([&] { card->setTransform(Transform::scale(1.1)); }));
  EXPECT_TRUE(changed([&] { card->setAlpha(0.0); }));
  EXPECT_TRUE(changed([&] { card->setAlpha(1.0); }));
  EXPECT_TRUE(changed([&] { card->setHidden(true); }));
  settle();
  button->setBackgroundColor(Color::redColor());
  EXPECT_FALSE(hasChanged()) << "nobody sees it";
  EXPECT_FALSE(ViewDrawing::extractDamage(*card).isEmpty()) << "but the picture is old now";
  EXPECT_TRUE(changed([&] { card->setHidden(false); }));
  card->setFrame({0.0, 0.0, 600.0, 500.0});
  EXPECT_EQ(ViewDrawing::extractDamage(*card), (Rect{0.0, 0.0, 600.0, 500.0})) << "another size is another picture";
}

TEST_F(ViewTest, DrawsAViewIntoThePictureItBelongsTo) {
  settle();
  ViewDrawing::setComposited(*bar, true);
  EXPECT_EQ(ViewDrawing::extractDamage(*card), bar->frame()) << "it has left that picture";
  EXPECT_EQ(ViewDrawing::extractDamage(*bar), bar->bounds());
  button->setBackgroundColor(Color::redColor());
  EXPECT_EQ(ViewDrawing::extractDamage(*bar), button->frame());
  EXPECT_TRUE(ViewDrawing::extractDamage(*card).isEmpty());
  card->removeFromSuperview();
  EXPECT_FALSE(ViewDrawing::isComposited(*card));
  window.addSubview(card);
  EXPECT_TRUE(ViewDrawing::isComposited(*card));
  EXPECT_EQ(ViewDrawing::extractDamage(*card), card->bounds()) << "what comes anew is drawn whole";
}

TEST_F(ViewTest, TellsWhoWantsToDraw) {
  int calls = 0;
  ViewDrawing::setChangeCallback(window, [&] { ++calls; });
  button->setBackgroundColor(Color::redColor());
  EXPECT_EQ(calls, 1);
  ViewDrawing::setChangeCallback(window, {});
  button->setBackgroundColor(Color::white());
  EXPECT_EQ(calls, 1);
}

}  // namespace
}  // namespace kesu
