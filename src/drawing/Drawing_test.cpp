#include <gtest/gtest.h>

#include "drawing/DataUrl.h"
#include "drawing/DrawingModule.h"
#include "drawing/FrameLayers.h"

namespace kesu {
namespace {

/// Every colour value at every opacity that can hold it, premultiplied.
Image everyOpacity() {
  std::vector<std::uint32_t> pixels;
  for (std::uint32_t alpha = 0; alpha < 256; ++alpha) {
    for (std::uint32_t value = 0; value < 256; ++value) {
      const std::uint32_t channel = value * alpha / 255;
      pixels.push_back(alpha << 24 | channel << 16 | (alpha - channel) << 8 | channel / 2);
    }
  }
  return {256, 256, std::move(pixels)};
}

TEST(PngEncoder, KeepsEveryPixel) {
  for (const Image& image : {everyOpacity(), Image(3, 1, {0xFF000000, 0xFF123456, 0xFFFFFFFF})}) {
    const auto file = encodePng(image);
    ASSERT_TRUE(file);
    const ImagePtr back = decodeImage(*file).image;
    ASSERT_NE(back, nullptr);
    EXPECT_EQ(back->width(), image.width());
    EXPECT_EQ(back->isOpaque(), image.isOpaque());
    EXPECT_TRUE(std::equal(image.pixels(), image.pixels() + image.byteCount() / 4, back->pixels()));
  }
}

TEST(ImageScaling, AveragesAreasAndKeepsEdges) {
  std::vector<std::uint32_t> columns;
  for (int pixel = 0; pixel < 64 * 64; ++pixel) {
    columns.push_back(pixel % 2 == 0 ? 0xFF000000 : 0xFFFFFFFF);
  }
  const ImagePtr small = scaledImage(Image(64, 64, columns), 16, 8);
  ASSERT_NE(small, nullptr);
  EXPECT_EQ(small->width(), 16);
  EXPECT_EQ(small->height(), 8);
  EXPECT_TRUE(small->isOpaque()) << "edges do not fade";
  EXPECT_NEAR(static_cast<double>(small->pixels()[4 * 16 + 8] & 0xFF), 127.0, 24.0);
  const ImagePtr large = scaledImage(Image(2, 1, {0xFFFF0000, 0xFF0000FF}), 8, 4);
  EXPECT_TRUE(large->isOpaque());
  EXPECT_EQ(large->pixels()[0], 0xFFFF0000U);
  EXPECT_EQ(large->pixels()[31], 0xFF0000FFU);
}

TEST(ImageScaling, RefusesSizesThatNoPictureHas) {
  const Image image(1, 1, {0xFFFFFFFF});
  for (const auto& [width, height] : {std::pair{0, 1}, {1, -1}, {4097, 1}, {4096, 4096}}) {
    EXPECT_EQ(scaledImage(image, width, height), nullptr) << width << " x " << height;
  }
}

TEST(DrawingModule, IsNotNeededByItsCallers) {
  static constexpr DrawingSource kNothing{[]() -> DrawingModule* { return nullptr; }, false};
  const DrawingSource* const linked = replaceDrawingSource(&kNothing);
  EXPECT_TRUE(awaitsDrawingModule());
  EXPECT_EQ(decodeImage("GIF89a").status, ImageStatus::UnknownKind);
  EXPECT_FALSE(awaitsDrawingModule());
  const TextLayout text("text", {}, {});
  std::uint32_t pixel = 0x12345678;
  FrameLayer layer;
  layer.width = layer.height = 1.0;
  prepareFonts();
  composeLayers({layer}, &pixel, 1, {0, 0, 1, 1});
  releaseFonts();
  releaseDrawingCaches();
  EXPECT_FALSE(areFontsReady());
  EXPECT_EQ(text.size(), Size{});
  EXPECT_EQ(text.lineCount(), 0);
  EXPECT_EQ(heightOfText("text", {}, 100.0), 0.0);
  EXPECT_EQ(makeCanvas({&pixel, 1, 1, 1}), nullptr);
  EXPECT_EQ(pixel, 0x12345678U);
  EXPECT_FALSE(encodePng(everyOpacity()));
  EXPECT_EQ(scaledImage(everyOpacity(), 1, 1), nullptr);
  replaceDrawingSource(linked);
  makeCanvas({&pixel, 1, 1, 1})->drawText(text, {}, Color::white());  // Typeset while there was none.
  EXPECT_EQ(decodeImage("GIF89a").status, ImageStatus::Damaged);
  EXPECT_EQ(kesu_drawing_module("0.0"), nullptr);
}

TEST(DataUrl, CarriesBytes) {
  using Bytes = std::optional<std::string>;
  const std::pair<const char*, Bytes> kCases[] = {
      {"data:,hello", "hello"},
      {"DATA:text/plain,a%20b%2C%2f", "a b,/"},
      {"data:image/png;base64,aGVsbG8=", "hello"},
      {"data:;BASE64 ,aGVs bG8", "hello"},
      {"data:image/gif;base64,aGVsbG8%3D", "hello"},
      {"data:;charset=utf-8;base64,aGk=#part", "hi"},
      {"data:,100%,%4,%zz,%", "100%,%4,%zz,%"},
      {"data:base64,aGk=", "aGk="},
      {"data:,", ""},
      {"data:;base64,a", std::nullopt},
      {"data:;base64,a*==", std::nullopt},
      {"data:image/png;base64", std::nullopt},
      {"data:a#,b", std::nullopt},
      {"https://x.example/a,b", std::nullopt},
      {"dat", std::nullopt},
      {"", std::nullopt},
  };
  for (const auto& [url, expected] : kCases) {
    EXPECT_EQ(dataOfUrl(url), expected) << url;
  }
  EXPECT_TRUE(isDataUrl("Data:"));
  EXPECT_FALSE(isDataUrl("data"));
  EXPECT_FALSE(isDataUrl("xdata:,"));
}

}  // namespace
}  // namespace kesu
