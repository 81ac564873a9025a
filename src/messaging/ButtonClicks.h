#pragma once

#include <kesu/messaging/KesuInAppStatus.h>
#include <kesu/platform/NotificationCenter.h>

#include <functional>

namespace kesu {

/// Posts kInAppMessageButtonClickedNotification for a pressed button. The notification's object is the address of
/// `status`, for identity only; its user information carries the content. Main thread.
void postButtonClick(NotificationCenter& notifications, const KesuInAppStatus& status);

/// Calls `handler` for every pressed button, on the posting thread, until the observer is removed.
NotificationCenter::Token observeButtonClicks(NotificationCenter& notifications,
                                              std::function<void(const KesuInAppStatus&)> handler);

}  // namespace kesu
