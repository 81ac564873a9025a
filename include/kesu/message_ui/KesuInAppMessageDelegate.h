#pragma once

#include <kesu/Export.h>

#include <cstdint>
#include <string>

namespace kesu {

/// Receives the pressed buttons of in-app messages that are shown without a completion handler; not paging, and not web
/// hooks that fail later. Derive the view controller that is passed to Kesu::showInAppNotificationUI from it as well.
/// Main thread. Not owned; it may be destroyed at any time, and is not called any more then.
class KESU_API KesuInAppMessageDelegate {
 public:
  KesuInAppMessageDelegate() = default;
  virtual ~KesuInAppMessageDelegate();

  KesuInAppMessageDelegate(const KesuInAppMessageDelegate&) = delete;
  KesuInAppMessageDelegate& operator=(const KesuInAppMessageDelegate&) = delete;

  /// Receives a pressed button: its index from 0, its title, its action as the message has it, and the outcome (see
  /// KesuInAppStatus::status). Called after the action was performed.
  /// [inAppMessageButtonHandlerWithIndex:buttonTitle:containingURLString:withDeepLinkStatus:]
  virtual void inAppMessageButtonHandlerWithIndex(std::int64_t index, const std::string& buttonTitle,
                                                  const std::string& containingURLString,
                                                  std::int64_t withDeepLinkStatus) = 0;
};

}  // namespace kesu
