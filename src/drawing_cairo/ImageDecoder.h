#pragma once

#include <string_view>

#include "drawing/Pictures.h"

namespace kesu {

/// What decodeImage() does.
DecodedImage decodePicture(std::string_view bytes, const ImageLimits& limits);

}  // namespace kesu
