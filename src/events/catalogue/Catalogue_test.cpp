#include <gtest/gtest.h>
#include <kesu/events/Catalogue.h>

#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "testing/RecordingPoster.h"

namespace kesu {
namespace {

class CatalogueTest : public ::testing::Test {
 protected:
  Dictionary onlyRecord() { return poster.takeOnly(); }

  testing::RecordingPoster poster;
};

TEST_F(CatalogueTest, PostsTheOddRecords) {
  KesuAd::postAdRequested(nil, "Home", nil, nil);
  EXPECT_EQ(onlyRecord(),
            (Dictionary{{"adNetwork", ""}, {"appScreen", "Home"}, {"size", ""}, {"type", ""}, {"~e", "AdRequested"}}));
  KesuGaming::postLevelStarted("3", {{"level", "9"}});
  EXPECT_EQ(onlyRecord(), (Dictionary{{"level", "3"}, {"~e", "GamingLevelStart"}}));
  KesuWeatherAndForecast::postWeatherMapLayersRequested(nil, {{"layerName", "x"}});
  EXPECT_EQ(onlyRecord(), (Dictionary{{"~e", "WeatherMapLayer"}}));
  KesuiMessageApps::postInsertTextWithText(false);
  EXPECT_EQ(onlyRecord(), (Dictionary{{"~e", "iMessageAppsInsertText"}}));
  KesuCommerceRevenue::postRevenueUsingApplePay(9.99);
  EXPECT_EQ(onlyRecord(), (Dictionary{{"~e", "RevenueWithPaymentInstrument"}}));
  const KesuGeoPoint point = {37.774899F, -122.5F};
  KesuWeatherAndForecast::postWeatherRequestForUVIndexAtPoint(&point);
  EXPECT_EQ(onlyRecord(), (Dictionary{{"lat", "37.774899"}, {"long", "-122.500000"}, {"~e", "WeatherUVIndex"}}));
  KesuWeatherAndForecast::postWeatherRequestForUVIndexAtPoint(nullptr, {{"lat", "1"}, {"k", "v"}});
  EXPECT_EQ(onlyRecord(), (Dictionary{{"k", "v"}, {"~e", "WeatherUVIndex"}}));
}

TEST_F(CatalogueTest, WritesTheLowBitsOfWholeSeconds) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  const struct {
    double seconds;
    const char* text;
  } rows[] = {{1.9, "1"},
              {-1.9, "-1"},
              {-0.5, "0"},
              {1489579320.5, "1489579320"},
              {2147483648.0, "-2147483648"},
              {4102444800.9, "-192522496"},
              {4294967297.0, "1"},
              {kInfinity, "-1"},
              {std::numeric_limits<double>::quiet_NaN(), "0"}};
  for (const auto& row : rows) {
    KesuWeatherAndForecast::postWeatherHistoricalRequest(row.seconds, 0.0);
    EXPECT_EQ(onlyRecord(),
              (Dictionary{{"startInterval", row.text}, {"endInterval", "0"}, {"~e", "WeatherHistoricReqType"}}));
  }
}

TEST_F(CatalogueTest, WritesRatingsAsDecimalText) {
  const std::pair<Object, const char*> rows[] = {{4, "4"},   {4.5, "4.5"}, {4.0, "4"},          {true, "1"},
                                                 {"5", "5"}, {nil, ""},    {Value(Null{}), ""}, {Array{4}, ""}};
  for (const auto& [rating, text] : rows) {
    KesuContent::postRatedOn5PointScale("n", "c", "i", rating);
    EXPECT_EQ(*onlyRecord().find("rating"), Value(text));
  }
}

TEST_F(CatalogueTest, AppendsOnlyScenesWithAName) {
  for (const Object& name : {Object(nil), Object(""), Object(7), Object(Value(Null{}))}) {
    KesuSceneFlow::postSecondsOnScene(name, 1.0);
  }
  EXPECT_TRUE(poster.scenes.empty());
  KesuSceneFlow::postSecondsOnScene(" ", 2.5);
  EXPECT_EQ(poster.scenes, (std::vector<std::pair<std::string, double>>{{" ", 2.5}}));
}

template <typename Flag>
concept AcceptedAsFlag = requires(Flag flag) {
  KesuiMessageApps::postInsertTextWithText(flag);
  KesuiMessageApps::postInsertAttachmentWithURL(true, flag);
  KesuAccount::postLoginCompleted(flag, nil);
  KesuAd::postAdReceived(nil, nil, nil, flag);
  KesuInAppPurchaseRevenue::postBuyItem(nil, nil, nil, nil, nil, nil, nil, flag, nil);
};

TEST_F(CatalogueTest, ChoosesTheFormByTheArguments) {
  static_assert(AcceptedAsFlag<bool> && !AcceptedAsFlag<const char*> && !AcceptedAsFlag<std::string>);
  const Attributes host = {{"a", "b"}};
  KesuCommerceRevenue::postRevenue(4.5);
  KesuCommerceRevenue::postRevenue(4.5, {});
  KesuCommerceRevenue::postRevenue(4.5, {{"a", "b"}});
  KesuCommerceRevenue::postRevenue(4.5, host);
  KesuCommerceRevenue::postRevenue(4.5, "Card");
  KesuCommerceRevenue::postRevenue(nil, nil, {});
  KesuDrone::postStartedAerialVideo("s", {});
  KesuDrone::postStartedAerialVideo("s", {{"a", "b"}, {"c", 1}});
  KesuDrone::postStartedAerialVideo("s", std::string("id"), host);
  const std::vector<std::string> expected = {"RevenuePost",
                                             "RevenuePost",
                                             "RevenuePost",
                                             "RevenuePost",
                                             "RevenueWithPaymentInstrument",
                                             "RevenueWithPaymentInstrument",
                                             "StartedAerialVideo",
                                             "StartedAerialVideo",
                                             "StartedAerialVideoAttr"};
  EXPECT_EQ(poster.flow, expected);
  EXPECT_EQ(poster.posted[2].second, (Dictionary{{"a", "b"}, {"~e", "RevenuePost"}}));
  EXPECT_EQ(poster.posted[7].second.size(), 4U);
}

}  // namespace
}  // namespace kesu
