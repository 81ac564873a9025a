#pragma once

#include <kesu/foundation/Value.h>
#include <kesu/graphics/Geometry.h>

#include <functional>
#include <string>

namespace kesu {

/// What a host may change about the message popup. Everything is optional; without any of it the popup is as
/// documented. A plain value. Functions are called on the main thread, and may show and dismiss messages themselves;
/// they are kept until other options are set, so what they refer to must live as long.
struct KesuInAppOptions {
  /// Points at the edges of the screen that stay free, for television sets that cut off the picture's edge. From 0 to
  /// 400 each; numbers outside are taken as the nearest of these.
  EdgeInsets screenInsets;

  /// How much larger than usual titles and texts of messages are set, from 0.5 to 3. Numbers outside are taken as the
  /// nearest of these, NaN as 1.
  double textScale = 1.0;

  /// Whether a message may be shown, asked with its header ("mid", "cid" and what else the service sent) before it is
  /// fetched: one that is refused counts as if the service had not sent it, and stays unread. When all are refused,
  /// nothing is shown.
  std::function<bool(const Dictionary& header)> shouldShowMessage;

  /// Whether the URL of a pressed button may be opened; refused ones are reported with status 3. Not asked for web
  /// hooks and identifiers, which nobody opens.
  std::function<bool(const std::string& url)> shouldOpenUrl;

  std::function<void()> willPresent;  ///< The popup is about to slide in: what it shows is there.
  std::function<void()> didPresent;   ///< It is in its place. Not for one that is dismissed on its way.
  std::function<void()> willDismiss;  ///< It slides out, or goes at once; whoever dismisses it.
  std::function<void()> didDismiss;   ///< It has left the screen. The host's focus is its own again.
};

}  // namespace kesu
