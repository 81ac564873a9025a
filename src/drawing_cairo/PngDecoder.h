#pragma once

#include <string_view>

#include "drawing/Pictures.h"

namespace kesu {

/// The part of decodeImage() for files that begin as a PNG does. The opacity, palettes and all bit depths are followed;
/// colours are taken as sRGB whatever the file says about them.
DecodedImage decodePng(std::string_view bytes, const ImageLimits& limits);

}  // namespace kesu
