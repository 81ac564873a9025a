#pragma once

#include <kesu/graphics/Frame.h>
#include <kesu/graphics/Geometry.h>

#include <cmath>
#include <cstdint>
#include <vector>

#include "drawing/PixelRects.h"

namespace kesu {

/// Composes the layers over transparent pixels, within `area` of a picture of that width in pixels.
void composeLayers(const std::vector<FrameLayer>& layers, std::uint32_t* pixels, int width, const PixelRect& area);

inline Rect rectOf(const FrameLayer& layer) {
  return {layer.x, layer.y, layer.width, layer.height};
}

/// Whether each pixel of the layer is one of the screen.
inline bool isAtItsPixels(const FrameLayer& layer) {
  return layer.width == layer.pixelWidth && layer.height == layer.pixelHeight && layer.x == std::floor(layer.x) &&
         layer.y == std::floor(layer.y);
}

/// The pixels of the screen that the layer changes.
inline PixelRect areaOf(const FrameLayer& layer) {
  // Stretched pixels at the edges are blended with those beyond.
  return touchedPixels(isAtItsPixels(layer) || layer.pixels == nullptr ? rectOf(layer)
                                                                       : rectOf(layer).inset(-1.0, -1.0));
}

}  // namespace kesu
