#include "lifecycle/DeveloperToken.h"

#include <gtest/gtest.h>

namespace kesu {
namespace {

TEST(DeveloperToken, IsAscii85) {
  EXPECT_EQ(developerToken("Man sure."), "<~9jqo^F*2M7/c~>");
}

}  // namespace
}  // namespace kesu
