#pragma once

#include <kesu/Export.h>
#include <kesu/graphics/Frame.h>
#include <kesu/graphics/Image.h>
#include <kesu/ui/Accessibility.h>
#include <kesu/ui/Remote.h>

#include <functional>
#include <memory>
#include <vector>

namespace kesu {

/// Shows the library's popup on a host's screen. The host forwards presses and draws the frames over its own picture;
/// adaptors for toolkits are in kesu/host/. Main thread.
///
/// One at a time: a second one replaces the first one's requests for frames. Makes a key window unless the host has
/// one; that window is destroyed with the overlay, and a popup in it closed. May be destroyed at any time, also in the
/// library's callbacks. Needs no Kesu::initialize.
class KESU_API Overlay {
 public:
  Overlay();
  ~Overlay();
  Overlay(const Overlay&) = delete;
  Overlay& operator=(const Overlay&) = delete;

  /// Sets the size of the host's screen in pixels, clamped to 1 to 8192; 1920 x 1080 by default. A point is pixelHeight
  /// / 1080 pixels. On shapes other than 16:9 the popup is centred.
  void setPixelSize(int width, int height);

  /// Returns whether a popup consumes all presses, which it also does while it slides out.
  bool isModal() const;

  // Input. What it leads to, the host's own functions included, runs before these return.

  /// Forwards a press; returns true if it was consumed: the host then ignores it. After each consumed Began, forward
  /// Ended or Cancelled even if the popup has closed since.
  bool press(RemoteButton button, PressPhase phase);
  /// Forwards a swipe on a touch surface; returns true if it was consumed, as every one is while a popup is up.
  bool swipe(SwipeDirection direction);
  /// Forwards a tap with a pointer, in pixels of the screen; returns true if it was consumed. NaN and infinite
  /// positions never are.
  bool tap(double x, double y);
  /// Cancels all presses under way, because the application lost the input.
  void cancelPresses();

  /// Returns whether the next frame will differ from the last one.
  bool needsFrame() const;
  /// Sets a callback for hosts that draw on demand: called when needsFrame() becomes true, once per frame. It is called
  /// synchronously during a change and may only schedule a frame. An empty function removes it.
  void setNeedsFrameCallback(std::function<void()> callback);

  /// Returns the next frame as layers from the back to the front; empty while nothing is shown. Advances animations to
  /// `nowSeconds`, any monotonic clock, and runs the callbacks of those that end. The layers and their pixels are valid
  /// until the next call of layers(), flatten() or snapshot() and owned by the overlay. What draws is loaded on a
  /// thread with the first frame that shows anything: frames are empty until then, while needsFrame() stays true.
  const std::vector<FrameLayer>& layers(double nowSeconds);
  /// Returns the next frame as one picture, valid as long as layers() are. Both may be used in turn: each has the
  /// damage since its own last frame.
  const FlatFrame& flatten(double nowSeconds);
  /// Returns a picture of the host's size for tests and screenshots. Advances no animation and clears no damage.
  ImagePtr snapshot();

  /// Returns what a screen reader reads, in reading order: of the popup alone while one is up, its title first, else of
  /// the whole window.
  std::vector<AccessibilityNode> accessibilityTree() const;

 private:
  struct State;
  std::shared_ptr<State> state_;
};

}  // namespace kesu
