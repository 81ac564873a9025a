#pragma once

#include <kesu/ui/Overlay.h>

#include <vector>

#include "uikit/render/PixelStore.h"

namespace kesu {

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
