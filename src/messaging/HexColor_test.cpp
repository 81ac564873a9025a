#include "messaging/HexColor.h"

#include <gtest/gtest.h>

#include <optional>
#include <utility>

namespace kesu {
namespace {

Color rgb(int red, int green, int blue) {
  return {red / 255.0, green / 255.0, blue / 255.0, 1.0};
}

const Color kBlue = rgb(9, 182, 238);

TEST(HexColor, ReadsWhatLooksLikeAColour) {
  const std::pair<const char*, std::optional<Color>> rows[] = {{"#1E90FF", rgb(0x1E, 0x90, 0xFF)},
                                                               {"1e90ff", rgb(0x1E, 0x90, 0xFF)},
                                                               {"0x1E90FF", rgb(0x1E, 0x90, 0xFF)},
                                                               {"0X1#E9#0FF", rgb(0x1E, 0x90, 0xFF)},
                                                               {"$+~0x09b6ee", kBlue},
                                                               {"\xC2\xA3\xC3\x97"
                                                                "09b6ee",
                                                                kBlue},
                                                               {"FF09B6EE", kBlue},
                                                               {"123456789", Color::white()},
                                                               {"12 zz", rgb(0, 0, 0x12)},
                                                               {"0", rgb(0, 0, 0)},
                                                               {"", std::nullopt},
                                                               {"#", std::nullopt},
                                                               {"0x", std::nullopt},
                                                               {"-1", std::nullopt},
                                                               {" 12", std::nullopt},
                                                               {"red", std::nullopt}};
  for (const auto& [text, color] : rows) {
    EXPECT_EQ(colorFromHexadecimalString(text), color) << text;
  }
}

TEST(HexColor, CallsValidWhatHoldsAnotherCharacter) {
  for (const char* text : {"#1E90FF", "0x1e90ff", "1e90ff", "red", "0x1E90FF"}) {
    EXPECT_TRUE(isValidHexadecimalString(text)) << text;
  }
  for (const char* text : {"1E90FF", "0", ""}) {
    EXPECT_FALSE(isValidHexadecimalString(text)) << text;
  }
}

}  // namespace
}  // namespace kesu
