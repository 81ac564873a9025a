#pragma once

#include <kesu/graphics/Image.h>

#include <optional>
#include <string>

namespace kesu {

/// What encodePng() does.
std::optional<std::string> encodePicture(const Image& image);

}  // namespace kesu
