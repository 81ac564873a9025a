#include "foundation/CivilTime.h"

#include <gtest/gtest.h>

#include <ctime>

namespace kesu {
namespace {

TEST(CivilTimeTest, AgreesWithTheSystemAndReadsBack) {
  for (std::int64_t seconds = -62167219200; seconds < 253402300800; seconds += 86400 * 37 + 12345) {
    const std::optional<CivilTime> time = civilTime(Date{static_cast<double>(seconds)});
    const std::time_t stamp = seconds;
    std::tm expected{};
    ASSERT_TRUE(time && gmtime_r(&stamp, &expected));
    char text[32];
    std::strftime(text, sizeof text, "%m-%dT%H:%M:%SZ", &expected);
    const std::string iso = civilText(*time, 'T') + "Z";
    EXPECT_EQ(time->year, expected.tm_year + 1900);
    EXPECT_EQ(iso.substr(5), text);
    EXPECT_EQ(parseIsoDate(iso), Date{static_cast<double>(seconds)});
  }
}

TEST(CivilTimeTest, RefusesWhatNoCalendarShows) {
  EXPECT_FALSE(civilTime(Date{253402300800.0}));
  EXPECT_FALSE(civilTime(Date{-62167219200.5}));
  for (const char* text :
       {"", "2017-03-15", "2017-13-01T00:00:00Z", "2017-00-01T00:00:00Z", "2017-04-31T00:00:00Z",
        "1900-02-29T00:00:00Z", "2017-01-01T24:00:00Z", "2017-01-01T00:60:00Z", "2017-01-01T00:00:60Z",
        "2017-01-01T00:00:00z", "-017-01-01T00:00:00Z", "2017-01-01 00:00:00Z", "2017-01-01T00:00:00Z "}) {
    EXPECT_FALSE(parseIsoDate(text)) << text;
  }
}

}  // namespace
}  // namespace kesu
