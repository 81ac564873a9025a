#pragma once

#include <kesu/graphics/Image.h>
#include <kesu/ui/Overlay.h>
#include <kesu/ui/Window.h>

#include <cstdint>
#include <memory>
#include <vector>

namespace kesu {

/// Draws the views of a window: every composited view into a picture of its own, again only where it changed. A
/// composited view inside another one lies over all that the outer one shows. Main thread.
class Renderer {
 public:
  Renderer();
  ~Renderer();

  /// The layers of the window at this size of the screen. Once there are none any more, all memory is given back.
  const std::vector<FrameLayer>& layers(Window& window, int pixelWidth, int pixelHeight);

  /// The same, composed into one picture. Both may be used in turn; each tells what changed since its own last frame.
  const FlatFrame& flatten(Window& window, int pixelWidth, int pixelHeight);

  /// The same as a picture to keep, without being a frame. Null when the screen has no size.
  ImagePtr snapshot(Window& window, int pixelWidth, int pixelHeight);

  /// Gives back all memory, the fonts too; the next frame draws everything again.
  void releaseMemory();

 private:
  struct State;
  std::unique_ptr<State> state_;
};

/// A picture of a view with all that is in it, one pixel a point, transparent where nothing is drawn. Null for a view
/// without size or larger than any screen. Main thread.
ImagePtr viewToImage(const View& view);

}  // namespace kesu
