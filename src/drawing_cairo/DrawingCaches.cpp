#include "drawing_cairo/DrawingCaches.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numbers>
#include <vector>

namespace kesu {
namespace {

constexpr std::size_t kMostShadows = 8;  // A card and its buttons, at two sizes while one grows.
constexpr std::size_t kMostScaled = 6;
constexpr std::size_t kMostScaledBytes = std::size_t{12} * 1024 * 1024;  // One picture of a full 1080p screen is 8 MB.
constexpr int kBlurPasses = 3;  // Three box averages are within 3 % of a Gaussian blur.

/// The width of each of three box averages that look like a Gaussian blur. Odd, so that the average stays centred, and
/// such that the three reach no farther than three times the blur.
int boxWidth(double blur) {
  const double width = blur * 3.0 * std::sqrt(2.0 * std::numbers::pi) / 4.0 + 0.5;
  return 2 * std::min(static_cast<int>(width) / 2, static_cast<int>(blur)) + 1;
}

struct Mask {
  std::uint8_t* bytes;
  int width;
  int height;
  std::ptrdiff_t stride;
};

// Averages each pixel with its neighbours along a line of `count` pixels that lie `step` bytes apart.
void averageLine(std::uint8_t* line, int count, std::ptrdiff_t step, int box, std::vector<std::uint8_t>& before) {
  before.resize(static_cast<std::size_t>(count));
  for (int i = 0; i < count; ++i) {
    before[static_cast<std::size_t>(i)] = line[i * step];
  }
  const int half = box / 2;
  const auto valueAt = [&](int i) { return i >= 0 && i < count ? unsigned{before[static_cast<std::size_t>(i)]} : 0U; };
  unsigned sum = 0;
  for (int i = 0; i < half; ++i) {
    sum += valueAt(i);
  }
  for (int i = 0; i < count; ++i) {
    sum += valueAt(i + half);
    line[i * step] = static_cast<std::uint8_t>((sum + static_cast<unsigned>(half)) / static_cast<unsigned>(box));
    sum -= valueAt(i - half);
  }
}

void blur(const Mask& mask, int box) {
  std::vector<std::uint8_t> line;
  for (int pass = 0; pass < kBlurPasses; ++pass) {
    for (int y = 0; y < mask.height; ++y) {
      averageLine(mask.bytes + y * mask.stride, mask.width, 1, box, line);
    }
    for (int x = 0; x < mask.width; ++x) {
      averageLine(mask.bytes + x, mask.height, mask.stride, box, line);
    }
  }
}

SurfaceHandle makeShadow(const ShadowShape& shape) {
  const int margin = shape.margin();
  SurfaceHandle surface(
      cairo_image_surface_create(CAIRO_FORMAT_A8, shape.width + 2 * margin, shape.height + 2 * margin));
  const CairoHandle cairo(cairo_create(surface.get()));
  const double inset = margin;
  addRoundedRect(cairo.get(), {inset, inset, double(shape.width), double(shape.height)}, shape.cornerRadius);
  cairo_fill(cairo.get());
  cairo_surface_flush(surface.get());
  if (std::uint8_t* bytes = cairo_image_surface_get_data(surface.get()); bytes != nullptr) {
    blur({bytes, cairo_image_surface_get_width(surface.get()), cairo_image_surface_get_height(surface.get()),
          cairo_image_surface_get_stride(surface.get())},
         boxWidth(shape.blur));
    cairo_surface_mark_dirty(surface.get());
  }
  return surface;
}

SurfaceHandle makeScaled(const Image& image, const Rect& source, int width, int height) {
  SurfaceHandle surface(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, width, height));
  const CairoHandle cairo(cairo_create(surface.get()));
  paintImage(cairo.get(), image, source, {0.0, 0.0, double(width), double(height)}, CAIRO_FILTER_GOOD);
  return surface;
}

bool isSameObject(const std::weak_ptr<const Image>& kept, const ImagePtr& image) {
  return !kept.owner_before(image) && !image.owner_before(kept);
}

}  // namespace

int ShadowShape::margin() const {
  return boxWidth(blur) / 2 * kBlurPasses;
}

DrawingCaches& DrawingCaches::shared() {
  static auto& shared = *new DrawingCaches;  // Never destroyed: threads may still draw while the process ends.
  return shared;
}

cairo_surface_t* DrawingCaches::shadow(const ShadowShape& shape) {
  const auto found =
      std::find_if(shadows_.begin(), shadows_.end(), [&](const ShadowEntry& entry) { return entry.shape == shape; });
  if (found != shadows_.end()) {
    shadows_.splice(shadows_.begin(), shadows_, found);
  } else {
    shadows_.push_front({shape, makeShadow(shape)});
    shadows_.resize(std::min(shadows_.size(), kMostShadows));
  }
  return shadows_.front().mask.get();
}

cairo_surface_t* DrawingCaches::scaled(const ImagePtr& image, const Rect& source, int width, int height) {
  const auto found = std::find_if(scaled_.begin(), scaled_.end(), [&](const ScaledEntry& entry) {
    return isSameObject(entry.image, image) && entry.source == source && entry.width == width && entry.height == height;
  });
  if (found != scaled_.end()) {
    scaled_.splice(scaled_.begin(), scaled_, found);
  } else {
    scaled_.push_front({image, source, width, height, makeScaled(*image, source, width, height)});
    trimScaled();
  }
  return scaled_.front().picture.get();
}

void DrawingCaches::trimScaled() {
  scaled_.remove_if([](const ScaledEntry& entry) { return entry.image.expired(); });
  std::size_t bytes = 0;
  std::size_t count = 0;
  const auto firstTooMany = std::find_if(scaled_.begin(), scaled_.end(), [&](const ScaledEntry& entry) {
    bytes += static_cast<std::size_t>(entry.width) * static_cast<std::size_t>(entry.height) * sizeof(std::uint32_t);
    return ++count > kMostScaled || (count > 1 && bytes > kMostScaledBytes);
  });
  scaled_.erase(firstTooMany, scaled_.end());
}

void DrawingCaches::release() {
  shadows_.clear();
  scaled_.clear();
}

void paintPattern(cairo_t* cairo, cairo_pattern_t* pattern, const Rect& source, const Rect& target,
                  cairo_filter_t filter) {
  const double factorX = source.width / target.width;
  const double factorY = source.height / target.height;
  cairo_matrix_t toSource;
  cairo_matrix_init(&toSource, factorX, 0.0, 0.0, factorY, source.x - target.x * factorX,
                    source.y - target.y * factorY);
  cairo_pattern_set_matrix(pattern, &toSource);
  cairo_pattern_set_filter(pattern, filter);
  cairo_pattern_set_extend(pattern, CAIRO_EXTEND_PAD);
  cairo_set_source(cairo, pattern);
  cairo_rectangle(cairo, target.x, target.y, target.width, target.height);
  cairo_fill(cairo);
  cairo_set_source_rgb(cairo, 0.0, 0.0, 0.0);  // Releases the pixels, which may be destroyed.
}

void paintImage(cairo_t* cairo, const Image& image, const Rect& source, const Rect& target, cairo_filter_t filter) {
  const SurfaceHandle surface = surfaceOver(image.pixels(), image.width(), image.height(), image.width(),
                                            image.isOpaque() ? CAIRO_FORMAT_RGB24 : CAIRO_FORMAT_ARGB32);
  const PatternHandle pattern(cairo_pattern_create_for_surface(surface.get()));
  paintPattern(cairo, pattern.get(), source, target, filter);
}

Rect clipOf(cairo_t* cairo) {
  double left = 0.0;
  double top = 0.0;
  double right = 0.0;
  double bottom = 0.0;
  cairo_clip_extents(cairo, &left, &top, &right, &bottom);
  return {left, top, right - left, bottom - top};
}

void addRoundedRect(cairo_t* cairo, const Rect& rect, double cornerRadius) {
  const double radius = std::min({cornerRadius, rect.width / 2.0, rect.height / 2.0});
  if (!(radius > 0.0)) {
    cairo_rectangle(cairo, rect.x, rect.y, rect.width, rect.height);
    return;
  }
  const double quarter = std::numbers::pi / 2.0;
  cairo_new_sub_path(cairo);
  cairo_arc(cairo, rect.right() - radius, rect.y + radius, radius, -quarter, 0.0);
  cairo_arc(cairo, rect.right() - radius, rect.bottom() - radius, radius, 0.0, quarter);
  cairo_arc(cairo, rect.x + radius, rect.bottom() - radius, radius, quarter, 2.0 * quarter);
  cairo_arc(cairo, rect.x + radius, rect.y + radius, radius, 2.0 * quarter, 3.0 * quarter);
  cairo_close_path(cairo);
}

}  // namespace kesu
