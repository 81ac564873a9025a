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

/// Returns the file without chunks that are no part of the picture, if it has any of unlimited size; nothing where it
/// can be used as it is. The library unpacks and keeps every compressed text or profile: a thousand of 8 kB each become
/// 8 GB.
std::optional<std::string> pngWithoutExtras(std::string_view png);

}  // namespace kesu
