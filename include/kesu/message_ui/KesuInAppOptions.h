#pragma once

#include <kesu/foundation/Value.h>
#include <kesu/graphics/Geometry.h>

#include <functional>
#include <string>

namespace kesu {

/// Changes to the message popup by the host. Everything is optional. A plain value. Functions are called on the main
/// thread, and may show and dismiss messages themselves; they are kept until other options are set, and what they refer
/// to must outlive that.
struct KesuInAppOptions {
  /// Points that stay free at the edges of the screen, for television sets that cut off the picture's edge. Clamped to
  /// 0 to 400 each.
  EdgeInsets screenInsets;

  /// Factor of the size in which titles and texts of messages are typeset. Clamped to 0.5 to 3; NaN counts as 1.
  double textScale = 1.0;

  /// Returns whether a message may be shown. Called with its header ("mid", "cid" and what else the service sent)
  /// before the message is fetched: a refused one counts as if the service had not sent it, and stays unread. When all
  /// are refused, nothing is shown. Concerns the popup only: counts, badges, headers and messages that the host asks
  /// for include refused ones.
  std::function<bool(const Dictionary& header)> shouldShowMessage;

  /// Returns whether the URL of a pressed button may be opened; refused ones are reported with status 3. Not called for
  /// identifiers, nor for web hooks, which nothing refuses: those are sent to the host that the message names, with
  /// facts about device and application and the user's identifier. The record of the press is posted in any case.
  std::function<bool(const std::string& url)> shouldOpenUrl;

  std::function<void()> willPresent;  ///< Called before the popup slides in, once its message was fetched.
  std::function<void()> didPresent;   ///< Called when it is in its place; not if it was dismissed on its way.
  std::function<void()> willDismiss;  ///< Called before it slides out or disappears, by the user or the host.
  std::function<void()> didDismiss;   ///< Called when it has left the screen, and the host has the focus again.
};

}  // namespace kesu
