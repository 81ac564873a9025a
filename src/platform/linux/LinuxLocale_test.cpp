#include "platform/linux/LinuxLocale.h"

#include <gtest/gtest.h>
#include <unicode/smpdtfmt.h>
#include <unicode/timezone.h>

#include <filesystem>

#include "testing/FakeLocale.h"
#include "testing/ScopedEnvironment.h"
#include "testing/TemporaryDirectory.h"

namespace kesu {
namespace {

using testing::ScopedEnvironment;

class LinuxLocaleTest : public ::testing::Test {
 protected:
  LinuxLocaleTest() {
    for (const char* variable : {"LC_ALL", "LC_MESSAGES", "LANG", "LANGUAGE", "TZ"}) {
      environment_.set(variable, std::nullopt);
    }
  }

  void use(const std::string& variable, const std::string& value) {
    environment_.set(variable, value);
    locale_.refresh();
  }

  ScopedEnvironment environment_;
  LinuxLocale locale_;
};

TEST_F(LinuxLocaleTest, WritesTimestampsOfZones) {
  const struct {
    const char* zone;
    double seconds;
    const char* text;
    const char* abbreviation;
  } cases[] = {{"UTC", 1489579320.9, "2017-03-15 12:02:00 +0000", "UTC"},
               {"", 1489579320, "2017-03-15 12:02:00 +0000", "UTC"},
               {"No/Such_Zone", 1489579320, "2017-03-15 12:02:00 +0000", ""},
               {"Asia/Kathmandu", 1489579320, "2017-03-15 17:47:00 +0545", "+0545"},
               {"America/St_Johns", 1489579320, "2017-03-15 09:32:00 -0230", "NDT"},
               {"Pacific/Chatham", 1489579320, "2017-03-16 01:47:00 +1345", "+1345"},
               {"Europe/Berlin", 1490489999, "2017-03-26 01:59:59 +0100", "CET"},
               {"Europe/Berlin", 1490490000, "2017-03-26 03:00:00 +0200", "CEST"},
               {"Europe/Berlin", 1509238799, "2017-10-29 02:59:59 +0200", "CEST"},
               {"Europe/Berlin", 1509238800, "2017-10-29 02:00:00 +0100", "CET"},
               {"Australia/Lord_Howe", 1491058799, "2017-04-02 01:59:59 +1100", "+11"},
               {"Australia/Lord_Howe", 1491058800, "2017-04-02 01:30:00 +1030", "+1030"},
               {"Africa/Monrovia", 0, "1969-12-31 23:15:30 -004430", "MMT"},
               {"Europe/Berlin", -0.5, "1970-01-01 00:59:59 +0100", "CET"},
               {"XYZ-3:30", 1489579320, "2017-03-15 15:32:00 +0330", "XYZ"}};
  for (const auto& [zone, seconds, text, abbreviation] : cases) {
    use("TZ", zone);
    EXPECT_EQ(locale_.formatTimestamp(seconds), text) << zone;
    EXPECT_EQ(locale_.formatTimestamp(seconds), text) << zone << ", from the kept minute";
    EXPECT_EQ(locale_.timeZoneAbbreviation(seconds), abbreviation) << zone;
  }
}

TEST_F(LinuxLocaleTest, AgreesWithIcuAboutThirtyYears) {
  for (const char* zone :
       {"America/New_York", "Europe/London", "Asia/Kolkata", "Australia/Sydney", "America/Sao_Paulo"}) {
    use("TZ", zone);
    UErrorCode status = U_ZERO_ERROR;
    icu::SimpleDateFormat format("yyyy-MM-dd HH:mm:ss Z", icu::Locale("en_US_POSIX"), status);
    format.adoptTimeZone(icu::TimeZone::createTimeZone(zone));
    for (double seconds = 946684800.0; seconds < 1893456000.0; seconds += 2'345'678.0) {
      std::string expected;
      icu::UnicodeString wide;
      format.format(seconds * 1000.0, wide).toUTF8String(expected);
      ASSERT_EQ(locale_.formatTimestamp(seconds), expected) << zone;
    }
  }
}

TEST_F(LinuxLocaleTest, GivesTheFieldsOfAnInstant) {
  use("TZ", "Europe/Berlin");
  const LocalTime time = locale_.localTime(1483225199.5);  // The last second of 2016, a Saturday.
  EXPECT_EQ(time.year, 2016);
  EXPECT_EQ(time.month, 12);
  EXPECT_EQ(time.day, 31);
  EXPECT_EQ(time.hour, 23);
  EXPECT_EQ(time.minute, 59);
  EXPECT_EQ(time.second, 59);
  EXPECT_EQ(time.weekday, 7);
  EXPECT_EQ(time.dayOfYear, 366);
  EXPECT_EQ(time.secondsFromGmt, 3600);
}

TEST_F(LinuxLocaleTest, NoticesAnotherZone) {
  use("TZ", "UTC");
  EXPECT_EQ(locale_.formatTimestamp(30), "1970-01-01 00:00:30 +0000");
  environment_.set("TZ", "Asia/Tokyo");
  EXPECT_EQ(locale_.formatTimestamp(60), "1970-01-01 09:01:00 +0900") << "by itself with the next minute";
  environment_.set("TZ", "UTC");
  locale_.refresh();
  EXPECT_EQ(locale_.formatTimestamp(61), "1970-01-01 00:01:01 +0000");
}

TEST_F(LinuxLocaleTest, WritesDaysByTheWeekYearOfTheLocale) {
  const struct {
    const char* locale;
    double seconds;
    const char* text;
  } cases[] = {{"en_US.UTF-8", 1483228800, "20170101"},  // Sunday, 2017-01-01.
               {"de_DE.UTF-8", 1483228800, "20160101"},
               {"en_US.UTF-8", 1546214400, "20191231"},  // Monday, 2018-12-31.
               {"C", 1546214400, "20191231"},
               {"th_TH.UTF-8", 1489579320, "20170315"},  // Week-based years are Gregorian in every calendar.
               {"ar_EG.UTF-8", 1489579320, "٢٠١٧٠٣١٥"}};
  use("TZ", "UTC");
  for (const auto& [locale, seconds, text] : cases) {
    use("LANG", locale);
    EXPECT_EQ(locale_.formatWeekYearDay(seconds), text) << locale;
  }
  EXPECT_EQ(locale_.formatTimestamp(1489579320), "2017-03-15 12:02:00 +0000") << "the same in every locale";
  use("LANG", "en_US.UTF-8");
  use("TZ", "Europe/Berlin");
  EXPECT_EQ(locale_.formatWeekYearDay(1490482800.0 + 82799.0), "20170326") << "a day of 23 hours";
  EXPECT_EQ(locale_.formatWeekYearDay(1490482800.0 + 82800.0), "20170327");
}

TEST_F(LinuxLocaleTest, AgreesWithItsDouble) {
  testing::FakeLocale fake;
  use("LANG", "en_US.UTF-8");
  use("TZ", "UTC");
  for (double seconds = 1262000000.0; seconds < 1900000000.0; seconds += 86'399.0 * 3) {
    ASSERT_EQ(locale_.formatWeekYearDay(seconds), fake.formatWeekYearDay(seconds)) << seconds;
    ASSERT_EQ(locale_.formatTimestamp(seconds), fake.formatTimestamp(seconds));
  }
  EXPECT_EQ(locale_.localeIdentifier(), fake.localeIdentifier());
  EXPECT_EQ(locale_.countryCode(), fake.countryCode());
  EXPECT_EQ(locale_.preferredLanguages(), fake.preferredLanguages());
  EXPECT_EQ(locale_.calendarIdentifier(), fake.calendarIdentifier());
  EXPECT_EQ(locale_.timeZoneName(), fake.timeZoneName());
}

TEST_F(LinuxLocaleTest, ReadsLocaleAndLanguagesFromTheEnvironment) {
  using Texts = std::vector<std::string>;
  const struct {
    const char* all;
    const char* messages;
    const char* lang;
    const char* language;
    const char* identifier;
    const char* country;
    const char* calendar;
    Texts languages;
  } cases[] = {
      {"", "", "", "", "en", "", "gregorian", {"en"}},
      {"", "", "C.UTF-8", "de", "en", "", "gregorian", {"en"}},
      {"", "", "de_DE.UTF-8@euro", "", "de_DE", "DE", "gregorian", {"de-DE"}},
      {"", "fr_CA.UTF-8", "de_DE", "", "fr_CA", "CA", "gregorian", {"fr-CA"}},
      {"pt_BR", "fr_CA", "de_DE", "sv:nb_NO.UTF-8::C:en_GB", "pt_BR", "BR", "gregorian", {"sv", "nb-NO", "en-GB"}},
      {"sr_RS.UTF-8@latin", "", "", "", "sr_Latn_RS", "RS", "gregorian", {"sr-Latn-RS"}},
      {"th_TH", "", "", "", "th_TH", "TH", "buddhist", {"th-TH"}},
      {"en_US@calendar=japanese", "", "", "", "en_US@calendar=japanese", "US", "japanese", {"en-US"}}};
  for (const auto& row : cases) {
    environment_.set("LC_ALL", row.all);
    environment_.set("LC_MESSAGES", row.messages);
    environment_.set("LANG", row.lang);
    use("LANGUAGE", row.language);
    EXPECT_EQ(locale_.localeIdentifier(), row.identifier);
    EXPECT_EQ(locale_.countryCode(), row.country) << row.identifier;
    EXPECT_EQ(locale_.calendarIdentifier(), row.calendar) << row.identifier;
    EXPECT_EQ(locale_.preferredLanguages(), row.languages) << row.identifier;
  }
}

TEST_F(LinuxLocaleTest, NamesTheZoneOfTheVariableFirst) {
  const std::pair<const char*, const char*> cases[] = {{"Europe/Berlin", "Europe/Berlin"},
                                                       {":Europe/Berlin", "Europe/Berlin"},
                                                       {"/usr/share/zoneinfo/Asia/Tokyo", "Asia/Tokyo"},
                                                       {"CET-1CEST", "CET-1CEST"},
                                                       {"", "UTC"}};
  for (const auto& [variable, name] : cases) {
    use("TZ", variable);
    EXPECT_EQ(locale_.timeZoneName(), name);
  }
}

TEST_F(LinuxLocaleTest, NamesTheZoneOfTheSystemsFiles) {
  const testing::TemporaryDirectory directory;
  const ZoneFiles files{directory / "localtime", directory / "timezone"};
  LinuxLocale locale(files);
  EXPECT_EQ(locale.timeZoneName(), "");
  directory.write("timezone", "Asia/Tokyo\n");
  EXPECT_EQ(locale.timeZoneName(), "Asia/Tokyo");
  std::filesystem::create_symlink("../usr/share/zoneinfo/posix/Europe/Berlin", files.localtime);
  EXPECT_EQ(locale.timeZoneName(), "Europe/Berlin");
}

}  // namespace
}  // namespace kesu
