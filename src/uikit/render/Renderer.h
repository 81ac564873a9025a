#pragma once

#include <kesu/graphics/Image.h>
#include <kesu/ui/Overlay.h>
#include <kesu/ui/Window.h>

#include <cstdint>
#include <memory>
#include <vector>

namespace kesu {

/// The screen in points, whatever its pixels. A picture of another shape shows it centred, at its full height.
inline constexpr double kScreenWidth = 1920.0;
inline constexpr double kScreenHeight = 1080.0;

/// Draws the views of a window: every composited view into a picture of its own, and only where it changed. A
/// composited view inside another one lies over everything of the outer one. Main thread.
class Renderer {
 public:
  Renderer();
  ~Renderer();

  /// Returns the layers of the window at this size of the screen. Releases all memory when there are no more.
  const std::vector<FrameLayer>& layers(Window& window, int pixelWidth, int pixelHeight);

  /// Returns whether the last frame shows nothing because what draws it is still being loaded.
  bool lacksModule() const;

  /// Returns them composed into one picture. Both may be used in turn; each has the damage since its own last frame.
  const FlatFrame& flatten(Window& window, int pixelWidth, int pixelHeight);

  /// Returns them as a picture to keep, without clearing damage. Null when the screen has no size.
  ImagePtr snapshot(Window& window, int pixelWidth, int pixelHeight);

 private:
  struct State;
  std::unique_ptr<State> state_;
};

/// Returns a picture of a view with all that is in it, one pixel per point, transparent where nothing is drawn. Null
/// for a view without size or larger than any screen, and until the drawing module is loaded. Main thread.
ImagePtr viewToImage(const View& view);

}  // namespace kesu
