#include <gtest/gtest.h>

#include <set>

#include "records/DeploymentSettings.h"
#include "records/ExceptionTexts.h"
#include "records/MessageIdentifier.h"
#include "records/TimeReference.h"
#include "testing/FakeBundle.h"
#include "testing/SequentialRandom.h"

namespace kesu {
namespace {

TEST(DeploymentSettings, TakesHostAndPortOutOfUrls) {
  const struct {
    const char* url;
    const char* host;
    int port;
  } rows[] = {{"https://c.example/x", "c.example", 443},
              {"http://c.example", "c.example", 80},
              {"HTTP://c.example:8470/collect?q=a@b", "c.example", 8470},
              {"https://user:pw@c.example:99/", "c.example", 99},
              {"https://[::1]:8443/x", "::1", 8443},
              {"https://c.example:70000/", "c.example", 443},
              {"ftp://c.example/", "", 443},
              {"c.example", "", 443},
              {"", "", 443}};
  for (const auto& row : rows) {
    const HostAndPort found = hostAndPortOfUrl(row.url);
    EXPECT_EQ(found.host, row.host) << row.url;
    EXPECT_EQ(found.port, row.port) << row.url;
  }
}

TEST(DeploymentSettings, PrefersTheInformationDictionaryToWhatIsBuiltIn) {
  testing::FakeBundle bundle;
  DeploymentSettings settings(bundle);
  EXPECT_EQ(settings.collectorUrl(), "https://collector.kesu.example/");
  EXPECT_EQ(settings.reachabilityHost().host, "collector.kesu.example");
  bundle.dictionary.set("KesuOverrideServer", "");
  EXPECT_EQ(settings.collectorUrl(), "https://collector.kesu.example/");
  bundle.dictionary.set("KesuOverrideServer", "http://127.0.0.1:8470/collect");
  EXPECT_EQ(settings.collectorUrl(), "http://127.0.0.1:8470/collect");
  EXPECT_EQ(settings.reachabilityHost().host, "127.0.0.1");
  EXPECT_EQ(settings.reachabilityHost().port, 8470);
  bundle.dictionary.set("KesuReachabilityHost", "other.example:81");
  EXPECT_EQ(settings.reachabilityHost().host, "other.example");
  EXPECT_EQ(settings.reachabilityHost().port, 81);
}

TEST(DeploymentSettings, LeavesProductionOnlyForTheWordTrue) {
  const std::pair<const char*, bool> rows[] = {{"true", false}, {"True", false}, {"TRUE", false}, {"false", true},
                                               {"1", true},     {"yes", true},   {"", true}};
  for (const auto& [text, production] : rows) {
    testing::FakeBundle bundle;
    bundle.dictionary.set("devmode", text);
    EXPECT_EQ(DeploymentSettings(bundle).isProductionMode(), production) << text;
  }
  testing::FakeBundle none;
  EXPECT_TRUE(DeploymentSettings(none).isProductionMode());
  EXPECT_EQ(DeploymentSettings(none).logLevel(), 0);
  none.dictionary.set("KesuLogLevel", "3");
  EXPECT_EQ(DeploymentSettings(none).logLevel(), 3);
}

TEST(MessageIdentifier, IsBase64OfTheSixteenBytes) {
  EXPECT_EQ(base64UUID("00112233-4455-6677-8899-AABBCCDDEEFF"), "ABEiM0RVZneImaq7zN3u/w");
  EXPECT_EQ(base64UUID("ffffffff-ffff-ffff-ffff-ffffffffffff"), "/////////////////////w");
  for (const char* broken : {"", "00112233-4455-6677-8899-AABBCCDDEE", "0011223344556677-8899-AABBCCDDEEFF00", "zz"}) {
    EXPECT_EQ(base64UUID(broken), "") << broken;
  }
  testing::SequentialRandom random;
  std::set<std::string> made;
  for (int i = 0; i < 100; ++i) {
    const std::string identifier = newBase64Uuid(random);
    EXPECT_EQ(identifier.size(), 22U);
    made.insert(identifier);
  }
  EXPECT_EQ(made.size(), 100U);
}

TEST(TimeReference, CountsFromItsOrigin) {
  EXPECT_EQ(timerReferenceAt(1453881200.0), 0.0);  // 2016-01-27 07:53:20 UTC
}

TEST(ExceptionTexts, ReadAsHostsKnowThem) {
  EXPECT_EQ(k_KesuAppKeyMissingException,
            "KesuAppKey needs to be set via initializeWithKey: method. Log on to console.kesu.example to get it.");
  EXPECT_EQ(
      k_KesuLibraryInitializationException,
      "-init is not a valid initializer for Kesu. KesuAppKey needs to be set via initializeWithKey:  @\"<Your Kesu "
      "assigned App Key>\" ");
}

}  // namespace
}  // namespace kesu
