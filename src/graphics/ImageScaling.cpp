#include "graphics/ImageScaling.h"

#include <cairo.h>

#include <memory>
#include <new>
#include <utility>

#include "graphics/PixelBuffer.h"

namespace kesu {
namespace {

struct SurfaceCloser {
  void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
};
using SurfaceHandle = std::unique_ptr<cairo_surface_t, SurfaceCloser>;

struct ContextCloser {
  void operator()(cairo_t* context) const { cairo_destroy(context); }
};
using ContextHandle = std::unique_ptr<cairo_t, ContextCloser>;

SurfaceHandle surfaceOver(const std::uint32_t* pixels, int width, int height) {
  // Cairo has no surface for reading only; nobody draws on the source.
  auto* data = reinterpret_cast<unsigned char*>(const_cast<std::uint32_t*>(pixels));
  return SurfaceHandle(cairo_image_surface_create_for_data(data, CAIRO_FORMAT_ARGB32, width, height,
                                                           width * static_cast<int>(sizeof(std::uint32_t))));
}

bool drawScaled(const Image& image, Pixels& target, int width, int height) {
  const SurfaceHandle from = surfaceOver(image.pixels(), image.width(), image.height());
  const SurfaceHandle to = surfaceOver(target.data(), width, height);
  const ContextHandle context(cairo_create(to.get()));
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

ImagePtr scaledImage(const Image& image, int width, int height) {
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
