#include "tools/kesu-dev/messages/ImageSize.h"

#include <gtest/gtest.h>

namespace kesu::dev {
namespace {

TEST(ImageSize, ReadsTheHeadOfEachFormat) {
  using namespace std::string_view_literals;
  const struct {
    std::string_view head;
    std::optional<ImageSize> size;
  } rows[] = {
      {"\xFF\xD8\xFF\xE0\0\4ab\xFF\xFF\xC2\0\x0b\x08\2\x8c\4\x88\3"sv, ImageSize{1160, 652}},
      {"\xFF\xD8\xFF\xE0\xFF\xFFtoo short"sv, std::nullopt},
      {"\x89PNG\r\n\x1a\n\0\0\0\rIHDR\xFF\xFF\xFF\xFF\0\0\0\1"sv, std::nullopt},
      {"GIF89a\x88\4\x8c\2"sv, ImageSize{1160, 652}},
      {"RIFF\0\0\0\0WEBPVP8X\0\0\0\0\0\0\0\0\x87\4\0\x8b\2\0"sv, ImageSize{1160, 652}},
      {"RIFF\0\0\0\0WEBPVP8L\0\0\0\0\x2f\x87\xc4\xa2\0\0\0\0\0\0"sv, ImageSize{1160, 652}},
      {"RIFF\0\0\0\0WEBPVP8 \0\0\0\0\0\0\0\x9d\1\x2a\x88\4\x8c\2"sv, ImageSize{1160, 652}},
      {"RIFF\0\0\0\0WEBP"sv, std::nullopt},
      {""sv, std::nullopt},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(imageSize(row.head), row.size) << row.head;
  }
}

}  // namespace
}  // namespace kesu::dev
