#pragma once

#include <string_view>

#include "drawing/Pictures.h"

namespace kesu {

/// The part of decodeImage() for files that begin as a WebP does. Lossy and lossless files; an animated one counts as
/// damaged.
DecodedImage decodeWebp(std::string_view bytes, const ImageLimits& limits);

}  // namespace kesu
