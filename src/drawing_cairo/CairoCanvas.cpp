#include "drawing_cairo/CairoCanvas.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "drawing_cairo/CairoHandles.h"
#include "drawing_cairo/DrawingCaches.h"
#include "drawing_cairo/FontSet.h"

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

class CairoCanvas final : public Canvas {
 public:
  explicit CairoCanvas(const CanvasPixels& target);

  void save() override;
  void restore() override;
  void translate(double dx, double dy) override;
  void scale(double factorX, double factorY) override;
  void clip(const Rect& rect, double cornerRadius) override;
  Rect clipBounds() const override { return clipOf(cairo()); }
  void beginGroup() override;
  void endGroup(double alpha) override;
  void endGroup(double alpha, const Rect& rect, double cornerRadius) override;
  void fill(const Rect& rect, const Color& color, double cornerRadius) override;
  void fillGradient(const Rect& rect, const Color& top, const Color& bottom) override;
  void strokeInside(const Rect& rect, double width, const Color& color, double cornerRadius) override;
  void drawShadow(const Rect& rect, double cornerRadius, const Color& color, double opacity, double blur,
                  Size offset) override;
  void drawImage(const ImagePtr& image, const Rect& source, const Rect& target) override;
  void drawText(const TextLayout& layout, Point origin, const Color& color) override;

 private:
  enum class Scope { Saved, Group };

  cairo_t* cairo() const { return context_.get(); }
  bool isIn(Scope scope) const { return !scopes_.empty() && scopes_.back() == scope; }
  void paint(const Rect& rect, double cornerRadius) const;
  /// Pixels per point at the moment, along x and y.
  Size pixelsPerPoint() const;
  bool isVisible(const Rect& rect) const;

  SurfaceHandle surface_;
  CairoHandle context_;
  std::vector<Scope> scopes_;
};

CairoCanvas::CairoCanvas(const CanvasPixels& target)
    : surface_(surfaceOver(target.first, target.width, target.height, target.stride)) {
  cairo_surface_set_device_offset(surface_.get(), -target.left, -target.top);
  context_.reset(cairo_create(surface_.get()));
  const double scale = isUsable(target.scale) && target.scale > 0.0 ? target.scale : 1.0;
  cairo_scale(cairo(), scale, scale);
}

void CairoCanvas::paint(const Rect& rect, double cornerRadius) const {
  addRoundedRect(cairo(), rect, length(cornerRadius));
  cairo_fill(cairo());
}

Size CairoCanvas::pixelsPerPoint() const {
  cairo_matrix_t matrix;
  cairo_get_matrix(cairo(), &matrix);
  return {std::abs(matrix.xx), std::abs(matrix.yy)};
}

bool CairoCanvas::isVisible(const Rect& rect) const {
  const Rect clip = clipOf(cairo());
  return rect.x < clip.right() && rect.right() > clip.x && rect.y < clip.bottom() && rect.bottom() > clip.y;
}

void CairoCanvas::save() {
  cairo_save(cairo());
  scopes_.push_back(Scope::Saved);
}

void CairoCanvas::restore() {
  if (isIn(Scope::Saved)) {
    scopes_.pop_back();
    cairo_restore(cairo());
  }
}

void CairoCanvas::translate(double dx, double dy) {
  if (isUsable(dx) && isUsable(dy)) {
    cairo_translate(cairo(), dx, dy);
  }
}

void CairoCanvas::scale(double factorX, double factorY) {
  // Cairo stops drawing for good with a scale of 0, which has no inverse.
  const auto factor = [](double wanted) { return isUsable(wanted) && std::abs(wanted) > 1e-6 ? wanted : 1e-6; };
  cairo_scale(cairo(), factor(factorX), factor(factorY));
}

void CairoCanvas::clip(const Rect& rect, double cornerRadius) {
  addRoundedRect(cairo(), usable(rect), length(cornerRadius));
  cairo_clip(cairo());
}

void CairoCanvas::beginGroup() {
  cairo_push_group(cairo());
  scopes_.push_back(Scope::Group);
}

void CairoCanvas::endGroup(double alpha) {
  if (isIn(Scope::Group)) {
    scopes_.pop_back();
    cairo_pop_group_to_source(cairo());
    cairo_paint_with_alpha(cairo(), share(alpha));
    cairo_set_source_rgb(cairo(), 0.0, 0.0, 0.0);  // Releases the group's pixels.
  }
}

void CairoCanvas::endGroup(double alpha, const Rect& rect, double cornerRadius) {
  if (isIn(Scope::Group)) {
    scopes_.pop_back();
    cairo_pop_group_to_source(cairo());
    cairo_save(cairo());
    clip(rect, cornerRadius);
    cairo_paint_with_alpha(cairo(), share(alpha));
    cairo_restore(cairo());
    cairo_set_source_rgb(cairo(), 0.0, 0.0, 0.0);
  }
}

void CairoCanvas::fill(const Rect& rect, const Color& color, double cornerRadius) {
  const Rect area = usable(rect);
  if (share(color.alpha) > 0.0 && isVisible(area)) {
    setColor(cairo(), color);
    paint(area, cornerRadius);
  }
}

void CairoCanvas::fillGradient(const Rect& rect, const Color& top, const Color& bottom) {
  const Rect area = usable(rect);
  if (area.isEmpty() || !isVisible(area)) {
    return;
  }
  const PatternHandle gradient(cairo_pattern_create_linear(0.0, area.y, 0.0, area.bottom()));
  for (const auto& [offset, color] : {std::pair{0.0, top}, std::pair{1.0, bottom}}) {
    cairo_pattern_add_color_stop_rgba(gradient.get(), offset, share(color.red), share(color.green), share(color.blue),
                                      share(color.alpha));
  }
  cairo_set_source(cairo(), gradient.get());
  paint(area, 0.0);
}

void CairoCanvas::strokeInside(const Rect& rect, double width, const Color& color, double cornerRadius) {
  const Rect area = usable(rect);
  const double line = std::min({length(width), area.width, area.height});
  if (line <= 0.0 || share(color.alpha) <= 0.0 || !isVisible(area)) {
    return;
  }
  setColor(cairo(), color);
  cairo_set_line_width(cairo(), line);
  addRoundedRect(cairo(), area.inset(line / 2.0, line / 2.0), length(length(cornerRadius) - line / 2.0));
  cairo_stroke(cairo());
}

void CairoCanvas::drawShadow(const Rect& rect, double cornerRadius, const Color& color, double opacity, double blur,
                             Size offset) {
  const Rect area = usable(rect.movedBy(offset.width, offset.height));
  const Size pixels = pixelsPerPoint();
  const double sharpness = std::max(pixels.width, pixels.height);
  const double reach = 3.0 * length(blur) + 2.0 / sharpness;
  if (area.isEmpty() || share(opacity) * share(color.alpha) <= 0.0 || !isVisible(area.inset(-reach, -reach))) {
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
  setColor(cairo(), color, opacity);
  cairo_save(cairo());
  cairo_translate(cairo(), area.x, area.y);
  cairo_scale(cairo(), area.width / shape.width, area.height / shape.height);
  cairo_mask_surface(cairo(), caches.shadow(shape), -shape.margin(), -shape.margin());
  cairo_restore(cairo());
}

void CairoCanvas::drawImage(const ImagePtr& image, const Rect& source, const Rect& target) {
  const Rect area = usable(target);
  const Rect part = image != nullptr
                        ? usable(source).intersected({0.0, 0.0, double(image->width()), double(image->height())})
                        : Rect{};
  if (part.isEmpty() || area.isEmpty() || area != target || !isVisible(area)) {
    return;
  }
  const Size pixels = pixelsPerPoint();
  const double width = std::round(area.width * pixels.width);
  const double height = std::round(area.height * pixels.height);
  // Bilinear filtering skips pixels where it makes a picture much smaller: that is averaged once, and cached.
  const bool isMuchSmaller = width < 0.9 * part.width || height < 0.9 * part.height;
  if (!isMuchSmaller || width > kLargestScaledSide || height > kLargestScaledSide) {
    paintImage(cairo(), *image, part, area, CAIRO_FILTER_BILINEAR);
    return;
  }
  const int columns = std::max(1, static_cast<int>(width));
  const int rows = std::max(1, static_cast<int>(height));
  DrawingCaches& caches = DrawingCaches::shared();
  const MutexLock lock(caches.mutex);
  const PatternHandle pattern(cairo_pattern_create_for_surface(caches.scaled(image, part, columns, rows)));
  paintPattern(cairo(), pattern.get(), {0.0, 0.0, double(columns), double(rows)}, area, CAIRO_FILTER_BILINEAR);
}

void CairoCanvas::drawText(const TextLayout& layout, Point origin, const Color& color) {
  const TypesetText* text = layout.typeset();
  if (text == nullptr || !isUsable(origin.x) || !isUsable(origin.y)) {
    return;
  }
  cairo_save(cairo());
  cairo_translate(cairo(), origin.x, origin.y);
  setColor(cairo(), color);
  static_cast<const TextHandle*>(text)->draw(cairo());  // There is one module: it made this text.
  cairo_restore(cairo());
}

}  // namespace

std::unique_ptr<Canvas> makeCairoCanvas(const CanvasPixels& target) {
  return std::make_unique<CairoCanvas>(target);
}

}  // namespace kesu
