#pragma once

#include <kesu/graphics/Geometry.h>
#include <kesu/graphics/Image.h>

#include <list>
#include <memory>

#include "drawing_cairo/CairoHandles.h"
#include "foundation/Mutex.h"

namespace kesu {

/// What a blurred rounded rectangle looks like, in pixels of its mask.
struct ShadowShape {
  int width = 0;
  int height = 0;
  double cornerRadius = 0.0;
  double blur = 0.0;  ///< As a standard deviation.

  /// How far the mask extends beyond the rectangle on each side, in pixels.
  int margin() const;

  friend bool operator==(const ShadowShape&, const ShadowShape&) = default;
};

/// Caches pictures that are slow to make and drawn in every frame: shadows, and images scaled down to the size at which
/// they are shown. Few of each are kept, and no image after its owner has released it. Lock the mutex to use one.
class DrawingCaches {
 public:
  static DrawingCaches& shared();

  Mutex mutex;

  /// An opacity mask of the rectangle with the shape's margin around.
  cairo_surface_t* shadow(const ShadowShape& shape) KESU_REQUIRES(mutex);

  /// `source` of the image, in its pixels, scaled to width x height pixels.
  cairo_surface_t* scaled(const ImagePtr& image, const Rect& source, int width, int height) KESU_REQUIRES(mutex);

  void release() KESU_REQUIRES(mutex);

 private:
  struct ShadowEntry {
    ShadowShape shape;
    SurfaceHandle mask;
  };
  struct ScaledEntry {
    std::weak_ptr<const Image> image;
    Rect source;
    int width;
    int height;
    SurfaceHandle picture;
  };
  void trimScaled() KESU_REQUIRES(mutex);

  // The most recently used one comes first.
  std::list<ShadowEntry> shadows_ KESU_GUARDED_BY(mutex);
  std::list<ScaledEntry> scaled_ KESU_GUARDED_BY(mutex);
};

/// Draws `source` of a picture over `target`; outside of the picture its edge is repeated.
void paintPattern(cairo_t* cairo, cairo_pattern_t* pattern, const Rect& source, const Rect& target,
                  cairo_filter_t filter);

/// The same for `source` of an image, in its pixels.
void paintImage(cairo_t* cairo, const Image& image, const Rect& source, const Rect& target, cairo_filter_t filter);

/// Adds a rectangle with round corners to the path.
void addRoundedRect(cairo_t* cairo, const Rect& rect, double cornerRadius);

/// The bounds of the clip, in current coordinates.
Rect clipOf(cairo_t* cairo);

}  // namespace kesu
