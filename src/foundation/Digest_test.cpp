#include "foundation/Digest.h"

#include <gtest/gtest.h>

namespace kesu {
namespace {

TEST(DigestTest, GivesTheStandardDigests) {
  EXPECT_EQ(hexLower(sha256("")), "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
  EXPECT_EQ(hexLower(sha256("abc")), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
  EXPECT_EQ(hexLower(md5("")), "d41d8cd98f00b204e9800998ecf8427e");
  EXPECT_EQ(hexLower(md5("abc")), "900150983cd24fb0d6963f7d28e17f72");
}

TEST(DigestTest, DigestsBytesNotCharacters) {
  EXPECT_NE(sha256(std::string_view("a\0b", 3)), sha256("a"));
  EXPECT_EQ(hexLower(sha256("\xC3")), "ae3f4619b0413d70d3004b9131c3752153074e45725be13b9a148978895e359e");
}

}  // namespace
}  // namespace kesu
