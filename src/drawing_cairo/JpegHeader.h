#pragma once

#include <optional>
#include <string_view>

#include "drawing_cairo/ExifOrientation.h"

namespace kesu {

/// What the segments before the coded pixels of a JPEG say.
struct JpegHeader {
  int width = 0;   ///< In pixels as they are stored, not turned; 0 where the file does not say.
  int height = 0;  ///< As width.
  int components = 0;
  bool isInPieces = false;  ///< No pixel is complete before the end: progressive, or one scan a colour.
  bool isAdobe = false;     ///< Written by a program that stores CMYK inverted.
  Orientation orientation = Orientation::Upright;
};

/// Reads up to the first scan. Nothing without a scan, a size, or an end of the file, which was truncated.
std::optional<JpegHeader> readJpegHeader(std::string_view jpeg);

}  // namespace kesu
