#include "tools/kesu-dev/messages/ImageSize.h"

#include <gtest/gtest.h>

#include "testing/PictureFiles.h"

namespace kesu::dev {
namespace {

TEST(ImageSize, ReadsTheHeadOfEachFormat) {
  using namespace std::string_view_literals;
  namespace pictures = kesu::testing;
  const auto gray = [](int, int) { return 0xFF808080U; };
  const auto first = [](int, int) { return 0U; };
  const pictures::GifLayout layout{.canvasWidth = 300, .canvasHeight = 20, .width = 300, .height = 20};
  const std::string jpeg = pictures::jpegFile(300, 20, gray);
  const struct {
    std::string file;
    std::optional<ImageSize> size;
  } rows[] = {
      {jpeg, ImageSize{300, 20}},
      {pictures::jpegFile(300, 20, gray, TJPF_RGBA, TJFLAG_PROGRESSIVE), ImageSize{300, 20}},
      {jpeg.substr(0, 100), std::nullopt},
      {pictures::pngFile(300, 20, gray), ImageSize{300, 20}},
      {std::string("\x89PNG\r\n\x1a\n\0\0\0\rIHDR\xFF\xFF\xFF\xFF\0\0\0\1"sv), std::nullopt},
      {pictures::gifFile(layout, {{0, 0, 0}, {9, 9, 9}}, first), ImageSize{300, 20}},
      {pictures::webpFile(300, 20, gray), ImageSize{300, 20}},
      {pictures::webpFile(300, 20, gray, false), ImageSize{300, 20}},
      {std::string("RIFF\0\0\0\0WEBP"sv), std::nullopt},
      {"", std::nullopt},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(imageSize(row.file), row.size) << row.file.substr(0, 12);
  }
}

}  // namespace
}  // namespace kesu::dev
