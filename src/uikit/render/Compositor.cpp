#include "uikit/render/Compositor.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "graphics/CairoHandles.h"
#include "uikit/render/Placement.h"

namespace kesu {
namespace {

constexpr int kPixelBytes = static_cast<int>(sizeof(std::uint32_t));

Rect rectOf(const FrameLayer& layer) {
  return {layer.x, layer.y, layer.width, layer.height};
}

bool isAtItsPixels(const FrameLayer& layer) {
  return layer.width == layer.pixelWidth && layer.height == layer.pixelHeight && layer.x == std::floor(layer.x) &&
         layer.y == std::floor(layer.y);
}

PixelRect areaOf(const FrameLayer& layer) {
  // Stretched pixels at the edges are blended with those beyond.
  return touchedPixels(isAtItsPixels(layer) || layer.pixels == nullptr ? rectOf(layer)
                                                                       : rectOf(layer).inset(-1.0, -1.0));
}

SurfaceHandle surfaceOn(std::uint32_t* pixels, int width, int height, int stride) {
  return SurfaceHandle(cairo_image_surface_create_for_data(reinterpret_cast<unsigned char*>(pixels),
                                                           CAIRO_FORMAT_ARGB32, width, height, stride * kPixelBytes));
}

void composeColor(cairo_t* cairo, const FrameLayer& layer) {
  const Color& color = layer.color;
  cairo_set_source_rgba(cairo, color.red, color.green, color.blue, color.alpha * layer.alpha);
  cairo_rectangle(cairo, layer.x, layer.y, layer.width, layer.height);
  cairo_fill(cairo);
}

void composePixels(cairo_t* cairo, const FrameLayer& layer) {
  // Cairo only reads from a source, but has no const.
  const SurfaceHandle surface =
      surfaceOn(const_cast<std::uint32_t*>(layer.pixels), layer.pixelWidth, layer.pixelHeight, layer.stride);
  cairo_save(cairo);
  cairo_translate(cairo, layer.x, layer.y);
  cairo_scale(cairo, layer.width / layer.pixelWidth, layer.height / layer.pixelHeight);
  cairo_set_source_surface(cairo, surface.get(), 0.0, 0.0);
  cairo_pattern_set_filter(cairo_get_source(cairo),
                           isAtItsPixels(layer) ? CAIRO_FILTER_NEAREST : CAIRO_FILTER_BILINEAR);
  cairo_paint_with_alpha(cairo, layer.alpha);
  cairo_restore(cairo);
}

// Whether the layer replaces all pixels below: nothing has to be cleared first.
bool covers(const FrameLayer& layer, const PixelRect& area) {
  const Rect rect = rectOf(layer);
  return layer.pixels == nullptr && rect.x <= area.x && rect.y <= area.y && rect.right() >= area.x + area.width &&
         rect.bottom() >= area.y + area.height;
}

bool looksTheSame(const FrameLayer& a, const FrameLayer& b) {
  return a.id == b.id && rectOf(a) == rectOf(b) && a.alpha == b.alpha && a.color == b.color &&
         a.pixelWidth == b.pixelWidth && a.pixelHeight == b.pixelHeight;
}

PixelRect changedPart(const FrameLayer& layer) {
  if (layer.damage.isEmpty()) {
    return {};
  }
  const double scaleX = layer.width / layer.pixelWidth;
  const double scaleY = layer.height / layer.pixelHeight;
  const PixelRect& damage = layer.damage;
  const double around = isAtItsPixels(layer) ? 0.0 : -1.0;
  return touchedPixels(Rect{layer.x + (damage.x + around) * scaleX, layer.y + (damage.y + around) * scaleY,
                            (damage.width - 2.0 * around) * scaleX, (damage.height - 2.0 * around) * scaleY}
                           .inset(around, around));
}

}  // namespace

void composeLayers(const std::vector<FrameLayer>& layers, std::uint32_t* pixels, int width, const PixelRect& area) {
  std::uint32_t* first = pixels + std::ptrdiff_t{area.y} * width + area.x;
  const bool isCovered = !layers.empty() && covers(layers.front(), area);
  for (int row = 0; row < area.height && !isCovered; ++row) {
    std::fill_n(first + std::ptrdiff_t{row} * width, area.width, 0U);
  }
  const SurfaceHandle target = surfaceOn(first, area.width, area.height, width);
  cairo_surface_set_device_offset(target.get(), -area.x, -area.y);
  const CairoHandle cairo(cairo_create(target.get()));
  cairo_set_operator(cairo.get(), isCovered ? CAIRO_OPERATOR_SOURCE : CAIRO_OPERATOR_OVER);
  for (const FrameLayer& layer : layers) {
    if (!intersected(areaOf(layer), area).isEmpty()) {
      layer.pixels != nullptr ? composePixels(cairo.get(), layer) : composeColor(cairo.get(), layer);
    }
    cairo_set_operator(cairo.get(), CAIRO_OPERATOR_OVER);
  }
}

PixelRect Compositor::damageOf(const std::vector<Placed>& next) const {
  PixelRect damage;
  for (std::size_t i = 0; i < std::max(next.size(), shown_.size()); ++i) {
    const bool isSame = i < next.size() && i < shown_.size() && looksTheSame(next[i].layer, shown_[i].layer);
    if (!isSame) {
      damage = united(damage, i < next.size() ? next[i].area : PixelRect{});
      damage = united(damage, i < shown_.size() ? shown_[i].area : PixelRect{});
    }
    damage = united(damage, i < next.size() ? changedPart(next[i].layer) : PixelRect{});
  }
  return damage;
}

const FlatFrame& Compositor::compose(const std::vector<FrameLayer>& layers, int width, int height) {
  std::vector<Placed> next;
  next.reserve(layers.size());
  for (const FrameLayer& layer : layers) {
    next.push_back({layer, areaOf(layer)});
  }
  const PixelRect screen{0, 0, width, height};
  PixelRect damage = damageOf(next);
  if (store_.pixels() == nullptr || frame_.width != width || frame_.height != height) {
    store_ = {};
    store_ = PixelStore(width, height);
    damage = screen;
  } else if (layers.empty() && !shown_.empty()) {
    store_ = {};  // Pages that are not written take no memory.
    store_ = PixelStore(width, height);
  }
  damage = store_.pixels() != nullptr ? intersected(damage, screen) : PixelRect{};
  if (!damage.isEmpty() && !layers.empty()) {
    composeLayers(layers, store_.pixels(), width, damage);
  }
  shown_ = std::move(next);
  frame_ = {store_.pixels(), width, height, width, damage};
  return frame_;
}

}  // namespace kesu
