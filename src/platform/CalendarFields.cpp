#include "platform/CalendarFields.h"

#include <chrono>
#include <cmath>
#include <cstdlib>

namespace kesu {
namespace {

// 0001-01-02 and 9999-12-30 at midnight UTC: a day inside the first and the last year whatever the zone.
constexpr double kFirstSecond = -62135510400.0;
constexpr double kLastSecond = 253402128000.0;

void appendDigits(std::string& text, int number, int digits) {
  char buffer[4];
  for (int index = digits - 1; index >= 0; --index) {
    buffer[index] = static_cast<char>('0' + number % 10);
    number /= 10;
  }
  text.append(buffer, static_cast<std::size_t>(digits));
}

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

LocalTime calendarFields(double secondsSince1970, int secondsFromGmt) {
  using std::chrono::days;
  const std::chrono::sys_seconds instant{std::chrono::seconds(calendarSeconds(secondsSince1970) + secondsFromGmt)};
  const auto day = std::chrono::floor<days>(instant);
  const std::chrono::year_month_day date{day};
  const std::chrono::hh_mm_ss clock{instant - day};
  LocalTime time;
  time.year = static_cast<int>(date.year());
  time.month = static_cast<int>(static_cast<unsigned>(date.month()));
  time.day = static_cast<int>(static_cast<unsigned>(date.day()));
  time.hour = static_cast<int>(clock.hours().count());
  time.minute = static_cast<int>(clock.minutes().count());
  time.second = static_cast<int>(clock.seconds().count());
  time.weekday = static_cast<int>(std::chrono::weekday(day).c_encoding()) + 1;
  const std::chrono::sys_days newYear{date.year() / std::chrono::January / 1};
  time.dayOfYear = static_cast<int>((day - newYear).count()) + 1;
  time.secondsFromGmt = secondsFromGmt;
  return time;
}

std::string timestampText(const LocalTime& time) {
  std::string text;
  text.reserve(28);
  appendDigits(text, time.year, 4);
  text += '-';
  appendDigits(text, time.month, 2);
  text += '-';
  appendDigits(text, time.day, 2);
  text += ' ';
  appendDigits(text, time.hour, 2);
  text += ':';
  appendDigits(text, time.minute, 2);
  text += ':';
  appendDigits(text, time.second, 2);
  text += ' ';
  appendOffset(text, time.secondsFromGmt);
  return text;
}

}  // namespace kesu
