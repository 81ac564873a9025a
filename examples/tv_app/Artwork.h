#pragma once

#include <cstdint>
#include <vector>

#include "Scene.h"

namespace tv {

/// A picture in memory: 0xAARRGGBB, colours not multiplied by the opacity.
struct Picture {
  int width = 0;
  int height = 0;
  std::vector<std::uint32_t> pixels;
};

/// Paints a scene. Takes some 50 ns per pixel: cache the picture.
Picture paintScene(const Scene& scene, int width, int height);

/// Makes the corners transparent, `radius` in pixels.
void roundCorners(Picture& picture, float radius);

/// Fades the picture into a plain colour towards the left and the bottom edge, so that text on it can be read. `left`
/// and `bottom` are the fractions of the picture over which it fades.
void fadeInto(Picture& picture, Rgb color, float left, float bottom);

}  // namespace tv
