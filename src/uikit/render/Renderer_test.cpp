#include "uikit/render/Renderer.h"

#include <gtest/gtest.h>
#include <kesu/ui/Label.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

#include "drawing/Canvas.h"
#include "drawing/TextLayout.h"
#include "testing/CardWindow.h"
#include "uikit/ViewDrawing.h"

namespace kesu {
namespace {

/// Counts how often it is drawn.
class Probe : public View {
 public:
  using View::View;
  void draw(Canvas& canvas) const override {
    ++draws;
    canvas.fill(ViewDrawing::presentedBounds(*this), Color::blueColor());
  }
  mutable int draws = 0;
};

using testing::viewIn;

std::uint32_t pixelOf(const FlatFrame& frame, int x, int y) {
  return frame.pixels[y * frame.stride + x];
}

class RendererTest : public ::testing::Test {
 protected:
  const std::vector<FrameLayer>& layers() { return renderer_.layers(window_, 1920, 1080); }
  const FlatFrame& flat(int width = 1920, int height = 1080) { return renderer_.flatten(window_, width, height); }

  /// A dimmed backdrop with a card on it, as the popup has.
  void showCard() {
    backdrop_ = viewIn(window_, {0.0, 0.0, 1920.0, 1080.0}, Color::black().withAlpha(0.5));
    card_ = viewIn(*backdrop_, {600.0, 200.0, 500.0, 800.0}, Color::white());
    ViewDrawing::setComposited(*card_, true);
    card_->setClipsToBounds(true);
    probe_ = viewIn<Probe>(*card_, {100.0, 100.0, 40.0, 30.0});
  }

  Window window_;
  Renderer renderer_;
  ViewPtr backdrop_;
  ViewPtr card_;
  std::shared_ptr<Probe> probe_;
};

TEST_F(RendererTest, MakesColorsOfPlainViewsAndPicturesOfOthers) {
  showCard();
  const std::vector<FrameLayer> shown = layers();
  ASSERT_EQ(shown.size(), 2U);
  EXPECT_EQ(shown[0].pixels, nullptr);
  EXPECT_EQ(shown[0].color, Color::black().withAlpha(0.5));
  EXPECT_EQ(shown[0].width, 1920.0);
  ASSERT_NE(shown[1].pixels, nullptr);
  EXPECT_EQ(shown[1].x, 600.0);
  EXPECT_EQ(shown[1].pixelHeight, 800);
  EXPECT_EQ(shown[1].damage, (PixelRect{0, 0, 500, 800}));
  EXPECT_EQ(shown[1].pixels[shown[1].stride * 110 + 110], 0xFF0000FFU);
  EXPECT_NE(shown[0].id, shown[1].id);
}

TEST_F(RendererTest, MovesAndFadesPicturesWithoutDrawingThemAgain) {
  showCard();
  const std::vector<FrameLayer> before = layers();
  backdrop_->setAlpha(0.5);
  card_->setCenter({960.0, 800.0});
  card_->setAlpha(0.5);
  const std::vector<FrameLayer> after = layers();
  card_->setTransform(Transform::scale(2.0));
  const std::vector<FrameLayer> scaled = layers();
  EXPECT_EQ(probe_->draws, 1);
  EXPECT_EQ(after[1].id, before[1].id);
  EXPECT_EQ(after[1].pixels, before[1].pixels);
  EXPECT_TRUE(after[1].damage.isEmpty());
  EXPECT_EQ(after[0].alpha, 0.5);
  EXPECT_EQ(after[1].alpha, 0.25);
  EXPECT_EQ(after[1].y, 400.0);
  EXPECT_EQ(scaled[1].width, 1000.0);
  EXPECT_EQ(scaled[1].x, 460.0);
}

TEST_F(RendererTest, DrawsOnlyWhatChanged) {
  showCard();
  const auto other = viewIn<Probe>(*card_, {300.0, 300.0, 40.0, 30.0});
  layers();
  probe_->setFrame({120.0, 100.0, 40.0, 30.0});
  const PixelRect damage = layers()[1].damage;
  EXPECT_EQ(probe_->draws, 2);
  EXPECT_EQ(other->draws, 1);
  EXPECT_LE(std::abs(damage.x - 99), 1);
  EXPECT_LE(damage.width, 64);
  EXPECT_LE(damage.height, 34);
  EXPECT_TRUE(layers()[1].damage.isEmpty());
  EXPECT_EQ(flat().damage, (PixelRect{0, 0, 1920, 1080}));
  EXPECT_TRUE(flat().damage.isEmpty());
  card_->setCenter({card_->center().x, card_->center().y + 10.0});
  EXPECT_EQ(flat().damage, (PixelRect{600, 200, 500, 810}));
}

TEST_F(RendererTest, KeepsPixelsSharpAndPlacesOnScreensOfAnyShape) {
  showCard();
  card_->setFrame({600.4, 200.0, 500.0, 800.0});
  const struct {
    int width, height;
    double x, y;
    int pixelWidth;
  } cases[] = {{1920, 1080, 600.0, 200.0, 500},
               {1280, 720, 400.0, 133.0, 334},
               {3840, 2160, 1201.0, 400.0, 1000},
               {1440, 1080, 360.0, 200.0, 500},
               {192, 108, 60.0, 20.0, 50}};
  for (const auto& row : cases) {
    const FrameLayer layer = renderer_.layers(window_, row.width, row.height)[1];
    EXPECT_EQ(layer.x, row.x) << row.width;
    EXPECT_EQ(layer.y, row.y) << row.width;
    EXPECT_EQ(layer.pixelWidth, row.pixelWidth) << row.width;
    EXPECT_EQ(layer.width, layer.pixelWidth) << row.width;
  }
}

TEST_F(RendererTest, CropsPicturesThatLieInClippingViews) {
  const ViewPtr frame = viewIn(window_, {100.0, 100.0, 200.0, 200.0});
  frame->setClipsToBounds(true);
  const auto picture = viewIn<Probe>(*frame, {150.0, -20.0, 100.0, 100.0});
  ViewDrawing::setComposited(*picture, true);
  const FrameLayer layer = layers().at(0);
  EXPECT_EQ(layer.x, 250.0);
  EXPECT_EQ(layer.y, 100.0);
  EXPECT_EQ(layer.pixelWidth, 50);
  EXPECT_EQ(layer.pixelHeight, 80);
  EXPECT_EQ(pixelOf(flat(), 299, 179), 0xFF0000FFU);
  EXPECT_EQ(pixelOf(flat(), 300, 150), 0U);
  EXPECT_EQ(pixelOf(flat(), 260, 90), 0U);
}

TEST_F(RendererTest, DamagesAllThatAClippingViewReveals) {
  const ViewPtr frame = viewIn(window_, {100.0, 100.0, 200.0, 200.0});
  frame->setClipsToBounds(true);
  const ViewPtr picture = viewIn(*frame, {0.0, 0.0, 200.0, 600.0}, Color::redColor());
  ViewDrawing::setComposited(*picture, true);
  viewIn(*picture, {0.0, 400.0, 200.0, 200.0}, Color::blueColor());
  EXPECT_EQ(layers().at(0).damage, (PixelRect{0, 0, 200, 200}));
  EXPECT_EQ(pixelOf(flat(), 150, 150), 0xFFFF0000U);
  picture->setFrame({0.0, -400.0, 200.0, 600.0});
  EXPECT_EQ(layers().at(0).damage, (PixelRect{0, 0, 200, 200})) << "another part, as large as the one before";
  EXPECT_EQ(pixelOf(flat(), 150, 150), 0xFF0000FFU);
  EXPECT_TRUE(layers().at(0).damage.isEmpty());
  EXPECT_TRUE(flat().damage.isEmpty());
}

TEST_F(RendererTest, DrawsCornersBordersShadowsAndTheFocusedViewLast) {
  const ViewPtr pane = viewIn(window_, {100.0, 100.0, 300.0, 300.0}, Color::white());
  pane->setCornerRadius(40.0);
  pane->setClipsToBounds(true);
  pane->setBorder(2.0, Color::redColor());
  const auto covering = viewIn<Probe>(*pane, {-50.0, -50.0, 200.0, 200.0});
  const ViewPtr thrower = viewIn(*pane, {170.0, 170.0, 60.0, 60.0}, Color::white());
  thrower->setShadow({Color::black(), 0.8, 6.0, {0.0, 15.0}});
  const FlatFrame& frame = flat();
  EXPECT_EQ(pixelOf(frame, 103, 103), 0U);
  EXPECT_EQ(pixelOf(frame, 200, 101), 0xFFFF0000U);
  EXPECT_EQ(pixelOf(frame, 200, 103), 0xFF0000FFU);
  EXPECT_EQ(pixelOf(frame, 300, 300), 0xFFFFFFFFU);
  EXPECT_LT(pixelOf(frame, 300, 338) & 0xFF, 0xD0U);
  thrower->setClipsToBounds(true);
  EXPECT_EQ(pixelOf(flat(), 300, 338), 0xFFFFFFFFU);
}

TEST_F(RendererTest, ReleasesEverythingWhenTheLastViewLeaves) {
  showCard();
  EXPECT_EQ(pixelOf(flat(), 700, 500), 0xFFFFFFFFU);
  backdrop_->setAlpha(0.0);
  EXPECT_EQ(pixelOf(flat(), 700, 500), 0U);
  backdrop_->setAlpha(1.0);
  EXPECT_EQ(pixelOf(flat(), 700, 500), 0xFFFFFFFFU);
  backdrop_->removeFromSuperview();
  EXPECT_TRUE(layers().empty());
  const FlatFrame& last = flat();
  ASSERT_NE(last.pixels, nullptr);
  EXPECT_EQ(pixelOf(last, 700, 500), 0U);
  window_.addSubview(backdrop_);
  EXPECT_EQ(pixelOf(flat(), 700, 500), 0xFFFFFFFFU);
}

TEST_F(RendererTest, ReleasesTheFontsWhenDestroyedWhileSomethingIsShown) {
  auto renderer = std::make_unique<Renderer>();
  viewIn<Label>(window_, {0.0, 0.0, 400.0, 60.0})->setText("Tonight");
  renderer->layers(window_, 1920, 1080);
  EXPECT_TRUE(areFontsReady());
  renderer.reset();
  EXPECT_FALSE(areFontsReady());
}

TEST_F(RendererTest, AcceptsAnyNumbers) {
  const double numbers[] = {0.0, -3.0, 0.4, 1e9, -1e9, 1e-9, std::nan(""), std::numeric_limits<double>::infinity()};
  showCard();
  for (const double number : numbers) {
    for (const ViewPtr& view : {backdrop_, card_, ViewPtr(probe_)}) {
      view->setFrame({number, number, 300.0, number});
      view->setTransform({number, 1.0, number, 0.0});
      view->setCornerRadius(number);
      view->setBorder(number, Color::redColor());
      view->setShadow({Color::black(), number, number, {number, number}});
      view->setClipsToBounds(false);
      for (const FrameLayer& layer : renderer_.layers(window_, 192, 108)) {
        EXPECT_TRUE(std::isfinite(layer.x + layer.y + layer.width + layer.height + layer.alpha));
        EXPECT_LE(std::int64_t{layer.pixelWidth} * layer.pixelHeight, 4 * 1920 * 1080);
      }
      flat(192, 108);
      viewToImage(*view);
    }
  }
}

TEST_F(RendererTest, MakesTransparentPicturesOfViews) {
  View view({50.0, 60.0, 40.0, 30.0});
  view.setTransform(Transform::scale(3.0));
  view.setAlpha(0.5);
  const auto inner = viewIn<Probe>(view, {10.0, 10.0, 10.0, 10.0});
  ViewDrawing::setComposited(*inner, true);
  const ImagePtr image = viewToImage(view);
  ASSERT_NE(image, nullptr);
  EXPECT_EQ(image->width(), 40);
  EXPECT_EQ(image->height(), 30);
  EXPECT_EQ(image->pixels()[0], 0U);
  EXPECT_EQ(image->pixels()[15 * 40 + 15], 0xFF0000FFU);
  EXPECT_EQ(viewToImage(View()), nullptr);
  EXPECT_EQ(viewToImage(View({0.0, 0.0, 1e6, 1e6})), nullptr);
}

// ---- Random trees -------------------------------------------------------------------------------------------------

/// Builds views and changes them at random, the same way for the same seed.
class RandomTree {
 public:
  RandomTree(unsigned seed, Window& window) : random_(seed), window_(window) {
    for (int i = 0; i < 12; ++i) {
      add();
    }
  }

  void change() {
    const ViewPtr view = any();
    switch (below(14)) {
      case 0:
        return add();
      case 1:
        return remove(view);
      case 2:
        return view->setFrame(frame());
      case 3:
        return view->setCenter({number(1920.0), number(1080.0)});
      case 4:
        return view->setAlpha(below(3) / 2.0);
      case 5:
        return view->setHidden(below(2) == 0);
      case 6:
        return view->setBackgroundColor(color());
      case 7:
        return view->setCornerRadius(number(200.0));
      case 8:
        return view->setClipsToBounds(below(2) == 0);
      case 9:
        return view->setShadow({color(), below(3) / 2.0, number(60.0), {number(80.0), number(80.0)}});
      case 10:
        return view->setTransform({0.5 + number(1.0), 0.5 + number(1.0), number(100.0), 0.0});
      case 11:
        return ViewDrawing::setComposited(*view, below(2) == 0);
      case 12:
        return view->setBorder(number(40.0), color());
      default:
        return view->superview() != nullptr ? view->superview()->bringSubviewToFront(*view) : void();
    }
  }

 private:
  unsigned below(unsigned limit) { return static_cast<unsigned>(random_()) % limit; }
  double number(double limit) { return std::floor(limit * 4.0 * below(1000) / 1000.0) / 4.0; }
  Rect frame() { return {number(1500.0) - 200.0, number(900.0) - 100.0, number(900.0), number(600.0)}; }
  Color color() { return {number(1.0), number(1.0), number(1.0), below(2) == 0 ? 1.0 : 0.5}; }
  ViewPtr any() { return views_[below(static_cast<unsigned>(views_.size()))]; }

  void add() {
    View& superview = views_.empty() || below(3) == 0 ? static_cast<View&>(window_) : *any();
    views_.push_back(below(4) == 0 ? viewIn<Probe>(superview, frame()) : viewIn(superview, frame(), color()));
  }
  void remove(const ViewPtr& view) {
    view->removeFromSuperview();
    if (views_.size() > 10) {
      std::erase(views_, view);
    }
  }

  std::mt19937 random_;
  Window& window_;
  std::vector<ViewPtr> views_;
};

// Cairo rounds the same soft edge otherwise when less of it is in sight. What was not drawn again differs by more.
constexpr int kRounding = 12;

int distance(std::uint32_t a, std::uint32_t b) {
  int largest = 0;
  for (unsigned shift = 0; shift < 32; shift += 8) {
    largest =
        std::max(largest, std::abs(static_cast<int>((a >> shift) & 0xFF) - static_cast<int>((b >> shift) & 0xFF)));
  }
  return largest;
}

class RandomTreeTest : public ::testing::TestWithParam<unsigned> {};

TEST_P(RandomTreeTest, DrawsTheSameStepByStepAsAtOnce) {
  Window window;
  Renderer renderer;
  RandomTree tree(GetParam(), window);
  for (int step = 0; step < 150; ++step) {
    tree.change();
    const FlatFrame& gradual = renderer.flatten(window, 192, 108);
    Renderer other;
    const FlatFrame& atOnce = other.flatten(window, 192, 108);
    for (int i = 0; i < 192 * 108; ++i) {
      ASSERT_LE(distance(gradual.pixels[i], atOnce.pixels[i]), kRounding)
          << "step " << step << " at " << i % 192 << ", " << i / 192;
    }
  }
}

// Blends as the definition of "over" says, in floating point.
void blend(std::vector<double>& screen, const FrameLayer& layer, int x, int y, int width) {
  double channels[4] = {layer.color.alpha * 255.0, layer.color.red * layer.color.alpha * 255.0,
                        layer.color.green * layer.color.alpha * 255.0, layer.color.blue * layer.color.alpha * 255.0};
  const int column = x - static_cast<int>(layer.x);
  const int row = y - static_cast<int>(layer.y);
  if (column < 0 || row < 0 || column >= layer.width || row >= layer.height) {
    return;
  }
  for (unsigned i = 0; layer.pixels != nullptr && i < 4; ++i) {
    channels[i] = (layer.pixels[row * layer.stride + column] >> (24 - 8 * i)) & 0xFF;
  }
  double* below = &screen[static_cast<std::size_t>(y * width + x) * 4];
  const double opacity = channels[0] / 255.0 * layer.alpha;
  for (int i = 0; i < 4; ++i) {
    below[i] = channels[i] * layer.alpha + below[i] * (1.0 - opacity);
  }
}

TEST_F(RendererTest, FlattensTheLayers) {
  showCard();
  card_->setCornerRadius(30.0);
  card_->setAlpha(0.7);
  backdrop_->setAlpha(0.6);
  const std::vector<FrameLayer> shown = renderer_.layers(window_, 192, 108);
  std::vector<double> expected(192 * 108 * 4);
  for (const FrameLayer& layer : shown) {
    for (int i = 0; i < 192 * 108; ++i) {
      blend(expected, layer, i % 192, i / 192, 192);
    }
  }
  const FlatFrame& frame = flat(192, 108);
  const ImagePtr snapshot = renderer_.snapshot(window_, 192, 108);
  for (int i = 0; i < 192 * 108 * 4; ++i) {
    const std::uint32_t pixel = frame.pixels[i / 4];
    ASSERT_NEAR((pixel >> (24 - 8 * (i % 4))) & 0xFF, expected[static_cast<std::size_t>(i)], 2.0) << i / 4;
    ASSERT_EQ(snapshot->pixels()[i / 4], pixel);
  }
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomTreeTest, ::testing::Range(1U, 9U));

}  // namespace
}  // namespace kesu
