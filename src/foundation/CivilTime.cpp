#include "foundation/CivilTime.h"

#include <chrono>
#include <cmath>

#include "foundation/NumberText.h"

namespace kesu {
namespace {

constexpr double kFirstSecond = -62167219200.0;  // 0000-01-01 00:00:00
constexpr double kEndSecond = 253402300800.0;    // 10000-01-01 00:00:00

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

// Nothing when there is no such day or time.
std::optional<Date> dateOf(const CivilTime& time) {
  const bool clockFits =
      time.hour >= 0 && time.hour < 24 && time.minute >= 0 && time.minute < 60 && time.second >= 0 && time.second < 60;
  const bool calendarFits = time.year >= 0 && time.year <= 9999 && time.month > 0 && time.day > 0;
  const std::chrono::year_month_day day(std::chrono::year(time.year),
                                        std::chrono::month(static_cast<unsigned>(time.month)),
                                        std::chrono::day(static_cast<unsigned>(time.day)));
  if (!clockFits || !calendarFits || !day.ok()) {
    return std::nullopt;
  }
  const auto instant = std::chrono::sys_days(day) + std::chrono::hours(time.hour) + std::chrono::minutes(time.minute) +
                       std::chrono::seconds(time.second);
  return Date{static_cast<double>(instant.time_since_epoch().count())};
}

}  // namespace

std::optional<CivilTime> civilTime(Date date) {
  if (!(date.secondsSince1970 >= kFirstSecond && date.secondsSince1970 < kEndSecond)) {
    return std::nullopt;
  }
  const std::chrono::sys_seconds instant{
      std::chrono::seconds(static_cast<std::int64_t>(std::floor(date.secondsSince1970)))};
  const auto days = std::chrono::floor<std::chrono::days>(instant);
  const std::chrono::year_month_day day(days);
  const std::chrono::hh_mm_ss clock(instant - days);
  return CivilTime{.year = static_cast<int>(day.year()),
                   .month = static_cast<int>(static_cast<unsigned>(day.month())),
                   .day = static_cast<int>(static_cast<unsigned>(day.day())),
                   .hour = static_cast<int>(clock.hours().count()),
                   .minute = static_cast<int>(clock.minutes().count()),
                   .second = static_cast<int>(clock.seconds().count())};
}

std::string civilText(const CivilTime& time, char separator) {
  const struct {
    int number;
    std::size_t digits;
    char end;
  } fields[] = {{time.year, 4, '-'}, {time.month, 2, '-'},  {time.day, 2, separator},
                {time.hour, 2, ':'}, {time.minute, 2, ':'}, {time.second, 2, ' '}};
  std::string text;
  text.reserve(sizeof "2017-03-15 12:02:00 +0000");
  for (const auto& field : fields) {
    appendDigits(text, field.number, field.digits);
    text.push_back(field.end);
  }
  text.pop_back();
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
