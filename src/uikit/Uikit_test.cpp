#include <gtest/gtest.h>
#include <kesu/ui/Button.h>
#include <kesu/ui/ImageView.h>
#include <kesu/ui/Label.h>
#include <kesu/ui/Window.h>

#include <algorithm>
#include <cmath>

#include "drawing/Canvas.h"
#include "testing/FontRelease.h"
#include "testing/ScopedPlatform.h"
#include "uikit/Animator.h"
#include "uikit/ViewDrawing.h"

namespace kesu {
namespace {

constexpr std::uint32_t kRed = 0xFFFF0000;
constexpr std::uint32_t kBlue = 0xFF0000FF;

/// What a view draws by itself, 40 x 20 pixels.
class Drawing {
 public:
  explicit Drawing(const View& view) { ViewDrawing::draw(view, *canvas_); }

  std::uint32_t at(int x, int y) const { return pixels_[static_cast<std::size_t>(y * 40 + x)]; }
  bool isEmpty() const {
    return std::ranges::all_of(pixels_, [](std::uint32_t pixel) { return pixel == 0; });
  }

 private:
  std::vector<std::uint32_t> pixels_ = std::vector<std::uint32_t>(40 * 20);
  std::unique_ptr<Canvas> canvas_ = makeCanvas({pixels_.data(), 40, 20, 40});
};

/// Left half red, right half blue, 40 x 40.
ImagePtr twoColors() {
  std::vector<std::uint32_t> pixels(40 * 40, kRed);
  for (std::size_t place = 0; place < pixels.size(); ++place) {
    pixels[place] = place % 40 < 20 ? kRed : kBlue;
  }
  return std::make_shared<Image>(40, 40, std::move(pixels));
}

TEST(ControlsTest, PlacesPicturesByContentMode) {
  ImageView view({0.0, 0.0, 40.0, 20.0});
  EXPECT_TRUE(Drawing(view).isEmpty());
  view.setImage(twoColors());
  view.setContentMode(ImageView::ContentMode::Fill);
  EXPECT_EQ(Drawing(view).at(1, 10), kRed);
  EXPECT_EQ(Drawing(view).at(38, 10), kBlue);
  view.setContentMode(ImageView::ContentMode::AspectFit);
  EXPECT_EQ(Drawing(view).at(8, 10), 0u);
  EXPECT_EQ(Drawing(view).at(12, 10), kRed);
  EXPECT_EQ(Drawing(view).at(28, 10), kBlue);
  EXPECT_EQ(Drawing(view).at(32, 10), 0u);
  view.setContentMode(ImageView::ContentMode::AspectFill);
  EXPECT_EQ(Drawing(view).at(0, 0), kRed);
  view.setCornerRadius(10.0);
  EXPECT_EQ(Drawing(view).at(0, 0), 0u) << "cut at the corner";
  EXPECT_EQ(Drawing(view).at(38, 10), kBlue);
  view.setFrame({});
  EXPECT_TRUE(Drawing(view).isEmpty());
}

TEST(ControlsTest, StretchesAButtonsPictureWithinItsCorners) {
  Button button({0.0, 0.0, 40.0, 20.0});
  button.setBackgroundImage(twoColors());
  button.setCornerRadius(6.0);
  EXPECT_EQ(Drawing(button).at(0, 0), 0u);
  EXPECT_EQ(Drawing(button).at(1, 10), kRed);
  EXPECT_EQ(Drawing(button).at(38, 10), kBlue);
}

TEST(ControlsTest, DrawsAgainOnlyWhatHasChanged) {
  Window window;
  auto label = std::make_shared<Label>(Rect{0.0, 0.0, 40.0, 20.0});
  auto button = std::make_shared<Button>(Rect{0.0, 0.0, 40.0, 20.0});
  auto picture = std::make_shared<ImageView>(Rect{0.0, 0.0, 40.0, 20.0});
  window.addSubview(label);
  window.addSubview(button);
  window.addSubview(picture);
  const ImagePtr image = twoColors();
  const std::vector<std::function<void()>> changes = {
      [&] { label->setText("a"); },
      [&] { label->setFont(Font::system(9.0)); },
      [&] { label->setTextColor(Color::redColor()); },
      [&] { label->setAlignment(TextAlignment::Right); },
      [&] { label->setNumberOfLines(0); },
      [&] { label->setMinimumScaleFactor(0.5); },
      [&] { button->setTitle("a"); },
      [&] { button->setFont(Font::system(9.0)); },
      [&] { button->setTitleColor(Color::redColor()); },
      [&] { button->setBackgroundImage(image); },
      [&] { picture->setImage(image); },
      [&] { picture->setContentMode(ImageView::ContentMode::Fill); },
  };
  for (std::size_t change = 0; change < changes.size(); ++change) {
    const std::uint64_t before = ViewDrawing::changeCount(window);
    changes[change]();
    EXPECT_EQ(ViewDrawing::changeCount(window), before + 1) << change;
    changes[change]();
    EXPECT_EQ(ViewDrawing::changeCount(window), before + 1) << change;
  }
}

TEST(ControlsTest, TypesetsALabelInThePresentedSize) {
  const testing::ScopedPlatform platform;
  const auto label = std::make_shared<Label>(Rect{0.0, 0.0, 40.0, 20.0});
  label->setText("text");
  label->setFont(Font::system(12.0));
  animate(1.0, [&] { label->setFrame({0.0, 0.0, 40.0, 400.0}); });
  EXPECT_FALSE(Drawing(*label).isEmpty()) << "its middle is still at 10";
  Animator::shared().finishAll();
  EXPECT_TRUE(Drawing(*label).isEmpty()) << "its middle is far below";
}

}  // namespace
}  // namespace kesu
