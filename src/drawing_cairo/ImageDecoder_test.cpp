#include "drawing_cairo/ImageDecoder.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdlib>

#include "testing/MemoryPeak.h"
#include "testing/MutatedReplies.h"
#include "testing/PictureFiles.h"

namespace kesu {
namespace {

using namespace std::string_literals;
using testing::exifSegment;
using testing::gifFile;
using testing::GifLayout;
using testing::inserted;
using testing::jpegFile;
using testing::patched;
using testing::pngChunk;
using testing::pngFile;
using testing::webpFile;

constexpr std::uint32_t kRedPixel = 0xFFFF0000;
constexpr std::uint32_t kGreen = 0xFF00FF00;
constexpr std::uint32_t kBlue = 0xFF0000FF;
constexpr std::uint32_t kWhite = 0xFFFFFFFF;

constexpr int kWidth = 48;
constexpr int kHeight = 32;

/// A quarter of the picture in each colour: red and green above, blue and white below.
std::uint32_t quarters(int x, int y) {
  constexpr std::uint32_t kColors[2][2] = {{kRedPixel, kGreen}, {kBlue, kWhite}};
  return kColors[y < kHeight / 2 ? 0 : 1][x < kWidth / 2 ? 0 : 1];
}

const std::vector<GifColorType> kGifColors = {{255, 0, 0}, {0, 255, 0}, {0, 0, 255}, {255, 255, 255}};

std::string quartersGif(bool interlaced = false) {
  const GifLayout layout{kWidth, kHeight, 0, 0, kWidth, kHeight, interlaced};
  return gifFile(layout, kGifColors,
                 [](int x, int y) { return (y < kHeight / 2 ? 0U : 2U) + (x < kWidth / 2 ? 0U : 1U); });
}

std::uint32_t pixelAt(const Image& image, int x, int y) {
  return image.pixels()[y * image.width() + x];
}

bool isNearPixel(std::uint32_t left, std::uint32_t right) {
  bool near = true;
  for (const int shift : {0, 8, 16, 24}) {
    near = near && std::abs(static_cast<int>(left >> shift & 0xFF) - static_cast<int>(right >> shift & 0xFF)) <= 6;
  }
  return near;
}

/// The colours in the middle of the quarters: upper left, upper right, lower left, lower right.
std::string cornersOf(const Image& image) {
  std::string corners;
  for (const int y : {image.height() / 4, image.height() * 3 / 4}) {
    for (const int x : {image.width() / 4, image.width() * 3 / 4}) {
      const std::uint32_t pixel = pixelAt(image, x, y);
      corners += isNearPixel(pixel, kRedPixel) ? 'r'
                 : isNearPixel(pixel, kGreen)  ? 'g'
                 : isNearPixel(pixel, kBlue)   ? 'b'
                 : isNearPixel(pixel, kWhite)  ? 'w'
                                               : '?';
    }
  }
  return corners;
}

TEST(ImageDecoder, DecodesEveryKind) {
  const std::pair<const char*, std::string> kFiles[] = {
      {"png", pngFile(kWidth, kHeight, quarters)},
      {"jpeg", jpegFile(kWidth, kHeight, quarters)},
      {"progressive jpeg", jpegFile(kWidth, kHeight, quarters, TJPF_RGBA, TJFLAG_PROGRESSIVE)},
      {"jpeg with bytes behind its end", jpegFile(kWidth, kHeight, quarters) + "rest"},
      {"lossless webp", webpFile(kWidth, kHeight, quarters)},
      {"lossy webp", webpFile(kWidth, kHeight, quarters, false)},
      {"gif", quartersGif()},
      {"interlaced gif", quartersGif(true)},
  };
  for (const auto& [name, file] : kFiles) {
    const DecodedImage decoded = decodeImage(file);
    ASSERT_EQ(decoded.status, ImageStatus::Decoded) << name;
    EXPECT_EQ(decoded.image->width(), kWidth) << name;
    EXPECT_EQ(decoded.image->height(), kHeight) << name;
    EXPECT_TRUE(decoded.image->isOpaque()) << name;
    EXPECT_EQ(cornersOf(*decoded.image), "rgbw") << name;
  }
}

TEST(ImageDecoder, MultipliesColoursByOpacity) {
  const auto paint = [](int x, int) { return x == 0 ? 0x80FF8000U : x == 1 ? 0x00FFFFFFU : kGreen; };
  for (const std::string& file : {pngFile(3, 1, paint), webpFile(3, 1, paint)}) {
    const ImagePtr image = decodeImage(file).image;
    ASSERT_NE(image, nullptr);
    EXPECT_EQ(std::vector(image->pixels(), image->pixels() + 3), (std::vector<std::uint32_t>{0x80804000, 0, kGreen}));
    EXPECT_FALSE(image->isOpaque());
  }
}

TEST(ImageDecoder, TurnsJpegAsItsOrientationSays) {
  // The corners that the stored quarters "rgbw" have to be shown as, for each orientation.
  constexpr const char* kShown[] = {"rgbw", "rgbw", "grwb", "wbgr", "bwrg", "rbgw", "brwg", "wgbr", "gwrb", "rgbw"};
  const std::string stored = jpegFile(kWidth, kHeight, quarters);
  for (int orientation = 0; orientation < 10; ++orientation) {
    for (const bool littleEndian : {false, true}) {
      const ImagePtr image = decodeImage(inserted(stored, 2, exifSegment(orientation, littleEndian))).image;
      ASSERT_NE(image, nullptr);
      const bool isTurned = orientation >= 5 && orientation <= 8;
      EXPECT_EQ(image->width(), isTurned ? kHeight : kWidth);
      EXPECT_EQ(cornersOf(*image), kShown[orientation]) << orientation << littleEndian;
    }
  }
}

TEST(ImageDecoder, IgnoresDamagedExif) {
  const std::string exif = exifSegment(6, true);
  const std::string stored = jpegFile(kWidth, kHeight, quarters);
  for (const auto& [offset, bytes] : {std::pair<std::size_t, std::string>{14, "\xFF\xFF\xFF\xFF"},
                                      {18, "\xFF\xFF\x12\x02"},
                                      {22, "\x02"},
                                      {4, "Exif\1"},
                                      {10, "\0\0\0\0\0\0\0\0"s}}) {
    const ImagePtr image = decodeImage(inserted(stored, 2, patched(exif, offset, bytes))).image;
    ASSERT_NE(image, nullptr) << offset;
    EXPECT_EQ(cornersOf(*image), "rgbw") << offset;
  }
}

TEST(ImageDecoder, ShowsInkColours) {
  // Stored as Adobe's programs do: 255 is no ink. The painter's channels are then cyan, magenta, yellow from high to
  // low, and black as the opacity: no ink but cyan shows the reverse of red.
  const auto inks = [](int x, int y) { return (quarters(x, y) & 0xFFFFFF) | 0xFF000000; };
  const std::string adobe = jpegFile(kWidth, kHeight, inks, TJPF_CMYK);
  EXPECT_EQ(cornersOf(*decodeImage(adobe).image), "rgbw");
  // Without that program's mark, 255 is full ink.
  const auto reversed = [](int x, int y) { return ~quarters(x, y); };
  std::string plain = jpegFile(kWidth, kHeight, reversed, TJPF_CMYK);
  const std::size_t mark = plain.find("Adobe");
  ASSERT_NE(mark, std::string::npos);
  const bool isYcck = plain[mark + 11] == 2;
  if (!isYcck) {
    plain[mark] = 'X';
    EXPECT_EQ(cornersOf(*decodeImage(plain).image), "???\?"s);
  }
  const auto halfBlack = [](int, int) { return 0x80FFFFFFU; };
  const ImagePtr grey = decodeImage(jpegFile(kWidth, kHeight, halfBlack, TJPF_CMYK)).image;
  EXPECT_TRUE(isNearPixel(pixelAt(*grey, 5, 5), 0xFF808080)) << std::hex << pixelAt(*grey, 5, 5);
}

TEST(ImageDecoder, PlacesGifFrameOnItsCanvas) {
  const auto index = [](int x, int y) { return x == 0 && y == 0 ? 3U : 1U; };
  const ImagePtr image = decodeImage(gifFile({6, 4, 2, 1, 8, 2, false, 3}, kGifColors, index)).image;
  ASSERT_NE(image, nullptr);
  EXPECT_EQ(image->width(), 6);
  EXPECT_EQ(image->height(), 4);
  EXPECT_EQ(pixelAt(*image, 2, 1), 0U) << "the transparent index";
  EXPECT_EQ(pixelAt(*image, 3, 1), kGreen);
  EXPECT_EQ(pixelAt(*image, 5, 2), kGreen) << "cut at the right edge";
  EXPECT_EQ(pixelAt(*image, 0, 2), 0U) << "outside of the frame";
  EXPECT_EQ(pixelAt(*image, 3, 3), 0U);
  const ImagePtr none = decodeImage(gifFile({2, 2, 9, 9, 2, 2}, kGifColors, index)).image;
  ASSERT_NE(none, nullptr);
  EXPECT_EQ(pixelAt(*none, 1, 1), 0U);
}

// What the decoder is told to be fed, and what it has to say.
struct Hostile {
  std::string name;
  std::string file;
  ImageStatus expected;
};

constexpr long kLimitKilobytes = 64 * 1024;

void expectStatuses(const std::vector<Hostile>& cases) {
  for (const Hostile& hostile : cases) {
    const testing::MemoryPeak peak;
    const DecodedImage decoded = decodeImage(hostile.file);
    EXPECT_LT(peak.kilobytes(), kLimitKilobytes) << hostile.name;
    EXPECT_EQ(decoded.status, hostile.expected) << hostile.name;
    EXPECT_EQ(decoded.image != nullptr, hostile.expected == ImageStatus::Decoded) << hostile.name;
  }
}

/// The file cut at many places; behind `magic` bytes it is damaged, before that unknown.
void expectDamagedWhenCut(const std::string& file, std::size_t magic, std::size_t unneeded) {
  for (std::size_t size = 0; size + unneeded < file.size(); ++size) {
    const ImageStatus expected = size < magic ? ImageStatus::UnknownKind : ImageStatus::Damaged;
    ASSERT_EQ(decodeImage(file.substr(0, size)).status, expected) << size << " of " << file.size();
  }
}

TEST(ImageDecoder, RefusesHostilePng) {
  constexpr std::size_t kSize = 16;  // Width and height, four bytes each.
  const std::string good = pngFile(kWidth, kHeight, quarters);
  const std::string header = good.substr(0, 33);
  const std::string end = pngChunk("IEND", "");
  const auto sized = [](const std::string& dimensions) {
    return "\x89PNG\r\n\x1A\n" + pngChunk("IHDR", dimensions + "\x08\x06\0\0\0"s) + pngChunk("IDAT", "x");
  };
  expectStatuses({
      {"30,000 x 30,000", sized("\0\0\x75\x30\0\0\x75\x30"s), ImageStatus::TooLarge},
      {"wide", sized("\0\0\x10\x01\0\0\0\x01"s), ImageStatus::TooLarge},
      {"too many pixels", sized("\0\0\x10\0\0\0\x10\0"s), ImageStatus::TooLarge},
      {"2 to the 32 - 1", sized("\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF"s), ImageStatus::TooLarge},
      {"no width", sized("\0\0\0\0\0\0\0\x01"s), ImageStatus::Damaged},
      {"size without its check sum", patched(good, kSize + 3, "\x31"), ImageStatus::Damaged},
      {"another kind behind the name", good.substr(0, 8) + jpegFile(8, 8, quarters), ImageStatus::Damaged},
      {"no pixels", header + end, ImageStatus::Damaged},
      {"pixels of too few rows", patched(sized("\0\0\x04\0\0\0\x04\0"s), 33, good.substr(33)), ImageStatus::Damaged},
      {"chunk longer than the file", inserted(good, 33, "\x7F\xFF\xFF\xFFtEXt"), ImageStatus::Damaged},
      {"damaged profile", inserted(good, 33, pngChunk("iCCP", "x\0\0garbage"s)), ImageStatus::Decoded},
      {"index beyond the palette",
       "\x89PNG\r\n\x1A\n" + pngChunk("IHDR", "\0\0\0\x01\0\0\0\x01\x08\x03\0\0\0"s) + pngChunk("PLTE", "abc") +
           pngChunk("IDAT", "\x78\x01\x01\x02\0\xFD\xFF\0\x7F\0\x81\0\x80"s) + end,
       ImageStatus::Decoded},
      {"over the longest file", good + std::string(std::size_t{8} << 20, ' '), ImageStatus::TooLarge},
  });
  expectDamagedWhenCut(good, 8, 12 + 4);
}

/// A JPEG with the content of its start of frame replaced from the height on.
std::string jpegOfSize(const std::string& file, const std::string& heightAndWidth, char startOfFrame = '\xC0') {
  return patched(file, file.find("\xFF"s + startOfFrame) + 5, heightAndWidth);
}

/// A progressive JPEG of 2048 x 2048 pixels whose scans never end.
std::string endlessScans() {
  const std::string file = jpegFile(kWidth, kHeight, quarters, TJPF_RGBA, TJFLAG_PROGRESSIVE);
  std::string endless = jpegOfSize(file.substr(0, file.size() - 2), "\x08\0\x08\0"s, '\xC2');
  for (int count = 0; count < 20'000; ++count) {
    endless += "\xFF\xDA\0\x08\x01\x01\0\x01\x3F\0"s;
  }
  return endless + "\xFF\xD9";
}

TEST(ImageDecoder, RefusesHostileJpeg) {
  const std::string good = jpegFile(kWidth, kHeight, quarters);
  const std::string progressive = jpegFile(kWidth, kHeight, quarters, TJPF_RGBA, TJFLAG_PROGRESSIVE);
  const std::size_t scan = good.find("\xFF\xDA");
  std::string oneColorFirst = jpegOfSize(good, "\x0C\0\x0C\0"s);
  oneColorFirst[oneColorFirst.find("\xFF\xDA") + 4] = 1;
  expectStatuses({
      {"30,000 x 30,000", jpegOfSize(good, "\x75\x30\x75\x30"), ImageStatus::TooLarge},
      {"65,535 x 1", jpegOfSize(good, "\0\x01\xFF\xFF"s), ImageStatus::TooLarge},
      {"no width", jpegOfSize(good, "\0\x01\0\0"s), ImageStatus::Damaged},
      {"height to be told later", jpegOfSize(good, "\0\0\0\x01"s), ImageStatus::Damaged},
      {"large progressive", jpegOfSize(progressive, "\x0C\0\x0C\0"s, '\xC2'), ImageStatus::TooLarge},
      {"large, one colour after the other", oneColorFirst, ImageStatus::TooLarge},
      {"endless scans", endlessScans(), ImageStatus::Damaged},
      {"no size before the pixels", good.substr(0, 2) + good.substr(scan), ImageStatus::Damaged},
      {"nothing but markers", "\xFF\xD8" + std::string(100'000, '\xFF'), ImageStatus::Damaged},
      {"another kind behind the name", "\xFF\xD8\xFF" + pngFile(8, 8, quarters), ImageStatus::Damaged},
      {"segment longer than the file", good.substr(0, 2) + "\xFF\xE1\xFF\xFF" + good.substr(2), ImageStatus::Damaged},
      {"two colours", patched(good, good.find("\xFF\xC0") + 9, "\x02"), ImageStatus::Damaged},
      {"fault in the pixels", good.substr(0, good.size() - 2) + "fault\xFF\xD9", ImageStatus::Decoded},
      {"no tables", good.substr(0, 2) + good.substr(good.find("\xFF\xC0")), ImageStatus::Damaged},
  });
  expectDamagedWhenCut(good, 3, 0);
  expectDamagedWhenCut(progressive, 3, 0);
}

TEST(ImageDecoder, RefusesHostileWebp) {
  const std::string lossless = webpFile(kWidth, kHeight, quarters);
  const std::string lossy = webpFile(kWidth, kHeight, quarters, false);
  constexpr std::size_t kLosslessSize = 21;
  constexpr std::size_t kLossySize = 26;
  const auto extended = [](char flags, const std::string& canvas) {
    return "RIFF\x40\0\0\0WEBPVP8X\x0A\0\0\0"s + flags + "\0\0\0"s + canvas;
  };
  expectStatuses({
      {"30,000 x 30,000", extended(0, "\x2F\x75\0\x2F\x75\0"s), ImageStatus::TooLarge},
      {"16 million wide", extended(0, "\xFF\xFF\xFF\0\0\0"s), ImageStatus::TooLarge},
      {"large lossless", patched(lossless, kLosslessSize, "\xFF\xFF\xFF\x0F"), ImageStatus::TooLarge},
      {"large lossy", patched(lossy, kLossySize, "\xFF\x3F\xFF\x3F"), ImageStatus::TooLarge},
      {"no width", patched(lossy, kLossySize, "\0\0\0\0"s), ImageStatus::Damaged},
      {"pixels of a smaller picture", patched(lossless, kLosslessSize, "\xFF\xC3\x7F"), ImageStatus::Damaged},
      {"animated", extended('\x02', "\x0F\0\0\x0F\0\0"s) + lossless.substr(12), ImageStatus::Damaged},
      {"canvas unlike the picture", extended(0, "\x0F\0\0\x0F\0\0"s) + lossless.substr(12), ImageStatus::Damaged},
      {"another kind behind the name", lossless.substr(0, 12) + pngFile(8, 8, quarters), ImageStatus::Damaged},
      {"no signature", patched(lossless, 20, "x"), ImageStatus::Damaged},
      {"another container", patched(lossless, 8, "WAVE"), ImageStatus::UnknownKind},
  });
  expectDamagedWhenCut(lossless, 12, 4);
  expectDamagedWhenCut(lossy, 12, 4);
}

// A lossless picture of 48 x 32 of one colour, without its header, whose pixels all name the group of codes `group`.
// Written by the bit, the lowest of a byte first: whether there is a transform, a cache of colours, a picture of groups
// (of tiles of 4 x 4), then its codes of one symbol each, then those of the first group.
std::string streamNamingGroup(const std::string& group) {
  const std::string bits = "001000" + "0"s + "101" + group + "101" + group + "100010001000" + "10001000100010001000";
  std::string bytes(bits.size() / 8 + 16, '\0');
  for (std::size_t bit = 0; bit < bits.size(); ++bit) {
    bytes[bit / 8] = static_cast<char>(bytes[bit / 8] | (bits[bit] - '0') << bit % 8);
  }
  return bytes;
}

std::string webpChunk(const std::string& name, const std::string& content) {
  const auto size = static_cast<char>(content.size());
  return name + size + "\0\0\0"s + content + std::string(content.size() % 2, '\0');
}

std::string webpOf(const std::string& chunks) {
  const std::size_t size = chunks.size() + 4;
  return "RIFF"s + static_cast<char>(size & 0xFFU) + static_cast<char>(size >> 8) + "\0\0WEBP"s + chunks;
}

TEST(ImageDecoder, RefusesWebpWhoseTablesWouldFillTheMemory) {
  const std::string few = streamNamingGroup("00000000");
  const std::string many = streamNamingGroup("11111111");
  const std::string lossy = webpFile(kWidth, kHeight, quarters, false).substr(12);
  const auto plain = [](const std::string& stream) { return webpChunk("VP8L", "\x2F\x2F\xC0\x07\0"s + stream); };
  const auto transparent = [&](const std::string& stream) {
    return webpChunk("VP8X", "\x10\0\0\0\x2F\0\0\x1F\0\0"s) + webpChunk("ALPH", "\x01" + stream) + lossy;
  };
  expectStatuses({
      {"one group", webpOf(plain(few)), ImageStatus::Decoded},
      {"65,536 groups", webpOf(plain(many)), ImageStatus::TooLarge},
      {"one group of opacity", webpOf(transparent(few)), ImageStatus::Decoded},
      {"65,536 groups of opacity", webpOf(transparent(many)), ImageStatus::TooLarge},
      {"two pictures", webpOf(plain(few) + plain(few)), ImageStatus::Damaged},
  });
}

TEST(ImageDecoder, RefusesHostileGif) {
  constexpr std::size_t kCanvas = 6;
  const std::string good = quartersGif();
  const std::size_t frame = good.find(',', 13 + 12 + 8);
  const auto withFrame = [&](const std::string& size) { return patched(good, frame + 5, size); };
  const std::string noPalette = patched(good, 10, "\x70").erase(13, 12);
  expectStatuses({
      {"30,000 x 30,000", patched(good, kCanvas, "\x30\x75\x30\x75"), ImageStatus::TooLarge},
      {"too many pixels", patched(good, kCanvas, "\0\x10\0\x10"s), ImageStatus::TooLarge},
      {"no canvas", patched(good, kCanvas, "\0\0\0\0"s), ImageStatus::Damaged},
      {"frame of 65,535 x 65,535", withFrame("\xFF\xFF\xFF\xFF"), ImageStatus::TooLarge},
      {"empty frame", withFrame("\0\0\0\0"s), ImageStatus::Damaged},
      {"frame larger than its pixels", withFrame("\xFF\x0F\xFF\x0E"s), ImageStatus::Damaged},
      {"no palette", noPalette, ImageStatus::Damaged},
      {"no frame", good.substr(0, 25) + ";", ImageStatus::Damaged},
      {"unknown block", patched(good, frame, "x"), ImageStatus::Damaged},
      {"code size", patched(good, frame + 10, "\x1F"), ImageStatus::Damaged},
      {"index beyond the palette", patched(good, 10, "\xF0").erase(13 + 6, 6), ImageStatus::Decoded},
      {"another kind behind the name", "GIF89a" + pngFile(8, 8, quarters), ImageStatus::TooLarge},
      {"endless texts", good.substr(0, 25) + std::string(1'000'000, '!'), ImageStatus::Damaged},
  });
  expectDamagedWhenCut(good, 6, 2);
}

TEST(ImageDecoder, ReportsUnknownKinds) {
  for (const std::string& file : {""s, "\x89PNG"s, "BM......"s, "<svg/>"s, "GIF88a"s, "RIFF....WEB"s, "\xFF\xD8"s}) {
    EXPECT_EQ(decodeImage(file).status, ImageStatus::UnknownKind) << file;
  }
}

TEST(ImageDecoder, SurvivesMutatedFiles) {
  constexpr int kRounds = 3000;
  constexpr ImageLimits kLimits{std::size_t{1} << 20, 512, std::size_t{1} << 16, std::size_t{1} << 16};
  const std::string files[] = {
      pngFile(kWidth, kHeight, quarters),
      jpegFile(kWidth, kHeight, quarters),
      inserted(jpegFile(kWidth, kHeight, quarters, TJPF_RGBA, TJFLAG_PROGRESSIVE), 2, exifSegment(5, false)),
      webpFile(kWidth, kHeight, quarters),
      webpFile(kWidth, kHeight, quarters, false),
      quartersGif(true)};
  std::mt19937 random(20161121);
  for (const std::string& file : files) {
    for (int round = 0; round < kRounds; ++round) {
      const DecodedImage decoded = decodeImage(testing::mutated(file, random), kLimits);
      ASSERT_EQ(decoded.image != nullptr, decoded.status == ImageStatus::Decoded);
      ASSERT_TRUE(decoded.image == nullptr || decoded.image->byteCount() <= kLimits.pixels * 4);
    }
  }
}

}  // namespace
}  // namespace kesu
