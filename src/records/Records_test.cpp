#include <gtest/gtest.h>

#include <set>

#include "records/ExceptionTexts.h"
#include "records/MessageIdentifier.h"
#include "records/TimeReference.h"
#include "testing/SequentialRandom.h"

namespace kesu {
namespace {

TEST(MessageIdentifier, IsBase64OfTheSixteenBytes) {
  EXPECT_EQ(base64UUID("00112233-4455-6677-8899-AABBCCDDEEFF"), "ABEiM0RVZneImaq7zN3u/w");
  EXPECT_EQ(base64UUID("ffffffff-ffff-ffff-ffff-ffffffffffff"), "/////////////////////w");
  for (const char* broken : {"", "00112233-4455-6677-8899-AABBCCDDEE", "0011223344556677-8899-AABBCCDDEEFF00", "zz"}) {
    EXPECT_EQ(base64UUID(broken), "") << broken;
  }
  testing::SequentialRandom random;
  std::set<std::string> made;
  for (int i = 0; i < 100; ++i) {
    const std::string identifier = newBase64Uuid(random);
    EXPECT_EQ(identifier.size(), 22U);
    made.insert(identifier);
  }
  EXPECT_EQ(made.size(), 100U);
}

TEST(TimeReference, CountsFromItsOrigin) {
  EXPECT_EQ(timerReferenceAt(1453881200.0), 0.0);  // 2016-01-27 07:53:20 UTC
}

TEST(ExceptionTexts, ReadAsHostsKnowThem) {
  EXPECT_EQ(k_KesuAppKeyMissingException,
            "KesuAppKey needs to be set via initializeWithKey: method. Log on to console.kesu.example to get it.");
  EXPECT_EQ(
      k_KesuLibraryInitializationException,
      "-init is not a valid initializer for Kesu. KesuAppKey needs to be set via initializeWithKey:  @\"<Your Kesu "
      "assigned App Key>\" ");
}

}  // namespace
}  // namespace kesu
