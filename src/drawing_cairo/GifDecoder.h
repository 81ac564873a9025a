#pragma once

#include <string_view>

#include "drawing/Pictures.h"

namespace kesu {

/// Decodes the first frame of a file that begins as a GIF: part of decodeImage(). The frame is clipped to the canvas;
/// uncovered pixels and indices beyond its palette stay transparent.
DecodedImage decodeGif(std::string_view bytes, const ImageLimits& limits);

}  // namespace kesu
