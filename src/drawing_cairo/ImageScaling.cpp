#include "drawing_cairo/ImageScaling.h"

#include <memory>
#include <new>
#include <utility>

#include "drawing_cairo/CairoHandles.h"
#include "drawing_cairo/PixelBuffer.h"

namespace kesu {
namespace {

bool drawScaled(const Image& image, Pixels& target, int width, int height) {
  const SurfaceHandle from = surfaceOver(image.pixels(), image.width(), image.height(), image.width());
  const SurfaceHandle to = surfaceOver(target.data(), width, height, width);
  const CairoHandle context(cairo_create(to.get()));
  cairo_scale(context.get(), static_cast<double>(width) / image.width(), static_cast<double>(height) / image.height());
  cairo_set_source_surface(context.get(), from.get(), 0.0, 0.0);
  cairo_pattern_set_filter(cairo_get_source(context.get()), CAIRO_FILTER_GOOD);
  // The colour beyond an edge is that of the edge: it must not fade into nothing.
  cairo_pattern_set_extend(cairo_get_source(context.get()), CAIRO_EXTEND_PAD);
  cairo_set_operator(context.get(), CAIRO_OPERATOR_SOURCE);
  cairo_paint(context.get());
  const bool isDrawn = cairo_status(context.get()) == CAIRO_STATUS_SUCCESS;
  cairo_surface_flush(to.get());
  return isDrawn;
}

}  // namespace

ImagePtr scalePicture(const Image& image, int width, int height) {
  if (checkImageSize(width, height, ImageLimits{}) != ImageStatus::Decoded) {
    return nullptr;
  }
  try {
    Pixels target = makePixels(width, height);
    return drawScaled(image, target, width, height) ? std::make_shared<const Image>(width, height, std::move(target))
                                                    : nullptr;
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

}  // namespace kesu
