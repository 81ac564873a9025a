#include "delivery/StoreFileName.h"

#include <gtest/gtest.h>

namespace kesu {
namespace {

TEST(StoreFileName, CountsMicrosecondsAndSortsByTime) {
  EXPECT_EQ(storeFileName(1489579320.0), "c01959121-20000000.kesuCache");  // 2017-03-15 12:02:00 UTC
  EXPECT_LT(storeFileName(1489579320.0), storeFileName(1489579320.000002));
  EXPECT_TRUE(isStoreFile(storeFileName(0.0)));
  for (const char* foreign : {"kesuCache", ".kesuCache", "a.kesuCache.txt", "a.KESUCACHE", "a.plist", ""}) {
    EXPECT_FALSE(isStoreFile(foreign)) << foreign;
  }
}

}  // namespace
}  // namespace kesu
