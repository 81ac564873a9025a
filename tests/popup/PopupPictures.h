#pragma once

#include <kesu/graphics/Image.h>

#include <cstdint>
#include <string>
#include <vector>

#include "drawing/Canvas.h"

namespace kesu::testing {

/// Pixels that are drawn into, from black on.
struct Sheet {
  Sheet(int columns, int rows);

  /// A canvas on all of it, `scale` pixels a point.
  std::unique_ptr<Canvas> canvas(double scale) { return makeCanvas({pixels.data(), width, height, width, scale}); }
  ImagePtr image() const { return std::make_shared<const Image>(width, height, pixels); }

  int width;
  int height;
  std::vector<std::uint32_t> pixels;
};

/// The popup's place with some of the screen beside it, in points.
inline constexpr Rect kPopupPlace{600.0, 0.0, 720.0, 1080.0};
inline constexpr int kThumbnailWidth = 300;
inline constexpr int kThumbnailHeight = 450;

/// The dark start page of an app, 1920 x 1080 points, as a popup lies over it.
void drawHost(Canvas& canvas);

/// A whole screen: the host's page and the popup over it.
ImagePtr overHost(const ImagePtr& popup);

/// kPopupPlace as a small picture: the popup over the host's page, or over plain dark blue.
ImagePtr thumbnail(const ImagePtr& popup, bool hasHost);

/// Returns how much two pictures of one size differ to the eye: the largest difference of a colour, from 0 to 255, in
/// the means of small overlapping blocks. Text that is hinted in another way hardly counts; what is moved, missing or
/// of another colour does.
struct Difference {
  double mean = 0.0;
  double largest = 0.0;

  bool isSlight() const { return mean <= 1.5 && largest <= 24.0; }
};
Difference differenceOf(const Image& one, const Image& other);

bool writePng(const std::string& path, const Image& image);

}  // namespace kesu::testing
