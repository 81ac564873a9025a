#pragma once

#include <string_view>

#include "drawing/Pictures.h"

namespace kesu {

/// The part of decodeImage() for files that begin as a JPEG does. It is turned upright as its EXIF orientation says.
/// CMYK files are shown in plain red, green and blue.
DecodedImage decodeJpeg(std::string_view bytes, const ImageLimits& limits);

}  // namespace kesu
