#pragma once

#include <kesu/Export.h>

#include <cstdint>
#include <string>

namespace kesu {

/// Told about pressed buttons of in-app messages by shows that were given no completion handler; not of paging, and not
/// of web hooks that fail later. Derive the view controller that is handed to Kesu::showInAppNotificationUI from it as
/// well. Main thread. Not owned; one that is destroyed is no longer told.
class KESU_API KesuInAppMessageDelegate {
 public:
  KesuInAppMessageDelegate() = default;
  virtual ~KesuInAppMessageDelegate();

  KesuInAppMessageDelegate(const KesuInAppMessageDelegate&) = delete;
  KesuInAppMessageDelegate& operator=(const KesuInAppMessageDelegate&) = delete;

  /// [inAppMessageButtonHandlerWithIndex:buttonTitle:containingURLString:withDeepLinkStatus:]
  /// A button was pressed: its index from 0, its title, its action as the message has it, and what came of it (see
  /// KesuInAppStatus::status).
  virtual void inAppMessageButtonHandlerWithIndex(std::int64_t index, const std::string& buttonTitle,
                                                  const std::string& containingURLString,
                                                  std::int64_t withDeepLinkStatus) = 0;
};

}  // namespace kesu
