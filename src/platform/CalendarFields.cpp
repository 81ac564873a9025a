#include "platform/CalendarFields.h"

#include <cmath>
#include <cstdlib>

#include "foundation/CivilTime.h"
#include "foundation/NumberText.h"

namespace kesu {
namespace {

// 0001-01-02 and 9999-12-30 at midnight UTC: a day inside the first and the last year whatever the zone.
constexpr double kFirstSecond = -62135510400.0;
constexpr double kLastSecond = 253402128000.0;

void appendOffset(std::string& text, int secondsFromGmt) {
  const int seconds = std::abs(secondsFromGmt);
  text += secondsFromGmt < 0 ? '-' : '+';
  appendDigits(text, seconds / 3600, 2);
  appendDigits(text, seconds / 60 % 60, 2);
  if (seconds % 60 != 0) {
    appendDigits(text, seconds % 60, 2);
  }
}

}  // namespace

std::int64_t calendarSeconds(double secondsSince1970) {
  if (!(secondsSince1970 > kFirstSecond)) {
    return static_cast<std::int64_t>(std::isnan(secondsSince1970) ? 0.0 : kFirstSecond);
  }
  return static_cast<std::int64_t>(std::floor(std::fmin(secondsSince1970, kLastSecond)));
}

std::string timestampText(const LocalTime& time) {
  std::string text = civilText({.year = time.year,
                                .month = time.month,
                                .day = time.day,
                                .hour = time.hour,
                                .minute = time.minute,
                                .second = time.second},
                               ' ');
  text += ' ';
  appendOffset(text, time.secondsFromGmt);
  return text;
}

}  // namespace kesu
