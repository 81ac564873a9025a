#include "drawing_cairo/PangoText.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <string>
#include <thread>
#include <vector>

#include "drawing/Canvas.h"
#include "drawing_cairo/FontSet.h"
#include "testing/FontRelease.h"
#include "testing/NestedValues.h"

namespace kesu {
namespace {

using testing::repeated;

const Font kLight{"HelveticaNeue-Light", 24.0};

TextStyle styleOf(int lines, TextAlignment alignment = TextAlignment::Natural) {
  return TextStyle{.font = kLight, .alignment = alignment, .lines = lines};
}

/// Where a text leaves marks in a box of 400 x 100 points.
struct Ink {
  int left = 400;
  int right = -1;
  int bottom = -1;
  bool isColored = false;
};

Ink inkOf(const std::string& text, const TextStyle& style) {
  std::vector<std::uint32_t> pixels(400 * 100);
  makeCanvas({pixels.data(), 400, 100, 400})
      ->drawText(TextLayout(text, style, {400.0, 100.0}), {0.0, 0.0}, Color::white());
  Ink ink;
  for (int i = 0; i < 400 * 100; ++i) {
    const std::uint32_t pixel = pixels[static_cast<std::size_t>(i)];
    if ((pixel >> 24) > 0x60) {
      ink.left = std::min(ink.left, i % 400);
      ink.right = std::max(ink.right, i % 400);
      ink.bottom = std::max(ink.bottom, i / 400);
      const int red = static_cast<int>((pixel >> 16) & 0xFF);
      const int blue = static_cast<int>(pixel & 0xFF);
      ink.isColored = ink.isColored || std::abs(red - blue) > 40;
    }
  }
  return ink;
}

/// The pixels of a text that was laid out, in a box of 800 x 50 points.
std::vector<std::uint32_t> pictureOf(const TextLayout& layout) {
  std::vector<std::uint32_t> pixels(800 * 50);
  makeCanvas({pixels.data(), 800, 50, 800})->drawText(layout, {0.0, 0.0}, Color::white());
  return pixels;
}

class PangoTextTest : public ::testing::Test {
 protected:
  ~PangoTextTest() override { setFontChoice({}); }
};

TEST_F(PangoTextTest, BreaksLinesAtWordsWithinTheWidth) {
  const std::string text = repeated("some words ", 20);
  const TextLayout one(text, styleOf(0), {});
  const TextLayout many(text, styleOf(0), {300.0, 0.0});
  EXPECT_EQ(one.lineCount(), 1);
  EXPECT_GT(one.size().width, 1500.0);
  EXPECT_GE(many.lineCount(), static_cast<int>(one.size().width / 300.0));
  EXPECT_LE(many.size().width, 300.0);
  EXPECT_NEAR(many.size().height, many.lineCount() * one.size().height, 0.5);
  EXPECT_NEAR(one.size().height, 1.17 * 24.0, 1.5);
}

TEST_F(PangoTextTest, LimitsLinesHoweverTheTextIsCutUp) {
  for (const std::string& text : {repeated("word ", 200), repeated("w\n", 50), repeated("w\r\n\r\n", 50)}) {
    EXPECT_EQ(TextLayout(text, styleOf(1), {200.0, 0.0}).lineCount(), 1);
    EXPECT_EQ(TextLayout(text, styleOf(3), {200.0, 0.0}).lineCount(), 3);
    EXPECT_EQ(TextLayout(text, styleOf(3), {}).lineCount(), text[1] == 'o' ? 1 : 3);
    const TextLayout high(text, styleOf(0), {200.0, 100.0});
    EXPECT_EQ(high.lineCount(), 3);
    EXPECT_LE(high.size().height, 100.0);
    EXPECT_EQ(TextLayout(text, TextStyle{.font = kLight, .lines = 2, .hasNoEllipsis = true}, {200.0, 0.0}).lineCount(),
              2);
  }
  EXPECT_EQ(TextLayout("high", styleOf(0), {200.0, 3.0}).lineCount(), 1);
  EXPECT_EQ(TextLayout("high", styleOf(0), {200.0, 3.0}).size().height, 3.0);
}

TEST_F(PangoTextTest, EndsCutTextInAnEllipsis) {
  const std::string text = repeated("x", 100);
  const TextStyle solid{.font = kLight, .lines = 1, .hasNoEllipsis = true};
  EXPECT_NE(inkOf(text, styleOf(1)).right, inkOf(text, solid).right);
  // The dots at the end stand on the baseline: their column has no marks above.
  const Ink cut = inkOf(text, styleOf(1));
  EXPECT_GT(cut.right, 380);
  EXPECT_LT(TextLayout(text, styleOf(1), {200.0, 0.0}).size().width, 200.5);
}

TEST_F(PangoTextTest, ShrinksASingleLineOnlyAsFarAsAllowed) {
  const double natural = TextLayout("Showing 3 of 12", styleOf(1), {}).size().width;
  TextStyle style = styleOf(1);
  style.minimumScaleFactor = 0.85;
  const TextLayout shrunk("Showing 3 of 12", style, {natural * 0.9, 0.0});
  EXPECT_NEAR(shrunk.size().height / TextLayout("S", styleOf(1), {}).size().height, 0.9, 0.02);
  EXPECT_GT(shrunk.size().width, natural * 0.87);
  const TextLayout cut("Showing 3 of 12", style, {natural * 0.5, 0.0});
  EXPECT_NEAR(cut.size().height / TextLayout("S", styleOf(1), {}).size().height, 0.85, 0.02);
}

TEST_F(PangoTextTest, ShrinksUntilNothingIsCut) {
  TextStyle style = styleOf(1);
  style.minimumScaleFactor = 0.5;
  const std::string text = "Showing 3 of 12 WAVy\u276F in-app messages";
  const double natural = TextLayout(text, styleOf(1), {}).size().width;
  for (double share = 0.99; share > 0.55; share -= 0.0083) {
    const double width = natural * share;
    const TextLayout shrunk(text, style, {width, 0.0});
    const double scale = shrunk.size().height / TextLayout("S", styleOf(1), {}).size().height;
    EXPECT_NEAR(scale, share, 0.03);
    style.hasNoEllipsis = true;  // Neither an ellipsis nor a cut: both ways to set it look the same.
    const TextLayout solid(text, style, {width, 0.0});
    style.hasNoEllipsis = false;
    EXPECT_TRUE(pictureOf(shrunk) == pictureOf(solid)) << share;
  }
}

TEST_F(PangoTextTest, AlignsAsItsScriptReads) {
  const std::string arabic = "\u0645\u0631\u062d\u0628\u0627";
  EXPECT_LT(inkOf("Hello", styleOf(1)).left, 10);
  EXPECT_GT(inkOf(arabic, styleOf(1)).right, 390);
  EXPECT_LT(inkOf(arabic, styleOf(1, TextAlignment::Left)).left, 10);
  EXPECT_GT(inkOf("Hello", styleOf(1, TextAlignment::Right)).right, 390);
  for (const std::string& text : {arabic, std::string("Hello")}) {
    const Ink middle = inkOf(text, styleOf(1, TextAlignment::Center));
    EXPECT_NEAR((middle.left + middle.right) / 2.0, 200.0, 4.0);
  }
  const Ink mixed = inkOf("Hello\n" + arabic, styleOf(0));
  EXPECT_LT(mixed.left, 10);
  EXPECT_GT(mixed.right, 390);
}

TEST_F(PangoTextTest, FindsFontsForScriptsAndEmoji) {
  for (const char* text : {"\u276E", "\u276F", "\u65e5\u672c\u8a9e", "\u0928\u092e\u0938\u094d\u0924\u0947"}) {
    EXPECT_GE(inkOf(text, styleOf(1)).right, 4) << text;
    EXPECT_FALSE(inkOf(text, styleOf(1)).isColored) << text;
  }
  EXPECT_TRUE(inkOf("\U0001F600", styleOf(1)).isColored);
  EXPECT_GT(inkOf("Hi", TextStyle{.font = {"", 24.0}}).right, inkOf("Hi", TextStyle{.font = {"", 12.0}}).right);
}

TEST_F(PangoTextTest, AcceptsAnyBytesAndNumbers) {
  const std::string bytes[] = {std::string("a\0b", 3), "\xff\xfe\xc3",           "\xed\xa0\x80", "\x01\x1b\x7f\u0085",
                               "\u202e\u2066",         repeated("\u0301", 2000), "\n\n\n",       "\xf0\x9f"};
  const double numbers[] = {0.0, -5.0, 1e-9, 1e12, std::nan(""), std::numeric_limits<double>::infinity()};
  for (const std::string& text : bytes) {
    for (const double number : numbers) {
      for (const int lines : {0, 1, 2}) {
        const TextStyle style{.font = {"HelveticaNeue-Light", number}, .lines = lines, .minimumScaleFactor = number};
        const TextLayout layout(text, style, {number, number});
        EXPECT_TRUE(std::isfinite(layout.size().width) && std::isfinite(layout.size().height));
        EXPECT_TRUE(std::isfinite(heightOfText(text, kLight, number)));
      }
    }
  }
  EXPECT_EQ(TextLayout(std::string("a\0b", 3), styleOf(1), {}).size(), TextLayout("a b", styleOf(1), {}).size());
  EXPECT_EQ(TextLayout("\xff", styleOf(1), {}).size(), TextLayout("\uFFFD", styleOf(1), {}).size());
  EXPECT_EQ(heightOfText("", kLight, 557.0), 0.0);
}

TEST_F(PangoTextTest, CutsTextsOfHugeLength) {
  const double longest = heightOfText(repeated("word ", 8000), kLight, 557.0);
  EXPECT_NEAR(heightOfText(repeated("word ", 200000), kLight, 557.0), longest, 200.0);
  EXPECT_GT(longest, 10000.0);
  // Breaking a word takes time that grows with the square of its length, unless it is broken up beforehand.
  const TextLayout endless(repeated("x", 1000000), styleOf(0), {557.0, 0.0});
  EXPECT_GT(endless.lineCount(), 300);
  EXPECT_LE(endless.size().width, 557.0);
  // So does setting rows of spaces and marks, of which only the first are kept.
  const double wide = TextLayout("a" + repeated(" ", 64) + "b", styleOf(1), {}).size().width;
  EXPECT_EQ(TextLayout("a" + repeated(" ", 1000000) + "b", styleOf(1), {}).size().width, wide);
  EXPECT_EQ(TextLayout("a" + repeated("\u0301", 500000) + "b", styleOf(1), {}).size().width,
            TextLayout("a" + repeated("\u0301", 64) + "b", styleOf(1), {}).size().width);
  // And finding the beginning of every paragraph.
  EXPECT_EQ(TextLayout(repeated("a\n", 900), styleOf(0), {}).lineCount(), 901);
  EXPECT_EQ(TextLayout(repeated("a\n", 500000), styleOf(0), {}).lineCount(), 1001);
}

TEST_F(PangoTextTest, HasSizesWithoutAnyFont) {
  setFontChoice({"", false});
  for (const char* text : {"Hello", "\u0928\u092e\u0938\u094d\u0924\u0947", "\U0001F600", "two\nlines"}) {
    const double height = heightOfText(text, kLight, 557.0);
    EXPECT_GT(height, 5.0) << text;
    EXPECT_LT(height, 200.0) << text;
    inkOf(text, styleOf(0));
  }
  EXPECT_LT(heightOfText(repeated("word ", 4000), kLight, 557.0), 100000.0);
}

TEST_F(PangoTextTest, SearchesItsOwnDirectory) {
  setFontChoice({"/usr/share/fonts/truetype/dejavu", false});
  const double wide = TextLayout("Hello", styleOf(1), {}).size().width;
  setFontChoice({});
  EXPECT_GT(wide, TextLayout("Hello", styleOf(1), {}).size().width + 4.0);
}

TEST_F(PangoTextTest, IsReadyOnceFontsWerePreparedOnAnyThread) {
  setFontChoice({});
  EXPECT_FALSE(areFontsReady());
  std::vector<std::thread> threads;
  for (int i = 0; i < 3; ++i) {
    threads.emplace_back([i] {
      prepareFonts();
      heightOfText(repeated("words ", 50) + std::to_string(i), kLight, 300.0);
      inkOf("drawn", styleOf(1));
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  EXPECT_TRUE(areFontsReady());
  const TextLayout kept("kept", styleOf(1), {});
  releaseFonts();
  EXPECT_FALSE(areFontsReady());
  EXPECT_EQ(kept.size(), TextLayout("kept", styleOf(1), {}).size());
}

}  // namespace
}  // namespace kesu
