#pragma once

#include <kesu/platform/HttpClient.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kesu {

/// Name of the notification that is posted on the main thread when a button of an in-app message was pressed. Register
/// with Kesu::registerForButtonClickOnInAppMessageWithSelector, which converts it to a KesuInAppStatus: the entries of
/// the notification itself are internal.
inline constexpr std::string_view kInAppMessageButtonClickedNotification = "KesuInAppMessageButtonClickedNotification";

/// Why a web hook could not be called. A plain value.
struct KesuInAppError {
  HttpError code = HttpError::None;
  int httpStatus = 0;  ///< Status code of the reply; 0 when none came.
  std::string text;    ///< The system's message.
  friend bool operator==(const KesuInAppError&, const KesuInAppError&) = default;
};

/// Describes a pressed button of an in-app message, or paging. A plain value. For a web hook that fails the completion
/// handler is called a second time, with `error`.
struct KesuInAppStatus {
  std::int64_t buttonIndex = 0;           ///< From 0; 10 and 11 are the arrows to the previous and the next message.
  std::optional<std::string> messageID;   ///< "mid" of the message's header.
  std::optional<std::string> campaignID;  ///< "cid" of the message's header.
  std::optional<std::string> title;       ///< Of the button.
  std::optional<std::string> urlString;   ///< The identifier that a button passes to the host (status 4).
  std::int64_t status = 0;  ///< 1 no action, 2 URL opened, 3 URL refused or another message shown, 4 identifier for the
                            ///< host, 5 web hook called.
  std::optional<KesuInAppError> error;  ///< Set when a web hook failed.
  friend bool operator==(const KesuInAppStatus&, const KesuInAppStatus&) = default;
};

}  // namespace kesu
