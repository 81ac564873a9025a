#include "CatalogueDescription.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "foundation/Json.h"

namespace kesu::catalogue {
namespace {

TEST(CatalogueDescriptionTest, GathersTheKeysOfEveryEvent) {
  const auto events = keysOfEvents();
  EXPECT_EQ(events.at("FlyingMode"), (std::set<std::string>{"mode"}));
  EXPECT_EQ(events.at("InAppPurchaseBuy").size(), 10U);
  EXPECT_EQ(events.at("WeatherUVIndex"), (std::set<std::string>{"lat", "long"}));
  EXPECT_FALSE(events.contains(""));
}

TEST(CatalogueDescriptionTest, PrintsAsJsonAndAsText) {
  const std::optional<Value> json = parseJson(catalogueAsJson());
  ASSERT_TRUE(json);
  const Array& operations = *json->dictionary()->find("operations")->array();
  ASSERT_EQ(operations.size(), 195U);
  EXPECT_EQ(operations[10],
            *parseJson(R"({"class": "KesuAccount", "operation": "postSocialLoginOffered:withAttributes:",
      "function": "KesuAccount::postSocialLoginOffered", "event": "AccountSocialLoginOffered", "destination": "e",
      "updatesSceneFlow": false, "arguments": [{"label": "postSocialLoginOffered", "kind": "object", "keys": ["type"]},
      {"label": "withAttributes", "kind": "attributes", "keys": []}],
      "keys": [{"key": "type", "kind": "object", "argument": 0}]})"));
  const std::string text = catalogueAsText();
  EXPECT_NE(text.find("\nKesuSMS\n  postRegisteredDevice:withCountryCode:withAttributes:\n"
                      "    m \"KesuSMSRegister\": phoneNumber (as is), countryCode (as is), a = \"r\"\n"),
            std::string::npos);
  EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 30 + 29 + 2 * 195);
}

}  // namespace
}  // namespace kesu::catalogue
