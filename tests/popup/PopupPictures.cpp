#include "tests/popup/PopupPictures.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <fstream>
#include <memory>

#include "drawing/Pictures.h"
#include "drawing/TextLayout.h"

namespace kesu::testing {
namespace {

constexpr Rect kScreen{0.0, 0.0, 1920.0, 1080.0};
constexpr int kBlock = 8;  // Pixels.
constexpr int kStep = 4;

using Colors = std::array<double, 3>;

Rect wholeOf(const Image& image) {
  return {0.0, 0.0, static_cast<double>(image.width()), static_cast<double>(image.height())};
}

Colors blockMean(const Image& image, int left, int top) {
  Colors sums{};
  for (int y = top; y < top + kBlock; ++y) {
    const std::uint32_t* row = image.pixels() + std::ptrdiff_t{y} * image.width();
    for (int x = left; x < left + kBlock; ++x) {
      for (std::size_t channel = 0; channel < sums.size(); ++channel) {
        sums[channel] += row[x] >> (8U * channel) & 255U;
      }
    }
  }
  for (double& sum : sums) {
    sum /= kBlock * kBlock;
  }
  return sums;
}

double farthest(const Colors& one, const Colors& other) {
  double most = 0.0;
  for (std::size_t channel = 0; channel < one.size(); ++channel) {
    most = std::max(most, std::abs(one[channel] - other[channel]));
  }
  return most;
}

}  // namespace

Sheet::Sheet(int columns, int rows)
    : width(columns),
      height(rows),
      pixels(static_cast<std::size_t>(columns) * static_cast<std::size_t>(rows), 0xFF000000U) {}

void drawHost(Canvas& canvas) {
  canvas.fillGradient(kScreen, {0.16, 0.20, 0.30, 1.0}, {0.04, 0.05, 0.09, 1.0});
  const TextLayout title("Tonight", {{"Roboto", 54.0}, TextAlignment::Natural, 1, 1.0}, {800.0, 80.0});
  canvas.drawText(title, {96.0, 70.0}, Color::white());
  for (int row = 0; row < 3; ++row) {
    for (int column = 0; column < 6; ++column) {
      const double part = 0.16 * (column % 3);
      canvas.fill({96.0 + 296.0 * column, 190.0 + 300.0 * row, 272.0, 260.0},
                  {0.30 + part, 0.34, 0.62 - part * 0.8, 1.0}, 12.0);
    }
  }
}

ImagePtr overHost(const ImagePtr& popup) {
  Sheet sheet(popup->width(), popup->height());
  const auto canvas = sheet.canvas(popup->height() / kScreen.height);
  drawHost(*canvas);
  canvas->drawImage(popup, wholeOf(*popup), kScreen);
  return sheet.image();
}

ImagePtr thumbnail(const ImagePtr& popup, bool hasHost) {
  Sheet sheet(kThumbnailWidth, kThumbnailHeight);
  const auto canvas = sheet.canvas(kThumbnailHeight / kPopupPlace.height);
  canvas->translate(-kPopupPlace.x, -kPopupPlace.y);
  if (hasHost) {
    drawHost(*canvas);
  } else {
    canvas->fill(kScreen, {0.1, 0.14, 0.3, 1.0});
  }
  canvas->drawImage(popup, wholeOf(*popup), kScreen);
  return sheet.image();
}

Difference differenceOf(const Image& one, const Image& other) {
  Difference difference;
  int count = 0;
  for (int y = 0; y + kBlock <= one.height(); y += kStep) {
    for (int x = 0; x + kBlock <= one.width(); x += kStep) {
      const double far = farthest(blockMean(one, x, y), blockMean(other, x, y));
      difference.mean += far;
      difference.largest = std::max(difference.largest, far);
      ++count;
    }
  }
  difference.mean /= std::max(1, count);
  return difference;
}

bool writePng(const std::string& path, const Image& image) {
  const auto png = encodePng(image);
  std::ofstream file(path, std::ios::binary);
  file << png.value_or("");
  return png.has_value() && file.good();
}

}  // namespace kesu::testing
