#include "tools/loopback/Faults.h"

#include <gtest/gtest.h>

#include <thread>

#include "foundation/Json.h"

namespace kesu::loopback {
namespace {

std::optional<Fault> parse(const std::string& json, std::string& error) {
  return faultFromJson(parseJson(json).value_or(Value()), error);
}

Fault faultFor(const std::string& json) {
  std::string error;
  return parse(json, error).value_or(Fault());
}

TEST(Faults, SurviveTheWayThroughJson) {
  for (const char* json : {
           R"({"route":"/collect","status":500,"hits":0})",
           R"({"route":"*","delayMs":250,"times":3,"hits":0})",
           R"({"route":"/a","hang":true,"hits":0})",
           R"({"route":"/a","close":"before","hits":0})",
           R"({"route":"/a","close":"after","delayMs":5,"hits":0})",
           R"({"route":"/a","lostReply":true,"times":1,"hits":0})",
           R"({"route":"/a","garbageBody":true,"status":500,"hits":0})",
           R"({"route":"/a","redirect":"http://127.0.0.1:1/","status":301,"hits":0})",
       }) {
    std::string text;
    EXPECT_EQ(writeJson(describeFault(faultFor(json)), text), JsonStatus::Ok);
    EXPECT_EQ(text, json);
  }
}

TEST(Faults, AreRefusedWithAReason) {
  const struct {
    const char* json;
    const char* reason;
  } rows[] = {
      {"[]", "a fault is a JSON object"},
      {R"({"status":500})", "\"route\" must be a path"},
      {R"({"route":"collect","status":500})", "\"route\" must be a path"},
      {R"({"route":"/a"})", "say what goes wrong"},
      {R"({"route":"/a","hang":false})", "say what goes wrong"},
      {R"({"route":"/a","status":99})", "\"status\" must be"},
      {R"({"route":"/a","status":"500"})", "\"status\" must be"},
      {R"({"route":"/a","delayMs":-1})", "\"delayMs\" must be"},
      {R"({"route":"/a","status":500,"times":0})", "\"times\" must be"},
      {R"({"route":"/a","close":"later"})", "\"close\" must be"},
      {R"({"route":"/a","hang":true,"lostReply":true})", "one fault does one thing"},
      {R"({"route":"/a","statsu":500})", "unknown key \"statsu\""},
      {R"({"route":"/a","redirect":"http://a\r\nx: y"})", "\"redirect\" must be a URL"},
  };
  for (const auto& row : rows) {
    std::string error;
    EXPECT_FALSE(parse(row.json, error)) << row.json;
    EXPECT_NE(error.find(row.reason), std::string::npos) << row.json << ": " << error;
  }
}

TEST(Faults, ApplyToTheirRoute) {
  EXPECT_TRUE(routeMatches("/collect", "/collect"));
  EXPECT_FALSE(routeMatches("/collect", "/collect/1"));
  EXPECT_TRUE(routeMatches("/v1/*", "/v1/count"));
  EXPECT_FALSE(routeMatches("/v1/*", "/v2/count"));
  EXPECT_TRUE(routeMatches("*", "/collect"));
}

TEST(FaultTable, UsesFaultsInOrderUntilTheyAreUsedUp) {
  FaultTable faults;
  faults.add(faultFor(R"({"route":"/a","status":500,"times":2})"));
  faults.add(faultFor(R"({"route":"*","status":503,"times":1})"));
  std::string statuses;
  for (const char* path : {"/a", "/b", "/a", "/a"}) {
    const auto hit = faults.hit(path);
    statuses += std::to_string(hit ? hit->fault.status : 0) + " ";
  }
  EXPECT_EQ(statuses, "500 503 500 0 ");
  EXPECT_EQ(faults.hits(), 3);
}

TEST(FaultTable, RemovesByRouteAndWakesWhoWaits) {
  FaultTable faults;
  faults.add(faultFor(R"({"route":"/a","hang":true})"));
  faults.add(faultFor(R"({"route":"/b","hang":true})"));
  const auto hit = faults.hit("/a");
  ASSERT_TRUE(hit);
  EXPECT_FALSE(faults.waitForRemoval(*hit, std::chrono::milliseconds(1)));
  bool woken = false;
  std::thread waiter([&] { woken = faults.waitForRemoval(*hit, std::chrono::minutes(1)); });
  faults.remove("/a");
  waiter.join();
  EXPECT_TRUE(woken);
  EXPECT_FALSE(faults.hit("/a"));
  EXPECT_TRUE(faults.hit("/b"));
}

}  // namespace
}  // namespace kesu::loopback
