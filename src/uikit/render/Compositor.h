#pragma once

#include <kesu/ui/Overlay.h>

#include <cstdint>
#include <vector>

#include "uikit/render/PixelStore.h"

namespace kesu {

/// Composes the layers over transparent pixels, within `area` of a picture of that width in pixels.
void composeLayers(const std::vector<FrameLayer>& layers, std::uint32_t* pixels, int width, const PixelRect& area);

/// Keeps the composed picture of a window and composes again what changed. Main thread.
class Compositor {
 public:
  /// The damage of each layer is what changed in its pixels since the last call.
  const FlatFrame& compose(const std::vector<FrameLayer>& layers, int width, int height);

 private:
  struct Placed {
    FrameLayer layer;
    PixelRect area;
  };
  PixelRect damageOf(const std::vector<Placed>& next) const;

  PixelStore store_;
  FlatFrame frame_;
  std::vector<Placed> shown_;
};

}  // namespace kesu
