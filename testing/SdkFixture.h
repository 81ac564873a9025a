#pragma once

#include <gtest/gtest.h>
#include <kesu.h>

#include <string>
#include <vector>

#include "foundation/Json.h"
#include "foundation/SharedInstance.h"
#include "testing/ScopedPlatform.h"

namespace kesu::testing {

/// The whole library on a platform of doubles, driven as by a host. Fails a test that leaves log lines of level 0 or 2
/// in place.
class SdkFixture : public ::testing::Test {
 protected:
  SdkFixture() {
    platform.clock.set(1489579320.0);  // 2017-03-15 12:02:00 UTC
    platform.bundle.dictionary = {{"CFBundleIdentifier", "tv.example.app"},
                                  {"CFBundleDisplayName", "Example"},
                                  {"CFBundleVersion", "42"},
                                  {"CFBundleShortVersionString", "1.0"}};
  }

  ~SdkFixture() override {
    endProcess();
    for (const auto& line : platform.log.takeLines()) {
      EXPECT_GE(line.level, 3) << line.text;
    }
  }

  /// Initialises the library and reports the launch, as a fresh process does. Removes the banner from the log.
  void launch(const char* key = "key", std::int64_t logLevel = 2) {
    Kesu::initialize(key, logLevel);
    platform.log.takeLines();
    Application::shared().didFinishLaunching();
    platform.settle();
  }

  /// Destroys the library's objects, as the end of the process does. Disk, log and defaults stay.
  void endProcess() {
    resetSharedInstances();
    platform.background.discardAll();
    platform.outbox.restart();
    Kesu::logThrottling(0);
  }

  /// Ends the process as kill -9 does: loses what is queued, on its way or not synchronized.
  void die() {
    platform.background.discardAll();
    platform.http.discardPending();
    platform.defaults.loseUnsynchronized();
    endProcess();
  }

  void relaunch(const char* key = "key") {
    endProcess();
    launch(key);
  }

  /// Answers every open request and runs what follows.
  void answerAll(int status) {
    platform.settle();
    platform.http.answerAll(status);
    platform.settle();
  }

  /// Returns the destinations of the requests since forgetRequests(), one letter each, in order.
  std::string destinations() {
    std::string letters;
    const auto requests = platform.http.requests();
    for (std::size_t i = forgotten_; i < requests.size(); ++i) {
      letters += requests[i].headers.front().second;
    }
    return letters;
  }

  /// Starts destinations() and body() at the next request.
  void forgetRequests() { forgotten_ = platform.http.requestCount(); }

  /// Returns the body of the i-th request since forgetRequests().
  Dictionary body(std::size_t i) { return *parseJson(platform.http.request(forgotten_ + i).body)->dictionary(); }
  Dictionary lastBody() { return body(platform.http.requestCount() - forgotten_ - 1); }

  std::string text(const Dictionary& record, const char* key) {
    const std::string* found = record.findText(key);
    return found != nullptr ? *found : "<absent>";
  }

  ScopedPlatform platform;

 private:
  std::size_t forgotten_ = 0;
};

}  // namespace kesu::testing
