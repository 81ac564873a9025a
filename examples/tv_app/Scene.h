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

/// The foreground.
enum class Land { Mountains, Hills, Dunes, Forest, City, Sea };

/// The object that identifies the picture of a show.
enum class Motif { None, Train, Lighthouse, Aurora, Planet };

/// The place of the sun or the moon, in fractions of the picture.
struct Disc {
  float x = 0.7F;
  float y = 0.35F;
  float radius = 0.06F;  ///< Of the picture's height; 0 for none.
};

/// The key art of a show as numbers, so that the example needs no picture files. Colours are 0xRRGGBB.
struct Scene {
  std::uint32_t skyTop = 0;
  std::uint32_t skyBottom = 0;
  std::uint32_t light = 0;  ///< Of the sun or moon, its glow and lit windows.
  std::uint32_t near = 0;   ///< The land in front; farther land fades into the sky.
  Land land = Land::Hills;
  Motif motif = Motif::None;
  Disc sun;
  bool hasStars = false;
  std::uint32_t seed = 1;
};

}  // namespace tv
