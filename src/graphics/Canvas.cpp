#include "graphics/Canvas.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "graphics/CairoHandles.h"
#include "graphics/DrawingCaches.h"

namespace kesu {
namespace {

constexpr double kLargest = 4000000.0;                // Beyond this, Cairo's coordinates overflow.
constexpr int kLargestScaledSide = 4096;              // Larger copies are not cached: 64 MB each.
constexpr double kLargestMaskArea = 1024.0 * 1024.0;  // In pixels of one byte.
constexpr double kLargestMaskBlur = 16.0;             // In pixels: a softer edge looks the same when it is stretched.

bool isUsable(double number) {
  return std::isfinite(number) && std::abs(number) <= kLargest;
}

// Huge rectangles are cut off far outside of any screen.
Rect usable(const Rect& rect) {
  constexpr Rect kEverything{-kLargest, -kLargest, 2.0 * kLargest, 2.0 * kLargest};
  const bool isFinite =
      std::isfinite(rect.x) && std::isfinite(rect.y) && std::isfinite(rect.width) && std::isfinite(rect.height);
  return isFinite ? rect.intersected(kEverything) : Rect{};
}

double share(double value) {
  return std::isfinite(value) ? std::clamp(value, 0.0, 1.0) : 0.0;
}

double length(double value) {
  return isUsable(value) ? std::max(0.0, value) : 0.0;
}

void setColor(cairo_t* cairo, const Color& color, double opacity = 1.0) {
  cairo_set_source_rgba(cairo, share(color.red), share(color.green), share(color.blue),
                        share(color.alpha) * share(opacity));
}

}  // namespace

struct Canvas::State {
  enum class Scope { Saved, Group };

  State(std::uint32_t* pixels, int width, int height, int stride)
      : surface(cairo_image_surface_create_for_data(reinterpret_cast<unsigned char*>(pixels), CAIRO_FORMAT_ARGB32,
                                                    width, height, stride * static_cast<int>(sizeof(std::uint32_t)))) {}

  void begin(double scale, int left, int top) {
    cairo_surface_set_device_offset(surface.get(), -left, -top);
    context.reset(cairo_create(surface.get()));
    cairo_scale(cairo(), scale, scale);
  }

  cairo_t* cairo() const { return context.get(); }
  bool isIn(Scope scope) const { return !scopes.empty() && scopes.back() == scope; }
  void paint(const Rect& rect, double cornerRadius) const;
  /// Pixels a point at the moment, along x and y.
  Size pixelsPerPoint() const;
  bool isVisible(const Rect& rect) const;

  SurfaceHandle surface;
  CairoHandle context;
  std::vector<Scope> scopes;
};

void Canvas::State::paint(const Rect& rect, double cornerRadius) const {
  addRoundedRect(cairo(), rect, length(cornerRadius));
  cairo_fill(cairo());
}

Size Canvas::State::pixelsPerPoint() const {
  cairo_matrix_t matrix;
  cairo_get_matrix(cairo(), &matrix);
  return {std::abs(matrix.xx), std::abs(matrix.yy)};
}

bool Canvas::State::isVisible(const Rect& rect) const {
  const Rect clip = clipOf(cairo());
  return rect.x < clip.right() && rect.right() > clip.x && rect.y < clip.bottom() && rect.bottom() > clip.y;
}

Canvas::Canvas(std::uint32_t* pixels, int width, int height, int stride, double scale, int left, int top)
    : state_(std::make_unique<State>(pixels, width, height, stride)) {
  state_->begin(isUsable(scale) && scale > 0.0 ? scale : 1.0, left, top);
}

Canvas::~Canvas() = default;

void Canvas::save() {
  cairo_save(state_->cairo());
  state_->scopes.push_back(State::Scope::Saved);
}

void Canvas::restore() {
  if (state_->isIn(State::Scope::Saved)) {
    state_->scopes.pop_back();
    cairo_restore(state_->cairo());
  }
}

void Canvas::translate(double dx, double dy) {
  if (isUsable(dx) && isUsable(dy)) {
    cairo_translate(state_->cairo(), dx, dy);
  }
}

void Canvas::scale(double factorX, double factorY) {
  // Cairo stops drawing for good with a scale of 0, which has no inverse.
  const auto factor = [](double wanted) { return isUsable(wanted) && std::abs(wanted) > 1e-6 ? wanted : 1e-6; };
  cairo_scale(state_->cairo(), factor(factorX), factor(factorY));
}

void Canvas::clip(const Rect& rect, double cornerRadius) {
  addRoundedRect(state_->cairo(), usable(rect), length(cornerRadius));
  cairo_clip(state_->cairo());
}

Rect Canvas::clipBounds() const {
  return clipOf(state_->cairo());
}

void Canvas::beginGroup() {
  cairo_push_group(state_->cairo());
  state_->scopes.push_back(State::Scope::Group);
}

void Canvas::endGroup(double alpha) {
  if (state_->isIn(State::Scope::Group)) {
    state_->scopes.pop_back();
    cairo_pop_group_to_source(state_->cairo());
    cairo_paint_with_alpha(state_->cairo(), share(alpha));
    cairo_set_source_rgb(state_->cairo(), 0.0, 0.0, 0.0);  // Releases the group's pixels.
  }
}

void Canvas::endGroup(double alpha, const Rect& rect, double cornerRadius) {
  if (state_->isIn(State::Scope::Group)) {
    state_->scopes.pop_back();
    cairo_pop_group_to_source(state_->cairo());
    cairo_save(state_->cairo());
    clip(rect, cornerRadius);
    cairo_paint_with_alpha(state_->cairo(), share(alpha));
    cairo_restore(state_->cairo());
    cairo_set_source_rgb(state_->cairo(), 0.0, 0.0, 0.0);
  }
}

void Canvas::fill(const Rect& rect, const Color& color, double cornerRadius) {
  const Rect area = usable(rect);
  if (share(color.alpha) > 0.0 && state_->isVisible(area)) {
    setColor(state_->cairo(), color);
    state_->paint(area, cornerRadius);
  }
}

void Canvas::fillGradient(const Rect& rect, const Color& top, const Color& bottom) {
  const Rect area = usable(rect);
  if (area.isEmpty() || !state_->isVisible(area)) {
    return;
  }
  const PatternHandle gradient(cairo_pattern_create_linear(0.0, area.y, 0.0, area.bottom()));
  for (const auto& [offset, color] : {std::pair{0.0, top}, std::pair{1.0, bottom}}) {
    cairo_pattern_add_color_stop_rgba(gradient.get(), offset, share(color.red), share(color.green), share(color.blue),
                                      share(color.alpha));
  }
  cairo_set_source(state_->cairo(), gradient.get());
  state_->paint(area, 0.0);
}

void Canvas::strokeInside(const Rect& rect, double width, const Color& color, double cornerRadius) {
  const Rect area = usable(rect);
  const double line = std::min({length(width), area.width, area.height});
  if (line <= 0.0 || share(color.alpha) <= 0.0 || !state_->isVisible(area)) {
    return;
  }
  setColor(state_->cairo(), color);
  cairo_set_line_width(state_->cairo(), line);
  addRoundedRect(state_->cairo(), area.inset(line / 2.0, line / 2.0), length(length(cornerRadius) - line / 2.0));
  cairo_stroke(state_->cairo());
}

void Canvas::drawShadow(const Rect& rect, double cornerRadius, const Color& color, double opacity, double blur,
                        Size offset) {
  const Rect area = usable(rect.movedBy(offset.width, offset.height));
  const Size pixels = state_->pixelsPerPoint();
  const double sharpness = std::max(pixels.width, pixels.height);
  const double reach = 3.0 * length(blur) + 2.0 / sharpness;
  if (area.isEmpty() || share(opacity) * share(color.alpha) <= 0.0 || !state_->isVisible(area.inset(-reach, -reach))) {
    return;
  }
  // A soft edge shows no pixels: large masks are made small and stretched.
  double toMask = sharpness * std::min(1.0, kLargestMaskBlur / std::max(1e-6, length(blur) * sharpness));
  toMask = std::min(toMask, std::sqrt(kLargestMaskArea / ((area.width + reach) * (area.height + reach))));
  const ShadowShape shape{std::max(1, static_cast<int>(std::lround(area.width * toMask))),
                          std::max(1, static_cast<int>(std::lround(area.height * toMask))),
                          length(cornerRadius) * toMask, length(blur) * toMask};
  DrawingCaches& caches = DrawingCaches::shared();
  const MutexLock lock(caches.mutex);
  setColor(state_->cairo(), color, opacity);
  cairo_save(state_->cairo());
  cairo_translate(state_->cairo(), area.x, area.y);
  cairo_scale(state_->cairo(), area.width / shape.width, area.height / shape.height);
  cairo_mask_surface(state_->cairo(), caches.shadow(shape), -shape.margin(), -shape.margin());
  cairo_restore(state_->cairo());
}

void Canvas::drawImage(const ImagePtr& image, const Rect& source, const Rect& target) {
  const Rect area = usable(target);
  const Rect part = image != nullptr
                        ? usable(source).intersected({0.0, 0.0, double(image->width()), double(image->height())})
                        : Rect{};
  if (part.isEmpty() || area.isEmpty() || area != target || !state_->isVisible(area)) {
    return;
  }
  const Size pixels = state_->pixelsPerPoint();
  const double width = std::round(area.width * pixels.width);
  const double height = std::round(area.height * pixels.height);
  // Bilinear filtering skips pixels where it makes a picture much smaller: that is averaged once, and cached.
  const bool isMuchSmaller = width < 0.9 * part.width || height < 0.9 * part.height;
  if (!isMuchSmaller || width > kLargestScaledSide || height > kLargestScaledSide) {
    paintImage(state_->cairo(), *image, part, area, CAIRO_FILTER_BILINEAR);
    return;
  }
  const int columns = std::max(1, static_cast<int>(width));
  const int rows = std::max(1, static_cast<int>(height));
  DrawingCaches& caches = DrawingCaches::shared();
  const MutexLock lock(caches.mutex);
  const PatternHandle pattern(cairo_pattern_create_for_surface(caches.scaled(image, part, columns, rows)));
  paintPattern(state_->cairo(), pattern.get(), {0.0, 0.0, double(columns), double(rows)}, area, CAIRO_FILTER_BILINEAR);
}

void Canvas::drawText(const TextLayout& layout, Point origin, const Color& color) {
  if (!isUsable(origin.x) || !isUsable(origin.y)) {
    return;
  }
  cairo_save(state_->cairo());
  cairo_translate(state_->cairo(), origin.x, origin.y);
  setColor(state_->cairo(), color);
  layout.draw(state_->cairo());
  cairo_restore(state_->cairo());
}

}  // namespace kesu
