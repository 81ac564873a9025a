#include "uikit/ViewDrawing.h"

#include <gtest/gtest.h>

#include <functional>

#include "testing/CardWindow.h"

namespace kesu {

void PrintTo(const Rect& rect, std::ostream* out) {
  *out << "{" << rect.x << ", " << rect.y << ", " << rect.width << ", " << rect.height << "}";
}

namespace {

class ViewDrawingTest : public ::testing::Test, protected testing::CardWindow {
 protected:
  ViewDrawingTest() { settle(); }

  void settle() {
    ViewDrawing::extractDamage(*card);
    changes = ViewDrawing::changeCount(window);
  }
  bool hasChanged() const { return ViewDrawing::changeCount(window) != changes; }

  std::uint64_t changes = 0;
};

TEST_F(ViewDrawingTest, HasAnExtentWithShadowAndSubviews) {
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

TEST_F(ViewDrawingTest, DamagesWhatAChangeTouches) {
  struct Case {
    const char* what;
    std::function<void()> change;
    Rect damage;
  };
  const Rect place{200.0, 320.0, 100.0, 60.0};  // Of the button in the card.
  const Rect narrow{200.0, 20.0, 50.0, 60.0};
  const auto center = [&](double x, double y) { return [this, x, y] { button->setCenter({x, y}); }; };
  const std::vector<Case> cases = {
      {"colour", [&] { button->setBackgroundColor(Color::redColor()); }, place},
      {"border", [&] { button->setBorder(1.0, Color::white()); }, place},
      {"corners", [&] { button->setCornerRadius(6.0); }, place},
      {"fading", [&] { button->setAlpha(0.5); }, place},
      {"move", center(260.0, 50.0), {200.0, 320.0, 110.0, 60.0}},
      {"move back", center(250.0, 50.0), {200.0, 320.0, 110.0, 60.0}},
      {"growth", [&] { button->setTransform(Transform::scale(2.0)); }, {150.0, 290.0, 200.0, 120.0}},
      {"shrinking", [&] { button->setTransform({}); }, {150.0, 290.0, 200.0, 120.0}},
      {"hiding", [&] { button->setHidden(true); }, place},
      {"hidden", center(250.0, 50.0), {}},
      {"showing", [&] { button->setHidden(false); }, place},
      {"leaving", [&] { button->removeFromSuperview(); }, place},
      {"alone", [&] { button->setBackgroundColor(Color::white()); }, {}},
      {"coming", [&] { bar->addSubview(button); }, place},
      {"resizing", [&] { button->setFrame(narrow); }, place},
      {"clipping", [&] { bar->setClipsToBounds(true); }, {0.0, 300.0, 600.0, 100.0}},
      {"clipped", center(225.0, 90.0), {200.0, 320.0, 50.0, 80.0}},
      {"nothing", center(225.0, 90.0), {}},
  };
  for (const Case& one : cases) {
    settle();
    one.change();
    EXPECT_EQ(ViewDrawing::extractDamage(*card), one.damage) << one.what;
    EXPECT_EQ(hasChanged(), !one.damage.isEmpty()) << one.what;
  }
}

TEST_F(ViewDrawingTest, MovesAPictureWithoutDrawingItAgain) {
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

TEST_F(ViewDrawingTest, DrawsAViewIntoThePictureItBelongsTo) {
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

TEST_F(ViewDrawingTest, CallsTheChangeCallback) {
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
