#include "drawing_cairo/CairoCanvas.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

namespace kesu {
namespace {

constexpr Color kRed{1.0, 0.0, 0.0, 1.0};

/// A drawing of 100 x 100 pixels with a margin of rows and columns that nothing may touch.
class CairoCanvasTest : public ::testing::Test {
 protected:
  static constexpr int kSide = 100;
  static constexpr int kStride = 110;
  static constexpr std::uint32_t kUntouched = 0x12345678;

  CairoCanvasTest() : pixels_(kStride * (kSide + 10), kUntouched) { clear(); }
  void clear() {
    for (int y = 0; y < kSide; ++y) {
      std::fill_n(pixels_.begin() + y * kStride, kSide, 0U);
    }
  }
  ~CairoCanvasTest() override {
    for (int i = 0; i < kStride * (kSide + 10); ++i) {
      if (i % kStride >= kSide || i / kStride >= kSide) {
        EXPECT_EQ(pixels_[static_cast<std::size_t>(i)], kUntouched) << i;
      }
    }
  }

  std::unique_ptr<Canvas> canvasAt(double scale) { return makeCanvas({pixels_.data(), kSide, kSide, kStride, scale}); }
  std::uint32_t at(int x, int y) const { return pixels_[static_cast<std::size_t>(y * kStride + x)]; }
  int alphaAt(int x, int y) const { return static_cast<int>(at(x, y) >> 24); }

  std::vector<std::uint32_t> pixels_;
};

ImagePtr checkered(int side) {
  std::vector<std::uint32_t> pixels;
  for (int i = 0; i < side * side; ++i) {
    pixels.push_back((i % side + i / side) % 2 == 0 ? 0xFFFF0000 : 0xFF0000FF);
  }
  return std::make_shared<const Image>(side, side, std::move(pixels));
}

TEST_F(CairoCanvasTest, FillsRectanglesInPoints) {
  const auto canvas = canvasAt(2.0);
  canvas->fill({10.0, 10.0, 20.0, 20.0}, kRed.withAlpha(0.5));
  EXPECT_EQ(at(20, 20), 0x80800000U);
  EXPECT_EQ(at(59, 59), 0x80800000U);
  EXPECT_EQ(at(60, 59), 0U);
  EXPECT_EQ(at(19, 20), 0U);
}

TEST_F(CairoCanvasTest, DrawsAPartAsTheWholeWouldBe) {
  const auto draw = [](Canvas& canvas) {
    canvas.fill({3.3, 3.3, 40.0, 40.0}, kRed, 9.0);
    canvas.drawShadow({50.0, 20.0, 20.0, 20.0}, 3.0, Color::black(), 0.5, 3.0, {1.0, 2.0});
    canvas.drawText(TextLayout("whole", {}, {90.0, 30.0}), {5.5, 60.5}, Color::white());
  };
  draw(*canvasAt(1.3));
  std::vector<std::uint32_t> part(40 * 30);
  draw(*makeCanvas({part.data(), 40, 30, 40, 1.3, 37, 55}));
  for (int i = 0; i < 40 * 30; ++i) {
    EXPECT_EQ(part[static_cast<std::size_t>(i)], at(37 + i % 40, 55 + i / 40));
  }
}

TEST_F(CairoCanvasTest, RoundsCorners) {
  const auto canvas = canvasAt(1.0);
  canvas->fill({0.0, 0.0, 50.0, 50.0}, kRed, 20.0);
  EXPECT_EQ(at(2, 2), 0U);
  EXPECT_EQ(at(25, 1), 0xFFFF0000U);
  canvas->save();
  canvas->clip({50.0, 50.0, 50.0, 50.0}, 20.0);
  canvas->fill({0.0, 0.0, 100.0, 100.0}, kRed);
  canvas->restore();
  EXPECT_EQ(at(52, 52), 0U);
  EXPECT_EQ(at(75, 75), 0xFFFF0000U);
  EXPECT_EQ(at(75, 25), 0U);
}

TEST_F(CairoCanvasTest, StrokesInsideTheEdges) {
  const auto canvas = canvasAt(1.0);
  canvas->strokeInside({10.0, 10.0, 50.0, 50.0}, 2.0, kRed);
  EXPECT_EQ(at(9, 30), 0U);
  EXPECT_EQ(at(10, 30), 0xFFFF0000U);
  EXPECT_EQ(at(11, 30), 0xFFFF0000U);
  EXPECT_EQ(at(12, 30), 0U);
  EXPECT_EQ(at(59, 30), 0xFFFF0000U);
  EXPECT_EQ(at(60, 30), 0U);
}

TEST_F(CairoCanvasTest, DrawsGroupsWithOneOpacity) {
  const auto canvas = canvasAt(1.0);
  canvas->beginGroup();
  canvas->fill({0.0, 0.0, 50.0, 50.0}, Color::white());
  canvas->fill({10.0, 10.0, 30.0, 30.0}, kRed);
  canvas->endGroup(0.5);
  EXPECT_EQ(at(20, 20), 0x80800000U);
  canvas->beginGroup();
  canvas->fill({0.0, 50.0, 50.0, 50.0}, kRed);
  canvas->endGroup(1.0, {0.0, 50.0, 50.0, 50.0}, 25.0);
  EXPECT_EQ(at(2, 97), 0U);
  EXPECT_EQ(at(25, 75), 0xFFFF0000U);
}

TEST_F(CairoCanvasTest, FillsGradientsFromTopToBottom) {
  const auto canvas = canvasAt(1.0);
  canvas->fillGradient({0.0, 0.0, 50.0, 100.0}, Color::clear(), Color::black());
  EXPECT_LT(alphaAt(10, 1), 10);
  EXPECT_NEAR(alphaAt(10, 50), 128, 4);
  EXPECT_GT(alphaAt(10, 98), 245);
  EXPECT_EQ(alphaAt(60, 50), 0);
}

TEST_F(CairoCanvasTest, ShadowsFadeEvenlyAndEndWithinTheirReach) {
  for (const double blur : {0.0, 1.0, 4.0, 10.0}) {
    const auto canvas = canvasAt(1.0);
    clear();
    canvas->drawShadow({35.0, 25.0, 30.0, 30.0}, 4.0, Color::black(), 1.0, blur, {0.0, 10.0});
    EXPECT_GT(alphaAt(50, 50), 190) << blur;
    EXPECT_NEAR(alphaAt(34, 50), alphaAt(65, 50), 1) << blur;
    EXPECT_NEAR(alphaAt(50, 34), alphaAt(50, 65), 1) << blur;
    for (int x = 1; x < 50; ++x) {
      EXPECT_GE(alphaAt(x, 50) + 1, alphaAt(x - 1, 50)) << blur << " at " << x;
    }
    const int reach = static_cast<int>(std::ceil(3.0 * blur));
    EXPECT_EQ(alphaAt(34 - reach, 50), 0) << blur;
    EXPECT_EQ(alphaAt(50, 65 + reach), 0) << blur;
  }
}

TEST_F(CairoCanvasTest, StretchesPicturesAndAveragesWhatIsMadeSmaller) {
  const auto canvas = canvasAt(1.0);
  canvas->drawImage(checkered(2), {0.0, 0.0, 1.0, 1.0}, {0.0, 0.0, 20.0, 20.0});
  EXPECT_EQ(at(1, 1), 0xFFFF0000U);
  for (int again = 0; again < 2; ++again) {
    const ImagePtr image = checkered(200);
    canvas->drawImage(image, {0.0, 0.0, 200.0, 200.0}, {50.0, 50.0, 20.0, 20.0});
    EXPECT_NEAR(static_cast<int>((at(60, 60) >> 16) & 0xFF), 128, 12);
    EXPECT_NEAR(static_cast<int>(at(60, 60) & 0xFF), 128, 12);
    EXPECT_EQ(alphaAt(50, 50), 255);
    EXPECT_EQ(alphaAt(49, 50), 0);
    EXPECT_EQ(image.use_count(), 1);
  }
  releaseDrawingCaches();
}

TEST_F(CairoCanvasTest, LeavesOutWhatHasNoFinitePlace) {
  const double numbers[] = {0.0, -1.0, 1e7, 1e300, std::nan(""), std::numeric_limits<double>::infinity()};
  const auto canvas = canvasAt(1.0);
  canvas->restore();
  canvas->endGroup(1.0);
  for (const double number : numbers) {
    const Rect wild{number, 0.0, number, 10.0};
    canvas->save();
    canvas->beginGroup();
    canvas->fill(wild, kRed, number);
    canvas->fillGradient(wild, kRed, kRed.withAlpha(number));
    canvas->strokeInside(wild, number, kRed, number);
    canvas->drawShadow(wild, number, kRed, number, number, {number, number});
    canvas->drawImage(checkered(4), wild, wild);
    canvas->drawImage(nullptr, wild, wild);
    canvas->drawText(TextLayout("text", {}, wild.size()), wild.origin(), kRed);
    canvas->clip(wild, number);
    canvas->scale(number, number);
    canvas->translate(number, number);
    canvas->endGroup(number);
    canvas->restore();
  }
  clear();
  canvas->fill({-1e300, -1e300, 2e300, 2e300}, kRed);
  EXPECT_EQ(at(50, 50), 0xFFFF0000U);
  makeCanvas({nullptr, 0, 0, 0, std::nan("")})->fill({0.0, 0.0, 10.0, 10.0}, kRed);
}

}  // namespace
}  // namespace kesu
