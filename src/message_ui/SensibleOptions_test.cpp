#include "message_ui/SensibleOptions.h"

#include <gtest/gtest.h>

#include <cmath>

namespace kesu {
namespace {

TEST(SensibleOptions, ClampsInsetsAndTextScale) {
  KesuInAppOptions options;
  options.screenInsets = {-1.0, NAN, 1e9, 5.0};
  EXPECT_EQ(sensibleOptions(options).screenInsets, (EdgeInsets{0.0, 0.0, 400.0, 5.0}));
  for (const auto& [given, clamped] : {std::pair(NAN, 1.0), {0.1, 0.5}, {2.0, 2.0}, {INFINITY, 1.0}, {9.0, 3.0}}) {
    options.textScale = given;
    EXPECT_EQ(sensibleOptions(options).textScale, clamped) << given;
  }
}

}  // namespace
}  // namespace kesu
