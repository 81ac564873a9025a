#include "foundation/NumberText.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <random>

namespace kesu {
namespace {

std::string printedFixed(double number, int digits) {
  char text[1024];
  const int size = std::snprintf(text, sizeof text, "%.*f", digits, number);
  return std::string(text, static_cast<std::size_t>(size));
}

std::string printedGeneral(double number) {
  char text[64];
  const int size = std::snprintf(text, sizeof text, "%g", number);
  return std::string(text, static_cast<std::size_t>(size));
}

TEST(NumberTextTest, ShortestRealIsWhatAPersonWouldWrite) {
  const std::vector<std::pair<double, std::string>> rows = {{4.0, "4"},
                                                            {4.5, "4.5"},
                                                            {-4.5, "-4.5"},
                                                            {0.0, "0"},
                                                            {-0.0, "-0"},
                                                            {0.1, "0.1"},
                                                            {0.1 + 0.2, "0.30000000000000004"},
                                                            {100000.0, "100000"},
                                                            {1489579200000.0, "1489579200000"},
                                                            {1e15, "1000000000000000"},
                                                            {1e16, "1e+16"},
                                                            {1e30, "1e+30"},
                                                            {-1.25e-7, "-1.25e-07"},
                                                            {1e-4, "0.0001"},
                                                            {1e-5, "1e-05"},
                                                            {12345.678, "12345.678"},
                                                            {5e-324, "5e-324"},
                                                            {std::nan(""), "nan"},
                                                            {HUGE_VAL, "inf"},
                                                            {-HUGE_VAL, "-inf"}};
  for (const auto& [number, text] : rows) {
    EXPECT_EQ(shortestReal(number), text);
  }
}

TEST(NumberTextTest, ShortestRealReadsBackAndIsNotLongerThanNeeded) {
  std::mt19937_64 random(1);
  for (int i = 0; i < 5000; ++i) {
    const double number = std::bit_cast<double>(random());
    if (std::isfinite(number)) {
      const std::string text = shortestReal(number);
      EXPECT_EQ(std::strtod(text.c_str(), nullptr), number) << text;
      EXPECT_LE(text.size(), 24u) << text;
    }
  }
}

TEST(NumberTextTest, AgreesWithPrintf) {
  std::mt19937_64 random(2);
  std::vector<double> numbers = {0.0,      -0.0,     0.05,     0.25, 12.345,      -2.5,
                                 0.5,      1e21,     999999.5, 1e-5, 123456789.0, std::numeric_limits<double>::max(),
                                 HUGE_VAL, -HUGE_VAL};
  for (int i = 0; i < 500; ++i) {
    numbers.push_back(std::bit_cast<double>(random()));
  }
  for (const double number : numbers) {
    for (const int digits : {0, 1, 3, 6}) {
      EXPECT_EQ(fixed(number, digits), printedFixed(number, digits));
    }
    EXPECT_EQ(generalReal(number), printedGeneral(number));
  }
  EXPECT_EQ(fixed(2.0, -3), "2");
}

TEST(NumberTextTest, MillisecondsAreTruncatedAndHeldInRange) {
  const std::vector<std::pair<double, std::string>> rows = {{0, "0"},
                                                            {1489579200.1239, "1489579200123"},
                                                            {-1.9999, "-1999"},
                                                            {0.0009, "0"},
                                                            {1e300, "9223372036854775807"},
                                                            {-1e300, "-9223372036854775808"},
                                                            {HUGE_VAL, "9223372036854775807"},
                                                            {std::nan(""), "0"}};
  for (const auto& [seconds, text] : rows) {
    EXPECT_EQ(milliseconds(seconds), text);
  }
  EXPECT_EQ(decimal(std::numeric_limits<std::int64_t>::min()), "-9223372036854775808");
}

}  // namespace
}  // namespace kesu
