#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "messaging/ButtonClicks.h"
#include "messaging/KeptSize.h"

namespace kesu {
namespace {

TEST(KeptSize, GrowsWithTextsAndKeys) {
  const std::size_t small = keptSize(Dictionary{{"k", Array{"x"}}});
  EXPECT_EQ(keptSize(Dictionary{{std::string(101, 'k'), Array{std::string(201, 'x')}}}), small + 300);
}

TEST(ButtonClicks, CarryTheStatusToTheObserver) {
  NotificationCenter notifications;
  std::vector<KesuInAppStatus> told;
  observeButtonClicks(notifications, [&told](const KesuInAppStatus& status) { told.push_back(status); });
  const KesuInAppStatus plain;
  const KesuInAppStatus full{1, "m", "c", "Title", "abc", 4, KesuInAppError{HttpError::TimedOut, 500, "late"}};
  postButtonClick(notifications, plain);
  postButtonClick(notifications, full);
  notifications.post(kInAppMessageButtonClickedNotification);
  EXPECT_EQ(told, (std::vector<KesuInAppStatus>{plain, full, plain}));
}

}  // namespace
}  // namespace kesu
