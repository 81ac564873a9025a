#include "platform/linux/LinuxLocale.h"

#include <time.h>
#include <unicode/calendar.h>
#include <unicode/locid.h>
#include <unicode/simpletz.h>
#include <unicode/smpdtfmt.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <sstream>
#include <utility>

#include "platform/CalendarFields.h"
#include "platform/linux/base/Environment.h"
#include "platform/linux/base/RegularFile.h"

namespace kesu {
namespace {

constexpr std::size_t kTimezoneLimitBytes = 256;  // Names of zones have some 30 bytes.

// The C library's zone is one for the process. It has a lock of its own, but none that a thread checker can see. Locked
// for ICU, too, which reads the zone whenever it makes a calendar.
Mutex zoneMutex;

void readZone() {
  const MutexLock lock(zoneMutex);
  ::tzset();
}

tm systemTime(double secondsSince1970) {
  const time_t seconds = calendarSeconds(secondsSince1970);
  tm fields{};
  const MutexLock lock(zoneMutex);
  ::localtime_r(&seconds, &fields);
  return fields;
}

LocalTime toLocalTime(const tm& fields) {
  LocalTime time;
  time.year = fields.tm_year + 1900;
  time.month = fields.tm_mon + 1;
  time.day = fields.tm_mday;
  time.hour = fields.tm_hour;
  time.minute = fields.tm_min;
  time.second = fields.tm_sec;
  time.weekday = fields.tm_wday + 1;
  time.dayOfYear = fields.tm_yday + 1;
  time.secondsFromGmt = static_cast<int>(fields.tm_gmtoff);
  return time;
}

// "/usr/share/zoneinfo/posix/Europe/Berlin" as "Europe/Berlin"; "" for a path outside the zone database.
std::string zoneOfPath(const std::string& path) {
  constexpr std::string_view kDatabase = "zoneinfo/";
  const std::size_t start = path.rfind(kDatabase);
  if (start == std::string::npos) {
    return {};
  }
  std::string name = path.substr(start + kDatabase.size());
  for (const std::string_view variant : {"posix/", "right/"}) {
    if (name.starts_with(variant)) {
      name.erase(0, variant.size());
    }
  }
  return name;
}

std::string linkTarget(const std::string& path) {
  std::array<char, 1024> target{};
  const ssize_t length = ::readlink(path.c_str(), target.data(), target.size());
  return {target.data(), static_cast<std::size_t>(length > 0 ? length : 0)};
}

// The value of TZ as a name: ":Europe/Berlin" and paths into the database too, rules such as "CET-1CEST" as they are.
std::string zoneOfVariable(std::string value) {
  if (value.starts_with(':')) {
    value.erase(0, 1);
  }
  return value.starts_with('/') ? zoneOfPath(value) : value;
}

bool isPlain(const std::string& posixLocale) {
  const std::string base = posixLocale.substr(0, posixLocale.find_first_of(".@"));
  return base.empty() || base == "C" || base == "POSIX";
}

// An empty variable counts as not set; ICU itself would take it for the root locale.
std::string posixLocale() {
  for (const char* variable : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
    if (std::string value = environmentText(variable); !value.empty()) {
      return value;
    }
  }
  return {};
}

// "sr_RS.UTF-8@latin" as sr_Latn_RS: the system writes scripts as modifiers. Keywords ("@calendar=buddhist") stay,
// other modifiers ("@euro") say nothing about language or region.
icu::Locale toLocale(const std::string& posix) {
  if (isPlain(posix)) {
    return icu::Locale("en");
  }
  const std::size_t at = posix.find('@');
  const std::string modifier = at == std::string::npos ? std::string() : posix.substr(at + 1);
  std::string name = posix.substr(0, posix.find_first_of(".@"));
  if (modifier == "latin" || modifier == "cyrillic") {
    const std::size_t region = std::min(name.find('_'), name.size());
    name.insert(region, modifier == "latin" ? "_Latn" : "_Cyrl");
  } else if (modifier.find('=') != std::string::npos) {
    name += '@' + modifier;
  }
  return icu::Locale::createCanonical(name.c_str());
}

std::string languageTag(const icu::Locale& locale) {
  UErrorCode status = U_ZERO_ERROR;
  icu::Locale plain(locale.getLanguage(), locale.getCountry());
  if (*locale.getScript() != '\0') {
    plain = icu::Locale((std::string(locale.getLanguage()) + "_" + locale.getScript()).c_str(), locale.getCountry());
  }
  return plain.toLanguageTag<std::string>(status);
}

std::vector<std::string> languagesOf(const std::string& posix) {
  std::vector<std::string> tags;
  if (!isPlain(posix)) {
    std::istringstream list(environmentText("LANGUAGE"));
    for (std::string language; std::getline(list, language, ':');) {
      if (!isPlain(language)) {
        tags.push_back(languageTag(toLocale(language)));
      }
    }
  }
  if (tags.empty()) {
    tags.push_back(languageTag(toLocale(posix)));
  }
  return tags;
}

std::string calendarOf(const icu::Locale& locale) {
  UErrorCode status = U_ZERO_ERROR;
  const MutexLock lock(zoneMutex);
  const std::unique_ptr<icu::Calendar> calendar(icu::Calendar::createInstance(locale, status));
  return U_SUCCESS(status) && calendar ? calendar->getType() : "gregorian";
}

}  // namespace

struct LinuxLocale::Region {
  explicit Region(const std::string& posix) : locale(toLocale(posix)), languages(languagesOf(posix)) {}

  icu::Locale locale;
  std::vector<std::string> languages;
  std::string calendar;  ///< Made when first asked for: it loads ICU's data.
};

/// "YYYYMMdd" in one locale. The zone is the system's, given as the instant's own offset: ICU's copy of the zone
/// database may be older than the system's.
class LinuxLocale::DayFormatter {
 public:
  explicit DayFormatter(const icu::Locale& locale) : format_(icu::UnicodeString("YYYYMMdd"), locale, status_) {}

  std::string text(double secondsSince1970, int secondsFromGmt) {
    if (U_FAILURE(status_)) {
      return {};
    }
    if (std::exchange(secondsFromGmt_, secondsFromGmt) != secondsFromGmt) {
      format_.setTimeZone(icu::SimpleTimeZone(secondsFromGmt * 1000, icu::UnicodeString("local")));
    }
    std::string text;
    icu::UnicodeString wide;
    return format_.format(secondsSince1970 * 1000.0, wide).toUTF8String(text);
  }

 private:
  UErrorCode status_ = U_ZERO_ERROR;
  icu::SimpleDateFormat format_;
  int secondsFromGmt_ = INT32_MIN;
};

LinuxLocale::LinuxLocale(ZoneFiles files) : files_(std::move(files)) {}

LinuxLocale::~LinuxLocale() = default;

LinuxLocale::Region& LinuxLocale::region() {
  if (!region_) {
    region_ = std::make_unique<Region>(posixLocale());
  }
  return *region_;
}

std::string LinuxLocale::localeIdentifier() {
  const MutexLock lock(mutex_);
  return region().locale.getName();
}

std::string LinuxLocale::countryCode() {
  const MutexLock lock(mutex_);
  return region().locale.getCountry();
}

std::vector<std::string> LinuxLocale::preferredLanguages() {
  const MutexLock lock(mutex_);
  return region().languages;
}

std::string LinuxLocale::calendarIdentifier() {
  const MutexLock lock(mutex_);
  Region& current = region();
  if (current.calendar.empty()) {
    current.calendar = calendarOf(current.locale);
  }
  return current.calendar;
}

std::string LinuxLocale::timeZoneName() {
  if (const char* variable = std::getenv("TZ")) {
    return *variable == '\0' ? "UTC" : zoneOfVariable(variable);  // The system takes an empty TZ for UTC.
  }
  if (std::string name = zoneOfPath(linkTarget(files_.localtime)); !name.empty()) {
    return name;
  }
  const std::string content = readRegularFile(files_.timezone, kTimezoneLimitBytes).value_or("");
  return content.substr(0, content.find_first_of(" \t\r\n"));
}

// localtime_r() keeps using the zone that tzset() saw last; calling it once per minute is cheap.
void LinuxLocale::noticeZoneChange(std::int64_t minute) {
  if (checkedMinute_.exchange(minute, std::memory_order_relaxed) != minute) {
    readZone();
  }
}

std::string LinuxLocale::timeZoneAbbreviation(double secondsSince1970) {
  noticeZoneChange(calendarSeconds(secondsSince1970) / 60);
  const char* abbreviation = systemTime(secondsSince1970).tm_zone;
  return abbreviation != nullptr ? abbreviation : "";
}

LocalTime LinuxLocale::localTime(double secondsSince1970) {
  noticeZoneChange(calendarSeconds(secondsSince1970) / 60);
  return toLocalTime(systemTime(secondsSince1970));
}

std::string LinuxLocale::formatTimestamp(double secondsSince1970) {
  const std::int64_t seconds = calendarSeconds(secondsSince1970);
  const std::int64_t minute = seconds / 60;
  const auto second = static_cast<int>(seconds - minute * 60);
  if (second < 0) {  // Before 1970: not worth a cache.
    return timestampText(localTime(secondsSince1970));
  }
  const MutexLock lock(mutex_);
  if (minute_.number != minute && !keepMinute(minute)) {
    return timestampText(toLocalTime(systemTime(secondsSince1970)));
  }
  std::string text = minute_.text;
  text[17] = static_cast<char>('0' + second / 10);
  text[18] = static_cast<char>('0' + second % 10);
  return text;
}

// Zones of other centuries changed within a minute or lay off Greenwich by odd seconds: such a minute is not kept.
bool LinuxLocale::keepMinute(std::int64_t minute) {
  const LocalTime first = localTime(static_cast<double>(minute * 60));
  const LocalTime last = toLocalTime(systemTime(static_cast<double>(minute * 60 + 59)));
  if (first.second != 0 || last.secondsFromGmt != first.secondsFromGmt) {
    return false;
  }
  minute_ = {minute, timestampText(first)};
  return true;
}

std::string LinuxLocale::formatWeekYearDay(double secondsSince1970) {
  const int secondsFromGmt = localTime(secondsSince1970).secondsFromGmt;
  const MutexLock lock(mutex_);
  if (!dayFormatter_) {
    const MutexLock zoneLock(zoneMutex);
    dayFormatter_ = std::make_unique<DayFormatter>(region().locale);
  }
  return dayFormatter_->text(static_cast<double>(calendarSeconds(secondsSince1970)), secondsFromGmt);
}

void LinuxLocale::refresh() {
  readZone();
  const MutexLock lock(mutex_);
  minute_ = {};
  region_.reset();
  dayFormatter_.reset();
}

}  // namespace kesu
