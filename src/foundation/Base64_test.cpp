#include "foundation/Base64.h"

#include <gtest/gtest.h>

namespace kesu {
namespace {

TEST(Base64Test, EncodesAndDecodesTheStandardVectors) {
  const std::vector<std::pair<std::string, std::string>> rows = {
      {"", ""}, {"f", "Zg=="}, {"fo", "Zm8="}, {"foo", "Zm9v"}, {"foob", "Zm9vYg=="}, {"\xFB\xEF\xFF", "++//"}};
  for (const auto& [text, encoded] : rows) {
    const Data bytes(text.begin(), text.end());
    EXPECT_EQ(base64Encode(bytes), encoded);
    EXPECT_EQ(base64Decode(encoded), bytes);
  }
}

TEST(Base64Test, RoundTripsEveryByteAtEveryLength) {
  Data bytes;
  for (int i = 0; i < 600; ++i) {
    bytes.push_back(static_cast<std::uint8_t>(i * 7));
    EXPECT_EQ(base64Decode(base64Encode(bytes)), bytes);
  }
}

TEST(Base64Test, ToleratesSpaceAndMissingPaddingOnly) {
  EXPECT_EQ(base64Decode(" Z\tm\r\n8 = "), (Data{'f', 'o'}));
  EXPECT_EQ(base64Decode("Zm8"), (Data{'f', 'o'}));
  EXPECT_EQ(base64Decode("Zg"), (Data{'f'}));
  for (const char* text :
       {"Z", "Zm9vY", "Zg=", "Zg=g", "Zg===", "Zm8==", "Zm9v=", "=", "====", "Zg==Zg==", "Zm-_", "Zm9\xC3"}) {
    EXPECT_FALSE(base64Decode(text)) << text;
  }
}

}  // namespace
}  // namespace kesu
