#pragma once

#include <kesu/graphics/Image.h>

#include <optional>
#include <string>

namespace kesu {

/// The picture as a PNG file: fast rather than small (compression level 1, SUB filter). Any thread, but slow: never the
/// main one. Nothing when it does not work out (out of memory).
std::optional<std::string> encodePng(const Image& image);

}  // namespace kesu
