#include "CatalogueTable.h"

#include <gtest/gtest.h>
#include <kesu.h>
#include <kesu/foundation/Exception.h>

#include <algorithm>
#include <limits>
#include <sstream>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "events/catalogue/Feeds.h"
#include "testing/RecordingPoster.h"

namespace kesu::catalogue {
namespace {

constexpr KesuGeoPoint kCity = {37.774899F, -122.419403F};

// What a host writes at a place, as the type that a literal has.
template <KeyKind... kKinds>
std::tuple<const char*> literal(const Feed<const Object&, kKinds...>& /*feed*/, std::size_t& place) {
  static constexpr const char* kTexts[] = {"a0", "a1", "a2", "a3", "a4", "a5", "a6", "a7", "a8"};
  return kTexts[place++];
}
std::tuple<double> literal(const Feed<const Object&, KeyKind::Number>& /*feed*/, std::size_t& place) {
  ++place;
  return 4.5;
}
template <KeyKind kKind>
std::tuple<int> literal(const Feed<std::int64_t, kKind>& /*feed*/, std::size_t& place) {
  return 40 + static_cast<int>(place++);
}
template <KeyKind... kKinds>
std::tuple<double> literal(const Feed<double, kKinds...>& /*feed*/, std::size_t& place) {
  return 100.9 + static_cast<double>(place++);
}
template <KeyKind kKind>
std::tuple<bool> literal(const Feed<bool, kKind>& /*feed*/, std::size_t& place) {
  ++place;
  return true;
}
std::tuple<const KesuGeoPoint*> literal(
    const Feed<const KesuGeoPoint*, KeyKind::Latitude, KeyKind::Longitude>& /*feed*/, std::size_t& place) {
  ++place;
  return &kCity;
}
std::tuple<> literal(const Constant& /*feed*/, std::size_t& /*place*/) {
  return {};
}

template <typename Function, typename... Feeds>
void callWithLiterals(Function function, const Feeds&... feeds) {
  std::size_t place = 0;
  const std::tuple<decltype(literal(feeds, place))...> literals{literal(feeds, place)...};
  std::apply([&](const auto&... one) { std::apply(function, std::tuple_cat(one...)); }, literals);
}

/// Calls every operation once as a host writes it, without attributes, in the order of the list.
void callEverythingAsHostsDo() {
#define KESU_OPERATION(Class, function, rest, destination, event, ...) \
  callWithLiterals([](auto... literals) { Class::function(literals...); } __VA_OPT__(, ) __VA_ARGS__);
#define KESU_SCENE_OPERATION(Class, function, rest, ...) KESU_OPERATION(Class, function, rest, "", "", __VA_ARGS__)
#include "events/catalogue/Operations.inc"
}

std::string printedNumber(double number) {
  std::ostringstream text;
  text << number;
  return text.str();
}

/// What an argument becomes under a key, as the list says; nothing: no key, also where the host has one.
Object expectedValue(const Key& key, const Object& argument, const Object& hosts) {
  const Value value = argument.value_or(Value());
  const Array* pair = value.array();
  switch (key.kind) {
    case KeyKind::Object:
      return argument.value_or("");
    case KeyKind::AsIs:
      return argument;
    case KeyKind::Number:
      return argument ? printedNumber(value.realValue()) : "";
    case KeyKind::Decimal:
      return std::to_string(value.integerValue());
    case KeyKind::Integer:
    case KeyKind::Seconds:
      return std::to_string(static_cast<int>(value.integerValue()));
    case KeyKind::Latitude:
      return pair != nullptr ? Object(std::to_string(static_cast<float>(pair->front().realValue()))) : nil;
    case KeyKind::Longitude:
      return pair != nullptr ? Object(std::to_string(static_cast<float>(pair->back().realValue()))) : nil;
    case KeyKind::Flag:
      return value == Value(true) ? "1" : "0";
    case KeyKind::WhenTrue:
      return value == Value(true) ? Object("1") : hosts;
    case KeyKind::Constant:
      break;
  }
  return key.constant;
}

Dictionary expectedRecord(const Operation& operation, const std::vector<Object>& arguments, Dictionary record) {
  for (const Key& key : operation.keys) {
    const Value* hosts = record.find(key.key);
    const Object value = expectedValue(key, key.argument ? arguments[*key.argument] : Object(nil),
                                       hosts != nullptr ? Object(*hosts) : Object(nil));
    if (value) {
      record.set(key.key, *value);
    } else {
      record.remove(key.key);
    }
  }
  record.set("~e", operation.event);
  return record;
}

std::vector<std::string> keysInOrder(const Dictionary& record) {
  std::vector<std::string> keys;
  for (const Dictionary::Entry& entry : record) {
    keys.push_back(entry.key);
  }
  return keys;
}

bool takesNumberAt(const Operation& operation, std::size_t place) {
  return std::ranges::any_of(operation.keys,
                             [&](const Key& key) { return key.argument == place && key.kind == KeyKind::Number; });
}

using ArgumentMaker = Object (*)(ArgumentKind kind, bool isNumber, std::int64_t place);

/// The arguments of an operation besides the attributes.
std::vector<Object> argumentsFor(const Operation& operation, ArgumentMaker make) {
  std::vector<Object> arguments;
  for (std::size_t i = 0; i < operation.argumentCount(); ++i) {
    arguments.push_back(make(operation.arguments[i], takesNumberAt(operation, i), static_cast<std::int64_t>(i)));
  }
  return arguments;
}

/// The same values as literal() gives.
Object naturalArgument(ArgumentKind kind, bool isNumber, std::int64_t place) {
  switch (kind) {
    case ArgumentKind::Flag:
      return true;
    case ArgumentKind::Integer:
      return 40 + place;
    case ArgumentKind::Seconds:
      return 100.9 + static_cast<double>(place);
    case ArgumentKind::Point:
      return Value(Array{kCity.latitude, kCity.longitude});
    case ArgumentKind::Object:
    case ArgumentKind::Attributes:
      break;
  }
  return isNumber ? Object(4.5) : Object("a" + std::to_string(place));
}

Object missingArgument(ArgumentKind /*kind*/, bool /*isNumber*/, std::int64_t /*place*/) {
  return nil;
}

/// Objects that are no text, negative and very large numbers, false.
Object unusualArgument(ArgumentKind kind, bool isNumber, std::int64_t place) {
  switch (kind) {
    case ArgumentKind::Flag:
      return false;
    case ArgumentKind::Integer:
      return std::numeric_limits<std::int64_t>::max() - place;
    case ArgumentKind::Seconds:
      return -1.9 - static_cast<double>(place);
    case ArgumentKind::Point:
      return Value(Array{-0.0000004, 179.5});
    case ArgumentKind::Object:
    case ArgumentKind::Attributes:
      break;
  }
  return isNumber || place % 2 == 0 ? Object(-3 - place) : Object(Value(Null{}));
}

class CatalogueTableTest : public ::testing::Test {
 protected:
  testing::RecordingPoster poster;
};

TEST_F(CatalogueTableTest, PostsWhatTheListSaysWhenCalledAsHostsCall) {
  ASSERT_EQ(allOperations().size(), 195U);
  callEverythingAsHostsDo();
  ASSERT_EQ(poster.posted.size(), 194U);
  EXPECT_EQ(poster.scenes, (std::vector<std::pair<std::string, double>>{{"a0", 101.9}}));
  std::size_t next = 0;
  for (const Operation& operation : allOperations()) {
    if (!operation.updatesSceneFlow()) {
      SCOPED_TRACE(std::string(operation.className) + " " + std::string(operation.selector));
      const Dictionary expected = expectedRecord(operation, argumentsFor(operation, naturalArgument), {});
      EXPECT_EQ(poster.flow[next], operation.event);
      EXPECT_EQ(std::string(1, poster.posted[next].first), operation.destination);
      EXPECT_EQ(poster.posted[next].second, expected);
      EXPECT_EQ(keysInOrder(poster.posted[next].second), keysInOrder(expected));
      ++next;
    }
  }
}

TEST_F(CatalogueTableTest, WritesItsKeysOverTheHostsAttributes) {
  for (const Operation& operation : allOperations()) {
    SCOPED_TRACE(std::string(operation.className) + " " + std::string(operation.selector));
    Attributes host = {{"~e", "host"}, {"extra", 7}, {"lat", "host"}, {"long", "host"}};
    for (const Key& key : operation.keys) {
      host.set(key.key, "host");
    }
    ASSERT_EQ(findOperation(operation.className, operation.selector, 0), &operation);
    ASSERT_EQ(operation.arguments.size(), operation.labels().size());
    for (const ArgumentMaker make : {naturalArgument, missingArgument, unusualArgument}) {
      const std::vector<Object> arguments = argumentsFor(operation, make);
      operation.invoke(arguments, host);
      if (!operation.updatesSceneFlow()) {
        EXPECT_EQ(poster.takeOnly(), expectedRecord(operation, arguments, host));
      }
    }
  }
}

TEST_F(CatalogueTableTest, ThrowsBeforeTheLibraryHasAKey) {
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

TEST_F(CatalogueTableTest, FindsTheShortestFormThatFits) {
  EXPECT_EQ(findOperation("KesuInAppPurchaseRevenue", "postBuyItem", 2)->argumentCount(), 3U);
  EXPECT_EQ(findOperation("KesuInAppPurchaseRevenue", "postBuyItem", 4)->argumentCount(), 9U);
  EXPECT_EQ(findOperation("KesuInAppPurchaseRevenue", "postBuyItem", 10), nullptr);
  EXPECT_EQ(findOperation("KesuGaming", "postBuyItem", 0), nullptr);
  const Operation* check = findOperation("KesuiMessageApps", "postInsertAttachmentWithURL", 2);
  check->invoke({"yes", "0"}, {});
  EXPECT_EQ(poster.takeOnly(), (Dictionary{{"URLProvided", "1"}, {"~e", "iMessageAppsInsertAttachment"}}));
  findOperation("KesuWeatherAndForecast", "postWeatherRequestForUVIndexAtPoint", 1)->invoke({"1.5,-2"}, {});
  EXPECT_EQ(poster.takeOnly(), (Dictionary{{"lat", "1.500000"}, {"long", "-2.000000"}, {"~e", "WeatherUVIndex"}}));
}

}  // namespace
}  // namespace kesu::catalogue
