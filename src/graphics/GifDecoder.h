#pragma once

#include <string_view>

#include "graphics/ImageDecoder.h"

namespace kesu {

/// The part of decodeImage() for files that begin as a GIF does. Only the first frame is read. It is cut at the edges
/// of the canvas; what it does not cover, and indices beyond its palette, stay transparent.
DecodedImage decodeGif(std::string_view bytes, const ImageLimits& limits);

}  // namespace kesu
