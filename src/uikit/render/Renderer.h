#pragma once

#include <kesu/graphics/Image.h>
#include <kesu/ui/Containers.h>
#include <kesu/ui/Overlay.h>

#include <cstdint>
#include <memory>
#include <vector>

namespace kesu {

/// Draws the views of a window: every composited view into a picture of its own, again only where it changed. Main
/// thread.
class Renderer {
 public:
  Renderer();
  ~Renderer();

  /// The layers of the window at this size of the screen.
  const std::vector<FrameLayer>& layers(Window& window, int pixelWidth, int pixelHeight);

  /// The same, composed into one picture.
  const FlatFrame& flatten(Window& window, int pixelWidth, int pixelHeight);

  /// Gives back all memory; the next frame draws everything again.
  void releaseMemory();

 private:
  struct State;
  std::unique_ptr<State> state_;
};

/// A picture of a view with all that is in it, one pixel a point, transparent where nothing is drawn. Null for a view
/// without size or larger than any screen. Main thread.
ImagePtr viewToImage(const View& view);

}  // namespace kesu
