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
  std::uint64_t id = 0;  ///< The same from frame to frame, so that a host keeps a texture for each.
  double x = 0.0;        ///< Where it lies on the screen, in pixels; may stick out.
  double y = 0.0;
  double width = 0.0;
  double height = 0.0;
  double alpha = 1.0;                     ///< To be multiplied with everything in it.
  Color color;                            ///< For a layer without pixels.
  const std::uint32_t* pixels = nullptr;  ///< 0xAARRGGBB, premultiplied; null: one colour. Valid until the next frame.
  int pixelWidth = 0;
  int pixelHeight = 0;
  int stride = 0;    ///< Pixels from one row to the next.
  PixelRect damage;  ///< What changed in the pixels since the last frame.
};

/// A whole screen of pixels: what is not covered by the library's views is transparent.
struct FlatFrame {
  const std::uint32_t* pixels = nullptr;  ///< 0xAARRGGBB, premultiplied. Valid until the next frame.
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
  Rect frame;  ///< In points of the screen.
  bool isFocused = false;
};

/// What a host's screen shows of the library: the popup. A host feeds it presses and draws its frames over its own
/// picture; adaptors for toolkits are in kesu/host/. Main thread.
///
/// One at a time. It makes a window and makes it key, unless the host has done so. It may be destroyed at any time, in
/// the library's callbacks too: what it was doing then ends without it.
class KESU_API Overlay {
 public:
  Overlay();
  ~Overlay();
  Overlay(const Overlay&) = delete;
  Overlay& operator=(const Overlay&) = delete;

  /// The size of the host's screen in pixels; at first 1920 x 1080. A point is pixelHeight / 1080 pixels. Other shapes
  /// than 16:9 get the popup in the middle of a screen of that height.
  void setPixelSize(int width, int height);

  /// Whether a popup is up, which takes every press.
  bool isModal() const;

  /// Hands a press on. True when it was taken: the host then ignores it.
  bool press(RemoteButton button, PressPhase phase);
  /// A swipe on a touch surface. True when it was taken.
  bool swipe(SwipeDirection direction);
  /// A tap with a pointer, in pixels of the screen. True when it was taken.
  bool tap(double x, double y);
  /// The input goes elsewhere: presses under way are cancelled.
  void cancelPresses();

  /// Whether the next frame will differ from the last one.
  bool needsFrame() const;
  /// Called when needsFrame() becomes true, for hosts that draw on demand. An empty function removes it.
  void setNeedsFrameCallback(std::function<void()> callback);

  /// The next frame as layers. `nowSeconds` is any clock that goes forward; animations follow it.
  const std::vector<FrameLayer>& layers(double nowSeconds);
  /// The next frame as one picture.
  const FlatFrame& flatten(double nowSeconds);
  /// The last state as a picture of the host's size, for tests and screenshots.
  ImagePtr snapshot();

  std::vector<AccessibilityNode> accessibilityTree() const;

 private:
  struct State;
  std::shared_ptr<State> state_;
};

}  // namespace kesu
