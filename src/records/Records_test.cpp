#include <gtest/gtest.h>

#include <set>

#include "foundation/Base64.h"
#include "records/MessageIdentifier.h"
#include "testing/SequentialRandom.h"

namespace kesu {
namespace {

TEST(MessageIdentifier, IsBase64OfSixteenBytesWithoutPadding) {
  testing::SequentialRandom random;
  testing::SequentialRandom same;
  std::set<std::string> made;
  for (int i = 0; i < 100; ++i) {
    const std::string identifier = newBase64Uuid(random);
    EXPECT_EQ(identifier.size(), 22U);
    EXPECT_EQ(identifier + "==", base64Encode(same.uuid()));
    made.insert(identifier);
  }
  EXPECT_EQ(made.size(), 100U);
  EXPECT_TRUE(made.contains("AAAAAAAAQACAAAAAAAAAAQ")) << "00000000-0000-4000-8000-000000000001";
}

}  // namespace
}  // namespace kesu
