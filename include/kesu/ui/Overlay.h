#pragma once

#include <kesu/Export.h>
#include <kesu/graphics/Color.h>
#include <kesu/graphics/Geometry.h>
#include <kesu/graphics/Image.h>
#include <kesu/ui/Remote.h>
#include <kesu/ui/View.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace kesu {

/// A rectangle of pixels.
struct PixelRect {
  int x = 0;
  int y = 0;
  int width = 0;
  int height = 0;

  bool isEmpty() const { return width <= 0 || height <= 0; }
  friend bool operator==(const PixelRect&, const PixelRect&) = default;
};

/// One rectangle to be composed, from the back to the front. Either of one colour or with pixels.
struct FrameLayer {
  /// The same from frame to frame, so that a host keeps a texture for each: as long as the layer is in every frame and
  /// its pixels keep their size. What comes back after a frame without it is new, and all of it damage.
  std::uint64_t id = 0;
  double x = 0.0;  ///< Where it lies on the screen, in pixels; may stick out.
  double y = 0.0;
  double width = 0.0;
  double height = 0.0;
  double alpha = 1.0;                     ///< To be multiplied with everything in it.
  Color color;                            ///< For a layer without pixels.
  const std::uint32_t* pixels = nullptr;  ///< 0xAARRGGBB, premultiplied; null: one colour. See Overlay::layers().
  int pixelWidth = 0;
  int pixelHeight = 0;
  int stride = 0;    ///< Pixels from one row to the next.
  PixelRect damage;  ///< What changed in the pixels since the last frame of layers; within the pixels.
};

/// A whole screen of pixels: what is not covered by the library's views is transparent.
struct FlatFrame {
  const std::uint32_t* pixels = nullptr;  ///< 0xAARRGGBB, premultiplied; null: there is no memory for so many.
  int width = 0;
  int height = 0;
  int stride = 0;    ///< Pixels from one row to the next.
  PixelRect damage;  ///< What changed since the last flattened frame; empty when nothing did.
};

/// What a screen reader is told, in the order in which it reads.
struct AccessibilityNode {
  AccessibilityInfo::Role role = AccessibilityInfo::Role::None;
  std::string label;
  std::string value;
  Rect frame;  ///< In points of the screen, as if nothing were scaled or moved by a transform.
  bool isFocused = false;
};

/// What a host's screen shows of the library: the popup. A host feeds it presses and draws its frames over its own
/// picture; adaptors for toolkits are in kesu/host/. Main thread.
///
/// One at a time: a second one would take the first one's requests for frames. It makes a window and makes it key,
/// unless the host has done so; that window goes with it, and a popup in it. It may be destroyed at any time, in the
/// library's callbacks too: what it was doing then ends without it. Needs no Kesu::initialize.
class KESU_API Overlay {
 public:
  Overlay();
  ~Overlay();
  Overlay(const Overlay&) = delete;
  Overlay& operator=(const Overlay&) = delete;

  /// The size of the host's screen in pixels, from 1 to 8192 each; at first 1920 x 1080. A point is pixelHeight / 1080
  /// pixels. Other shapes than 16:9 get the popup in the middle of a screen of that height.
  void setPixelSize(int width, int height);

  /// Whether a popup is up, which takes every press; also while it slides out.
  bool isModal() const;

  // Input. What it leads to, the host's own functions included, runs before these return.

  /// Hands a press on. True when it was taken: the host then ignores it. Hand on Ended or Cancelled after each Began
  /// that was taken, whether the popup is still up or not.
  bool press(RemoteButton button, PressPhase phase);
  /// A swipe on a touch surface. True when it was taken, as everything is while a popup is up.
  bool swipe(SwipeDirection direction);
  /// A tap with a pointer, in pixels of the screen. True when it was taken; places that are no numbers never are.
  bool tap(double x, double y);
  /// The input goes elsewhere: presses under way are cancelled.
  void cancelPresses();

  /// Whether the next frame will differ from the last one.
  bool needsFrame() const;
  /// Called when needsFrame() becomes true, for hosts that draw on demand: once until the next frame. It comes in the
  /// midst of a change, so all that it may do is to have a frame drawn later. An empty function removes it.
  void setNeedsFrameCallback(std::function<void()> callback);

  /// The next frame as layers; none while nothing is shown. `nowSeconds` is any clock that goes forward; animations
  /// follow it, and what is called at their end is called in here. The layers and their pixels are valid until the next
  /// call of layers(), flatten() or snapshot(), and no longer than the overlay.
  const std::vector<FrameLayer>& layers(double nowSeconds);
  /// The next frame as one picture, valid as long as layers() are. Both may be used in turn: each tells what changed
  /// since its own last frame.
  const FlatFrame& flatten(double nowSeconds);
  /// The last state as a picture of the host's size, for tests and screenshots; no time passes. It is no frame: what it
  /// shows is still new to the next one.
  ImagePtr snapshot();

  /// What a screen reader is told now: of the popup alone while one is up, its title first, else of the whole window.
  std::vector<AccessibilityNode> accessibilityTree() const;

 private:
  struct State;
  std::shared_ptr<State> state_;
};

}  // namespace kesu
