#include <gtest/gtest.h>
#include <kesu/events/Catalogue.h>
#include <kesu/foundation/Exception.h>

#include <cstdio>
#include <limits>
#include <sstream>

#include "CatalogueContract.h"
#include "CatalogueDescription.h"
#include "NaturalCalls.h"
#include "foundation/Json.h"
#include "testing/RecordingPoster.h"

namespace kesu::catalogue {
namespace {

struct Feed {
  std::string key;
  std::string kind;
  std::string constant;
};

struct Row {
  std::string className, selector, destination, event;
  std::vector<Feed> feeds;

  bool isSceneFlow() const { return event.empty(); }
};

std::vector<std::string> split(const std::string& text, char separator) {
  std::vector<std::string> parts;
  std::istringstream stream(text);
  for (std::string part; std::getline(stream, part, separator);) {
    parts.push_back(part);
  }
  return parts;
}

Feed parseFeed(const std::string& text) {
  const std::size_t mark = text.find_first_of(":=");
  if (mark == std::string::npos) {
    return {text == "-" ? "" : text, text == "-" ? "ignored" : "object", ""};
  }
  const std::string rest = text.substr(mark + 1);
  return text[mark] == '=' ? Feed{text.substr(0, mark), "constant", rest} : Feed{text.substr(0, mark), rest, ""};
}

std::vector<Row> readContract() {
  std::vector<Row> rows;
  for (const std::string& line : split(std::string(kContract), '\n')) {
    std::vector<std::string> fields = split(line, '|');
    if (!fields.empty()) {
      fields.resize(5);
      rows.push_back({fields[0], fields[1], fields[2], fields[3], {}});
      for (const std::string& feed : split(fields[4], ',')) {
        rows.back().feeds.push_back(parseFeed(feed));
      }
    }
  }
  return rows;
}

std::string printedDegrees(double degrees) {
  char text[64];
  std::snprintf(text, sizeof text, "%f", degrees);
  return text;
}

std::string printedNumber(double number) {
  char text[64];
  std::snprintf(text, sizeof text, "%g", number);
  return text;
}

std::string printedInt(std::int64_t number) {
  char text[64];
  std::snprintf(text, sizeof text, "%d", static_cast<int>(number));
  return text;
}

void writePoint(Dictionary& record, const Array* pair) {
  record.remove("lat");
  record.remove("long");
  if (pair != nullptr) {
    record.set("lat", printedDegrees(static_cast<float>(pair->front().realValue())));
    record.set("long", printedDegrees(static_cast<float>(pair->back().realValue())));
  }
}

/// What the contract says that an argument does to the record.
void write(Dictionary& record, const Feed& feed, const Object& argument) {
  const Value value = argument.value_or(Value());
  if (feed.kind == "object") {
    record.set(feed.key, argument.value_or(Value("")));
  } else if (feed.kind == "asis") {
    record.remove(feed.key);
    if (argument) {
      record.set(feed.key, value);
    }
  } else if (feed.kind == "number") {
    record.set(feed.key, argument ? printedNumber(value.realValue()) : "");
  } else if (feed.kind == "decimal") {
    record.set(feed.key, std::to_string(value.integerValue()));
  } else if (feed.kind == "%d" || feed.kind == "seconds") {
    record.set(feed.key, printedInt(value.integerValue()));
  } else if (feed.kind == "flag") {
    record.set(feed.key, value == Value(true) ? "1" : "0");
  } else if (feed.kind == "true" && value == Value(true)) {
    record.set(feed.key, "1");
  } else if (feed.kind == "point") {
    writePoint(record, value.array());
  }
}

Dictionary expectedRecord(const Row& row, const std::vector<Object>& arguments, Dictionary record) {
  std::size_t next = 0;
  for (const Feed& feed : row.feeds) {
    if (feed.kind == "constant") {
      record.set(feed.key, feed.constant);
    } else {
      write(record, feed, arguments[next++]);
    }
  }
  record.set("~e", row.event);
  return record;
}

/// Arguments for a row, one a feed that is no constant.
using ArgumentMaker = Object (*)(const std::string& kind, std::int64_t place);

std::vector<Object> argumentsFor(const Row& row, ArgumentMaker make) {
  std::vector<Object> arguments;
  for (const Feed& feed : row.feeds) {
    if (feed.kind != "constant") {
      arguments.push_back(make(feed.kind, static_cast<std::int64_t>(arguments.size())));
    }
  }
  return arguments;
}

Object naturalArgument(const std::string& kind, std::int64_t place) {
  if (kind == "point") {
    return Value(Array{37.774899F, -122.419403F});
  }
  if (kind == "flag" || kind == "true") {
    return true;
  }
  if (kind == "number") {
    return 4.5;
  }
  if (kind == "seconds") {
    return 100.9 + static_cast<double>(place);
  }
  return kind == "decimal" || kind == "%d" ? Object(40 + place) : Object("a" + std::to_string(place));
}

Object missingArgument(const std::string& /*kind*/, std::int64_t /*place*/) {
  return nil;
}

/// Objects that are no text, negative and very large numbers, false.
Object unusualArgument(const std::string& kind, std::int64_t place) {
  if (kind == "point") {
    return Value(Array{-0.0000004, 179.5});
  }
  if (kind == "flag" || kind == "true") {
    return false;
  }
  if (kind == "seconds") {
    return -1.9 - static_cast<double>(place);
  }
  if (kind == "decimal" || kind == "%d") {
    return std::numeric_limits<std::int64_t>::max() - place;
  }
  return kind == "number" || place % 2 == 0 ? Object(-3 - place) : Object(Value(Null{}));
}

class CatalogueTest : public ::testing::Test {
 protected:
  /// The one record since the last call.
  Dictionary onlyRecord() {
    EXPECT_EQ(poster.posted.size(), 1U);
    const Dictionary record = poster.posted.empty() ? Dictionary() : poster.posted.front().second;
    poster.posted.clear();
    return record;
  }

  testing::RecordingPoster poster;
  const std::vector<Row> contract = readContract();
};

TEST_F(CatalogueTest, PostsTheContractWhenCalledAsHostsCall) {
  ASSERT_EQ(contract.size(), 195U);
  callEverythingNaturally();
  ASSERT_EQ(poster.posted.size(), 194U);
  EXPECT_EQ(poster.scenes, (std::vector<std::pair<std::string, double>>{{"a0", 101.9}}));
  std::size_t next = 0;
  for (const Row& row : contract) {
    if (!row.isSceneFlow()) {
      SCOPED_TRACE(row.className + " " + row.selector);
      EXPECT_EQ(poster.flow[next], row.event);
      EXPECT_EQ(std::string(1, poster.posted[next].first), row.destination);
      EXPECT_EQ(poster.posted[next].second, expectedRecord(row, argumentsFor(row, naturalArgument), {}));
      ++next;
    }
  }
}

TEST_F(CatalogueTest, WritesItsKeysOverTheHostsAttributes) {
  for (const Row& row : contract) {
    SCOPED_TRACE(row.className + " " + row.selector);
    Attributes host = {{"~e", "host"}, {"extra", 7}, {"lat", "host"}, {"long", "host"}};
    for (const Feed& feed : row.feeds) {
      host.set(feed.key, "host");
    }
    const std::vector<std::string> parts = split(row.selector, ':');
    for (const ArgumentMaker make : {naturalArgument, missingArgument, unusualArgument}) {
      const std::vector<Object> arguments = argumentsFor(row, make);
      const Operation* operation = findOperation(row.className, row.selector, 0);
      ASSERT_NE(operation, nullptr);
      ASSERT_EQ(operation->kinds.size(), parts.size());
      operation->invoke(arguments, host);
      if (!row.isSceneFlow()) {
        ASSERT_EQ(operation->argumentCount(), arguments.size());
        EXPECT_EQ(onlyRecord(), expectedRecord(row, arguments, host));
      }
    }
  }
  EXPECT_EQ(allOperations().size(), contract.size());
}

TEST_F(CatalogueTest, ThrowsBeforeTheLibraryHasAKey) {
  poster.initialized = false;
  for (const Operation& operation : allOperations()) {
    if (operation.className != "KesuSceneFlow") {
      EXPECT_THROW(operation.invoke({}, {}), InternalInconsistencyException) << operation.selector;
    }
  }
  KesuSceneFlow::postSecondsOnScene("cave", 1.0);
  EXPECT_EQ(poster.scenes.size(), 1U);
  EXPECT_TRUE(poster.posted.empty() && poster.flow.empty());
}

TEST_F(CatalogueTest, KeepsTheOddRecords) {
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

TEST_F(CatalogueTest, CutsSecondsWithinTheRangeOfAnInt) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  const struct {
    double seconds;
    const char* text;
  } rows[] = {{1.9, "1"},
              {-1.9, "-1"},
              {-0.5, "0"},
              {1489579320.5, "1489579320"},
              {4e9, "2147483647"},
              {-1e300, "-2147483648"},
              {kInfinity, "2147483647"},
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

TEST_F(CatalogueTest, TakesScenesThatHaveAName) {
  for (const Object& name : {Object(nil), Object(""), Object(7), Object(Value(Null{}))}) {
    KesuSceneFlow::postSecondsOnScene(name, 1.0);
  }
  EXPECT_TRUE(poster.scenes.empty());
  KesuSceneFlow::postSecondsOnScene(" ", 2.5);
  EXPECT_EQ(poster.scenes, (std::vector<std::pair<std::string, double>>{{" ", 2.5}}));
}

template <typename Flag>
concept TakenAsFlag = requires(Flag flag) {
  KesuiMessageApps::postInsertTextWithText(flag);
  KesuiMessageApps::postInsertAttachmentWithURL(true, flag);
  KesuAccount::postLoginCompleted(flag, nil);
  KesuAd::postAdReceived(nil, nil, nil, flag);
  KesuInAppPurchaseRevenue::postBuyItem(nil, nil, nil, nil, nil, nil, nil, flag, nil);
};

TEST_F(CatalogueTest, TellsItsFormsApart) {
  static_assert(TakenAsFlag<bool> && !TakenAsFlag<const char*> && !TakenAsFlag<std::string>);
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

TEST_F(CatalogueTest, FindsTheShortestFormThatFits) {
  EXPECT_EQ(findOperation("KesuInAppPurchaseRevenue", "postBuyItem", 2)->argumentCount(), 3U);
  EXPECT_EQ(findOperation("KesuInAppPurchaseRevenue", "postBuyItem", 4)->argumentCount(), 9U);
  EXPECT_EQ(findOperation("KesuInAppPurchaseRevenue", "postBuyItem", 10), nullptr);
  EXPECT_EQ(findOperation("KesuGaming", "postBuyItem", 0), nullptr);
  const Operation* check = findOperation("KesuiMessageApps", "postInsertAttachmentWithURL", 2);
  check->invoke({"yes", "0"}, {});
  EXPECT_EQ(onlyRecord(), (Dictionary{{"URLProvided", "1"}, {"~e", "iMessageAppsInsertAttachment"}}));
  findOperation("KesuWeatherAndForecast", "postWeatherRequestForUVIndexAtPoint", 1)->invoke({"1.5,-2"}, {});
  EXPECT_EQ(onlyRecord(), (Dictionary{{"lat", "1.500000"}, {"long", "-2.000000"}, {"~e", "WeatherUVIndex"}}));
}

/// The keys of a description in the notation of the contract.
std::string keysOf(const OperationDescription& description) {
  std::string text;
  for (const KeyDescription& key : description.keys) {
    text += key.key + " " + std::string(kindName(key.kind)) + " " + key.constant +
            (key.argument ? std::to_string(*key.argument) : "") + "; ";
  }
  return text;
}

std::string keysOf(const Row& row) {
  const std::map<std::string, std::string> names = {{"asis", "as is"}, {"%d", "integer"}, {"true", "\"1\" when true"}};
  std::string text;
  std::size_t next = 0;
  for (const Feed& feed : row.feeds) {
    const std::string place = feed.kind == "constant" ? "" : std::to_string(next++);
    if (feed.kind == "point") {
      text += "lat latitude " + place + "; long longitude " + place + "; ";
    } else if (feed.kind != "ignored") {
      const auto name = names.find(feed.kind);
      text += feed.key + " " + (name != names.end() ? name->second : feed.kind) + " " + feed.constant + place + "; ";
    }
  }
  return text;
}

TEST(CatalogueDescriptionTest, AgreesWithTheContract) {
  const std::vector<Row> contract = readContract();
  const std::vector<OperationDescription> descriptions = describeCatalogue();
  std::map<std::string, const OperationDescription*> byName;
  for (const OperationDescription& description : descriptions) {
    byName[std::string(description.operation->className) + std::string(description.operation->selector)] = &description;
  }
  ASSERT_EQ(byName.size(), contract.size());
  for (const Row& row : contract) {
    const OperationDescription* description = byName[row.className + row.selector];
    ASSERT_NE(description, nullptr) << row.selector;
    EXPECT_EQ(description->event, row.event);
    EXPECT_EQ(description->destination, row.destination);
    EXPECT_EQ(description->updatesSceneFlow, row.isSceneFlow());
    EXPECT_EQ(keysOf(*description), keysOf(row)) << row.className << " " << row.selector;
  }
  const auto events = keysOfEvents(descriptions);
  EXPECT_EQ(events.at("FlyingMode"), (std::set<std::string>{"mode"}));
  EXPECT_EQ(events.at("InAppPurchaseBuy").size(), 10U);
  EXPECT_FALSE(events.contains(""));
}

TEST(CatalogueDescriptionTest, PrintsAsJsonAndAsText) {
  const std::vector<OperationDescription> descriptions = describeCatalogue();
  const std::optional<Value> json = parseJson(catalogueAsJson(descriptions));
  ASSERT_TRUE(json);
  const Array& operations = *json->dictionary()->find("operations")->array();
  ASSERT_EQ(operations.size(), 195U);
  EXPECT_EQ(operations[10],
            *parseJson(R"({"class": "KesuAccount", "operation": "postSocialLoginOffered:withAttributes:",
      "function": "KesuAccount::postSocialLoginOffered", "event": "AccountSocialLoginOffered", "destination": "e",
      "updatesSceneFlow": false, "arguments": [{"label": "postSocialLoginOffered", "kind": "object", "keys": ["type"]},
      {"label": "withAttributes", "kind": "attributes", "keys": []}],
      "keys": [{"key": "type", "kind": "object", "argument": 0}]})"));
  const std::string text = catalogueAsText(descriptions);
  EXPECT_NE(text.find("\nKesuSMS\n  postRegisteredDevice:withCountryCode:withAttributes:\n"
                      "    m \"KesuSMSRegister\": phoneNumber (as is), countryCode (as is), a = \"r\"\n"),
            std::string::npos);
  EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 30 + 29 + 2 * 195);
}

}  // namespace
}  // namespace kesu::catalogue
