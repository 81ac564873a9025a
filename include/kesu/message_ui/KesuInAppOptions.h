#pragma once

#include <kesu/foundation/Value.h>
#include <kesu/graphics/Geometry.h>

#include <functional>
#include <string>

namespace kesu {

/// What a host may change about the message popup. Everything is optional; without any of it the popup is as
/// documented. Functions are called on the main thread.
struct KesuInAppOptions {
  /// Points at the edges of the screen that stay free, for television sets that cut off the picture's edge.
  EdgeInsets screenInsets;

  /// How much larger than usual titles and texts of messages are set, from 0.5 to 3.
  double textScale = 1.0;

  /// Whether a message may be shown, asked with its header ("mid", "cid" and what else the service sent) before it is
  /// fetched: one that is refused counts as if the service had not sent it, and stays unread. When all are refused,
  /// nothing is shown.
  std::function<bool(const Dictionary& header)> shouldShowMessage;

  /// Whether the URL of a pressed button may be opened; refused ones are reported with status 3.
  std::function<bool(const std::string& url)> shouldOpenUrl;

  std::function<void()> willPresent;  ///< The popup is about to slide in.
  std::function<void()> didPresent;   ///< It is in its place.
  std::function<void()> willDismiss;  ///< It is about to slide out.
  std::function<void()> didDismiss;   ///< It has left the screen.
};

}  // namespace kesu
