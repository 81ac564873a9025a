#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kesu {

/// What the beginning of a PNG file says about the picture, before any of its numbers was judged.
struct PngHeader {
  std::int64_t width = 0;
  std::int64_t height = 0;
};

/// Nothing where the file does not begin with a header chunk.
std::optional<PngHeader> readPngHeader(std::string_view png);

/// The file with nothing but what makes the picture, where it holds anything else of unlimited size; nothing where it
/// can be used as it is. A library that is shown a compressed text or profile unpacks it and keeps it: a thousand of
/// them, 8 kB each, are 8 GB.
std::optional<std::string> pngWithoutExtras(std::string_view png);

}  // namespace kesu
