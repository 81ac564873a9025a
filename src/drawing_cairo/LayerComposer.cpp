#include "drawing_cairo/LayerComposer.h"

#include <algorithm>
#include <cstddef>

#include "drawing/FrameLayers.h"
#include "drawing_cairo/CairoHandles.h"

namespace kesu {
namespace {

void composeColor(cairo_t* cairo, const FrameLayer& layer) {
  const Color& color = layer.color;
  cairo_set_source_rgba(cairo, color.red, color.green, color.blue, color.alpha * layer.alpha);
  cairo_rectangle(cairo, layer.x, layer.y, layer.width, layer.height);
  cairo_fill(cairo);
}

void composePixels(cairo_t* cairo, const FrameLayer& layer) {
  const SurfaceHandle surface = surfaceOver(layer.pixels, layer.pixelWidth, layer.pixelHeight, layer.stride);
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

}  // namespace

void paintLayers(const std::vector<FrameLayer>& layers, std::uint32_t* pixels, int width, const PixelRect& area) {
  std::uint32_t* first = pixels + std::ptrdiff_t{area.y} * width + area.x;
  const bool isCovered = !layers.empty() && covers(layers.front(), area);
  for (int row = 0; row < area.height && !isCovered; ++row) {
    std::fill_n(first + std::ptrdiff_t{row} * width, area.width, 0U);
  }
  const SurfaceHandle target = surfaceOver(first, area.width, area.height, width);
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

}  // namespace kesu
