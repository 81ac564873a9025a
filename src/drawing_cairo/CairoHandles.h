#pragma once

#include <cairo.h>

#include <cstdint>
#include <memory>

namespace kesu {

// Each of these owns one reference to an object of Cairo. An object that could not be made is in an error state, never
// null: everything done with it does nothing.

struct CairoRelease {
  void operator()(cairo_t* object) const { cairo_destroy(object); }
  void operator()(cairo_surface_t* object) const { cairo_surface_destroy(object); }
  void operator()(cairo_pattern_t* object) const { cairo_pattern_destroy(object); }
};

using CairoHandle = std::unique_ptr<cairo_t, CairoRelease>;
using SurfaceHandle = std::unique_ptr<cairo_surface_t, CairoRelease>;
using PatternHandle = std::unique_ptr<cairo_pattern_t, CairoRelease>;

/// Returns a surface over pixels of the caller; `stride` is the distance of rows in pixels. Cairo has no surface for
/// reading only: constant pixels may only be a source.
inline SurfaceHandle surfaceOver(const std::uint32_t* pixels, int width, int height, int stride,
                                 cairo_format_t format = CAIRO_FORMAT_ARGB32) {
  auto* data = reinterpret_cast<unsigned char*>(const_cast<std::uint32_t*>(pixels));
  const int strideBytes = stride * static_cast<int>(sizeof(std::uint32_t));
  return SurfaceHandle(cairo_image_surface_create_for_data(data, format, width, height, strideBytes));
}

}  // namespace kesu
