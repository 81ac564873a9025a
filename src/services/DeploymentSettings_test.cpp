#include "services/DeploymentSettings.h"

#include <gtest/gtest.h>

#include <utility>

#include "testing/FakeBundle.h"

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

}  // namespace
}  // namespace kesu
