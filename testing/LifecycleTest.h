#pragma once

#include <gtest/gtest.h>
#include <kesu/platform/ApplicationNotifications.h>

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "foundation/Json.h"
#include "lifecycle/KesuManager.h"
#include "records/StateCodes.h"
#include "support/KesuPriorityLogger.h"
#include "testing/Keys.h"
#include "testing/ScopedPlatform.h"

namespace kesu::testing {

inline const ScreenKey kMain = {"Main", "0x1"};
inline const ScreenKey kMenu = {"Menu", "0x2"};

/// The screen flow of a process that crashes and restarts.
class FlowTest : public ::testing::Test {
 protected:
  FlowTest() {
    platform.bundle.dictionary = {{"CFBundleVersion", "42"}, {"CFBundleShortVersionString", "1.0"}};
    restart();
  }

  void restart() {
    platform.defaults.loseUnsynchronized();
    usage = std::make_unique<UsageStatistics>(platform.defaults, platform.clock, calendar);
    flow = std::make_unique<ScreenFlow>(platform.defaults, platform.clock, platform.bundle, metrics, *usage);
  }

  Dictionary change(char state, const ScreenKey& screen = kMain) {
    Dictionary record;
    DefaultsChanges changes;
    flow->screenFlowHandler(state, {&screen, 1}, record, changes);
    platform.defaults.apply(changes);
    platform.defaults.synchronize();
    return record;
  }

  /// Shows a screen for that long; returns the flow kept on disk.
  std::string visit(const ScreenKey& screen, double seconds) {
    change('a', screen);
    platform.clock.advance(seconds);
    change('d', screen);
    return onDisk("UnsentScreens");
  }

  /// Ends the session's count of usage.
  std::int64_t secondsOfUsage() {
    Dictionary traits;
    DefaultsChanges changes;
    usage->fillInTraitsForAggregateAndActivations(traits, changes);
    platform.defaults.apply(changes);
    return platform.defaults.integer("asst");
  }

  std::string onDisk(const char* key) {
    const Dictionary kept = platform.defaults.keptOnDisk();
    const std::string* text = kept.findText(key);
    return text != nullptr ? *text : "<absent>";
  }

  ScopedPlatform platform;
  DeploymentSettings settings{platform.bundle};
  KesuMetrics metrics{platform.device, platform.reachability, platform.locale, settings};
  WeekCalendar calendar{platform.locale};
  std::unique_ptr<UsageStatistics> usage;
  std::unique_ptr<ScreenFlow> flow;
};

/// The manager with everything behind it, whose records arrive at an HTTP client of the test.
class ManagerTest : public FlowTest {
 protected:
  ~ManagerTest() override { KesuPriorityLogger::sharedLogger().setLogLevel(0); }

  /// Initialises the library; again, as the next process does.
  void initialize() {
    if (library->manager.isSDKInitialized()) {
      endProcess();
      library = std::make_unique<Library>(*this);
    }
    library->manager.initializeWithKey("key");
    platform.log.takeLines();
  }

  /// Destroys the library with what is queued and on its way. Log and disk stay.
  void endProcess() {
    library.reset();
    platform.outbox.restart();
    platform.background.discardAll();
    platform.http.discardPending();
  }

  void launch() { notify(kApplicationDidFinishLaunchingNotification); }
  void enterBackground() { notify(kApplicationDidEnterBackgroundNotification); }
  void enterForeground() { notify(kApplicationWillEnterForegroundNotification); }
  void appear(const ScreenKey& screen) { library->manager.stateChanges().screenChanged(kStateAppeared, screen); }
  void disappear(const ScreenKey& screen) { library->manager.stateChanges().screenChanged(kStateDisappeared, screen); }
  void notify(std::string_view name) { platform.notifications.post(name); }

  /// The records since the last call: the destination and the body.
  std::vector<std::pair<std::string, Dictionary>> takeRecords() {
    platform.settle();
    std::vector<std::pair<std::string, Dictionary>> records;
    const auto requests = platform.http.requests();
    for (; taken_ < requests.size(); ++taken_) {
      records.emplace_back(requests[taken_].headers.front().second, *parseJson(requests[taken_].body)->dictionary());
    }
    return records;
  }

  /// The last record of a table among them.
  Dictionary takeLast(const std::string& destination) {
    Dictionary last;
    for (auto& [found, body] : takeRecords()) {
      if (found == destination) {
        last = std::move(body);
      }
    }
    return last;
  }

  std::string takeDestinations() {
    std::string letters;
    for (const auto& record : takeRecords()) {
      letters += record.first;
    }
    return letters;
  }

  struct Library {
    explicit Library(ManagerTest& test)
        : outbox(test.platform.outbox, test.platform.defaults, test.platform.background, test.platform.clock,
                 test.platform.random),
          post(test.platform.http, outbox, test.platform.background, test.platform.clock, test.settings, test.store),
          resendPass(test.store, post, outbox, test.platform.files, test.platform.background, test.platform.clock),
          manager(test.platform.platform, test.settings, test.metrics, outbox, post, resendPass,
                  [&test] { return test.visible; }) {}

    Outbox outbox;
    KesuPost post;
    ResendPass resendPass;
    KesuManager manager;
  };

  std::vector<ScreenKey> visible = {kMain};
  KesuStore store{platform.files, platform.defaults, platform.clock};
  std::unique_ptr<Library> library = std::make_unique<Library>(*this);

 private:
  std::size_t taken_ = 0;
};

}  // namespace kesu::testing
