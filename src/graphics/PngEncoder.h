#pragma once

#include <kesu/graphics/Image.h>

#include <optional>
#include <string>

namespace kesu {

/// Encodes a picture as a PNG file, fast rather than small (compression level 1, SUB filter). Any thread, but slow:
/// never the main one. Nothing when out of memory.
std::optional<std::string> encodePng(const Image& image);

}  // namespace kesu
