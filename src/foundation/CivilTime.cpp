#include "foundation/CivilTime.h"

#include <chrono>
#include <cmath>

namespace kesu {
namespace {

constexpr std::int64_t kSecondsOfDay = 86400;
constexpr double kFirstSecond = -62167219200.0;  // 0000-01-01 00:00:00
constexpr double kEndSecond = 253402300800.0;    // 10000-01-01 00:00:00

void appendDigits(std::string& out, int number, int count) {
  std::string digits = std::to_string(number);
  out.append(static_cast<std::size_t>(count) - digits.size(), '0').append(digits);
}

// The number that `count` digits at `position` stand for, or -1.
int digitsAt(std::string_view text, std::size_t position, std::size_t count) {
  int number = 0;
  for (const char digit : text.substr(position, count)) {
    if (digit < '0' || digit > '9') {
      return -1;
    }
    number = number * 10 + (digit - '0');
  }
  return number;
}

}  // namespace

std::optional<CivilTime> civilTime(Date date) {
  if (!(date.secondsSince1970 >= kFirstSecond && date.secondsSince1970 < kEndSecond)) {
    return std::nullopt;
  }
  const auto seconds = static_cast<std::int64_t>(std::floor(date.secondsSince1970));
  const auto days = std::chrono::floor<std::chrono::days>(std::chrono::sys_seconds(std::chrono::seconds(seconds)));
  const std::chrono::year_month_day day(days);
  const auto rest = static_cast<int>(seconds - days.time_since_epoch().count() * kSecondsOfDay);
  return CivilTime{.year = static_cast<int>(day.year()),
                   .month = static_cast<int>(static_cast<unsigned>(day.month())),
                   .day = static_cast<int>(static_cast<unsigned>(day.day())),
                   .hour = rest / 3600,
                   .minute = rest / 60 % 60,
                   .second = rest % 60};
}

std::optional<Date> dateOf(const CivilTime& time) {
  const bool clockFits =
      time.hour >= 0 && time.hour < 24 && time.minute >= 0 && time.minute < 60 && time.second >= 0 && time.second < 60;
  const bool calendarFits = time.year >= 0 && time.year <= 9999 && time.month > 0 && time.day > 0;
  if (!clockFits || !calendarFits) {
    return std::nullopt;
  }
  const std::chrono::year_month_day day(std::chrono::year(time.year),
                                        std::chrono::month(static_cast<unsigned>(time.month)),
                                        std::chrono::day(static_cast<unsigned>(time.day)));
  if (!day.ok()) {
    return std::nullopt;
  }
  const std::int64_t days = std::chrono::sys_days(day).time_since_epoch().count();
  return Date{static_cast<double>(days * kSecondsOfDay + std::int64_t{time.hour} * 3600 +
                                  std::int64_t{time.minute} * 60 + time.second)};
}

std::string dayText(const CivilTime& time) {
  std::string text;
  appendDigits(text, time.year, 4);
  text.push_back('-');
  appendDigits(text, time.month, 2);
  text.push_back('-');
  appendDigits(text, time.day, 2);
  return text;
}

std::string clockText(const CivilTime& time) {
  std::string text;
  appendDigits(text, time.hour, 2);
  text.push_back(':');
  appendDigits(text, time.minute, 2);
  text.push_back(':');
  appendDigits(text, time.second, 2);
  return text;
}

std::optional<Date> parseIsoDate(std::string_view text) {
  const bool shaped = text.size() == 20 && text[4] == '-' && text[7] == '-' && text[10] == 'T' && text[13] == ':' &&
                      text[16] == ':' && text[19] == 'Z';
  if (!shaped) {
    return std::nullopt;
  }
  return dateOf({.year = digitsAt(text, 0, 4),
                 .month = digitsAt(text, 5, 2),
                 .day = digitsAt(text, 8, 2),
                 .hour = digitsAt(text, 11, 2),
                 .minute = digitsAt(text, 14, 2),
                 .second = digitsAt(text, 17, 2)});
}

}  // namespace kesu
