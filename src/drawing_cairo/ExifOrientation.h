#pragma once

#include <string_view>

#include "drawing_cairo/PixelBuffer.h"

namespace kesu {

/// How the stored picture has to be turned, as cameras write it: what the first stored row and column show.
enum class Orientation {
  Upright = 1,                ///< Row: top, column: left.
  Mirrored = 2,               ///< Row: top, column: right.
  UpsideDown = 3,             ///< Row: bottom, column: right.
  MirroredUpsideDown = 4,     ///< Row: bottom, column: left.
  Transposed = 5,             ///< Row: left, column: top.
  NeedsClockwiseTurn = 6,     ///< Row: right, column: top.
  Transversed = 7,            ///< Row: right, column: bottom.
  NeedsAnticlockwiseTurn = 8  ///< Row: left, column: bottom.
};

/// The orientation in an APP1 segment of a JPEG ("Exif", then a TIFF header; only the first directory is looked at).
/// Upright where it tells none or is damaged.
Orientation exifOrientation(std::string_view segment);

/// Turns the pixels, which are opaque, upright where they lie; width and height change places where the turn asks for
/// it. Needs no more memory.
void turnUpright(Pixels& pixels, int& width, int& height, Orientation orientation);

}  // namespace kesu
