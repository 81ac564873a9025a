#pragma once

#include <cstdint>
#include <string>

namespace tv {

/// A colour with components from 0 to 1.
struct Rgb {
  float red = 0.0F;
  float green = 0.0F;
  float blue = 0.0F;
};

/// What stands in front of the sky.
enum class Land { Mountains, Hills, Dunes, Forest, City, Sea };

/// What makes the picture of one show its own.
enum class Motif { None, Train, Lighthouse, Aurora, Planet };

/// The key art of a show as numbers, so that the example needs no picture files. Places are fractions of the picture.
struct Scene {
  Rgb skyTop;
  Rgb skyBottom;
  Rgb light;  ///< Of the sun or moon, its glow and lit windows.
  Rgb near;   ///< The land in front; farther land fades into the sky.
  Land land = Land::Hills;
  Motif motif = Motif::None;
  float sunX = 0.7F;
  float sunY = 0.35F;
  float sunRadius = 0.06F;  ///< Of the picture's height; 0 for none.
  bool hasStars = false;
  std::uint32_t seed = 1;
};

}  // namespace tv
