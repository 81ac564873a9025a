// Compares the popup with approved pictures (tests/golden) by what an eye would notice. KESU_RENEW_GOLDEN=1 writes them
// again.
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "drawing/Pictures.h"
#include "testing/MessageScreen.h"
#include "tests/popup/PopupPictures.h"
#include "tests/popup/PopupStage.h"

namespace kesu {
namespace {

using testing::payloadOf;
using testing::PopupStage;

constexpr const char* kGoldenTitle = "Ten new episodes";
constexpr const char* kGoldenText = "The last season begins tonight. All that you have missed is here, too.";

// Bands of colour: a picture that compresses well.
std::string bandsUrl() {
  std::vector<std::uint32_t> pixels;
  for (int y = 0; y < 60; ++y) {
    for (int x = 0; x < 120; ++x) {
      pixels.push_back(x < 60 ? 0xFF1B7F79U : y < 30 ? 0xFFE8B04BU : 0xFF7A2E5AU);
    }
  }
  return testing::pictureUrl(Image(120, 60, std::move(pixels)));
}

Value button(const char* title, const char* face) {
  return Value(Array{Value(title), Value(""), Value(face), Value("#FFFFFF")});
}

Dictionary dataWith(Array buttons, bool hasPicture = true) {
  Dictionary data{{"titleColor", "#FFFFFF"}, {"msgColor", "#E4E8F0"}, {"canvas_bgColor", "#1C2433"}};
  data.set("buttons", std::move(buttons));
  if (hasPicture) {
    data.set("imageSourceURL", bandsUrl());
    data.set("imageWidth", 120);
    data.set("imageHeight", 60);
  }
  return data;
}

Array twoButtons() {
  return {button("Watch", "#2E6BD6"), button("Later", "#1B998B")};
}

struct Golden {
  std::string name;
  std::vector<Dictionary> messages;
  bool pagesOn = false;
};

std::vector<Golden> goldens() {
  const Dictionary full = payloadOf(kGoldenTitle, kGoldenText, dataWith(twoButtons()));
  std::string endless;
  for (int i = 0; i < 80; ++i) {
    endless += kGoldenText + std::string(" ");
  }
  Array five;
  for (const char* title : {"One", "Two", "Three", "Four", "Five"}) {
    five.push_back(button(title, "#8E44AD"));
  }
  return {{"picture-and-texts", {full}},
          {"title-over-picture", {payloadOf(kGoldenTitle, kGoldenText, dataWith(twoButtons()), "p_temp_1")}},
          {"long-text", {payloadOf(kGoldenTitle, endless, dataWith(twoButtons()))}},
          {"five-buttons", {payloadOf(kGoldenTitle, kGoldenText, dataWith(five, false))}},
          {"paged", {full, full, full}, true},
          {"nothing", {}}};
}

ImagePtr pictureOf(const Golden& golden) {
  PopupStage stage;
  stage.show(golden.messages);
  if (golden.pagesOn) {
    stage.swipe(SwipeDirection::Left);
  }
  return testing::thumbnail(stage.picture(1920, 1080), false);
}

std::string pathOf(const std::string& name) {
  return std::string(KESU_GOLDEN_PICTURES) + "/" + name + ".png";
}

ImagePtr goldenPicture(const std::string& name) {
  std::ifstream file(pathOf(name), std::ios::binary);
  return decodeImage(std::string{std::istreambuf_iterator<char>(file), {}}).image;
}

TEST(Golden, LooksAsBefore) {
  for (const Golden& golden : goldens()) {
    SCOPED_TRACE(golden.name);
    const ImagePtr now = pictureOf(golden);
    if (std::getenv("KESU_RENEW_GOLDEN") != nullptr) {
      ASSERT_TRUE(testing::writePng(pathOf(golden.name), *now));
    }
    const ImagePtr before = goldenPicture(golden.name);
    ASSERT_NE(before, nullptr);
    ASSERT_EQ(now->width(), before->width());
    ASSERT_EQ(now->height(), before->height());
    const testing::Difference difference = testing::differenceOf(*before, *now);
    if (!difference.isSlight()) {
      testing::writePng(golden.name + "-now.png", *now);
    }
    EXPECT_TRUE(difference.isSlight()) << "mean " << difference.mean << ", largest " << difference.largest << "; see "
                                       << golden.name << "-now.png";
  }
}

// The picture with one part of it moved.
ImagePtr moved(const Image& image, const PixelRect& part, int dx, int dy) {
  std::vector<std::uint32_t> pixels(image.pixels(), image.pixels() + image.byteCount() / sizeof(std::uint32_t));
  for (int y = 0; y < part.height; ++y) {
    for (int x = 0; x < part.width; ++x) {
      pixels[static_cast<std::size_t>((part.y + y + dy) * image.width() + part.x + x + dx)] =
          image.pixels()[(part.y + y) * image.width() + part.x + x];
    }
  }
  return std::make_shared<const Image>(image.width(), image.height(), std::move(pixels));
}

// Half of each: what is moved by a pixel in one of them is moved by half a pixel here.
ImagePtr mixedWith(const Image& one, const Image& other) {
  constexpr std::uint32_t kUpperBits = 0x7F7F7F7FU;
  std::vector<std::uint32_t> pixels;
  for (std::size_t i = 0; i < one.byteCount() / sizeof(std::uint32_t); ++i) {
    pixels.push_back((one.pixels()[i] >> 1U & kUpperBits) + (other.pixels()[i] >> 1U & kUpperBits));
  }
  return std::make_shared<const Image>(one.width(), one.height(), std::move(pixels));
}

// The comparison must accept text that is typeset a little differently, and nothing that is visible.
TEST(Golden, NoticesWhatAnEyeNotices) {
  const Golden full = goldens().front();
  const ImagePtr good = goldenPicture(full.name);
  ASSERT_NE(good, nullptr);
  const auto with = [](const char* title, const char* text, const Dictionary& data) {
    return pictureOf({"", {payloadOf(title, text, data)}});
  };
  Dictionary otherCanvas = dataWith(twoButtons());
  otherCanvas.set("canvas_bgColor", "#33241C");
  const PixelRect secondButton{151, 375, 116, 37};
  const std::pair<const char*, ImagePtr> faults[] = {
      {"button moved by 10 points", moved(*good, secondButton, 4, 0)},
      {"no title", with("", kGoldenText, dataWith(twoButtons()))},
      {"other title of the same length", with("Xxx xxx xxxxxxxx", kGoldenText, dataWith(twoButtons()))},
      {"no text", with(kGoldenTitle, "", dataWith(twoButtons()))},
      {"no picture", with(kGoldenTitle, kGoldenText, dataWith(twoButtons(), false))},
      {"one button less", with(kGoldenTitle, kGoldenText, dataWith({button("Watch", "#2E6BD6")}))},
      {"no title on a button",
       with(kGoldenTitle, kGoldenText, dataWith({button("Watch", "#2E6BD6"), button("", "#1B998B")}))},
      {"other colour of a button",
       with(kGoldenTitle, kGoldenText, dataWith({button("Watch", "#2E6BD6"), button("Later", "#2B799B")}))},
      {"other canvas", with(kGoldenTitle, kGoldenText, otherCanvas)},
  };
  for (const auto& [fault, picture] : faults) {
    const testing::Difference difference = testing::differenceOf(*good, *picture);
    EXPECT_FALSE(difference.isSlight()) << fault << ": " << difference.mean << " " << difference.largest;
  }
  const PixelRect title{28, 239, 244, 18};
  const testing::Difference hinting = testing::differenceOf(*good, *mixedWith(*good, *moved(*good, title, 1, 0)));
  EXPECT_TRUE(hinting.isSlight()) << hinting.mean << " " << hinting.largest;
}

}  // namespace
}  // namespace kesu
