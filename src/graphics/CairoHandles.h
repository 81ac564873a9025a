#pragma once

#include <cairo.h>

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

}  // namespace kesu
