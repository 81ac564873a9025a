#pragma once

#include <optional>
#include <string_view>

namespace kesu::dev {

struct ImageSize {
  int width = 0;
  int height = 0;

  friend bool operator==(const ImageSize&, const ImageSize&) = default;
};

/// Width and height in pixels as the head of a PNG, JPEG, GIF or WebP file tells them; nothing for other bytes. Pure.
std::optional<ImageSize> imageSize(std::string_view file);

/// The media type for the ending of an image's file name ("image/jpeg"); empty for other names.
std::string_view imageType(std::string_view fileName);

}  // namespace kesu::dev
