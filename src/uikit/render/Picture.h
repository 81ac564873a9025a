#pragma once

#include <kesu/ui/View.h>

#include <cstdint>
#include <utility>

#include "uikit/render/PixelStore.h"
#include "uikit/render/Placement.h"

namespace kesu {

/// The picture of one composited view. Main thread.
class Picture {
 public:
  /// Draws again what changed in the view. `extent` is the part that is shown, in the view's coordinates, `scale` the
  /// pixels of a point.
  void update(View& view, const Rect& extent, double scale);

  /// The pixels in relation to the origin of the view.
  const PixelRect& place() const { return place_; }
  const std::uint32_t* pixels() const { return store_.pixels(); }

  /// What changed since the last call, in pixels of the picture; frames of layers and flattened ones each ask for their
  /// own.
  PixelRect takeLayerDamage() { return std::exchange(layerDamage_, PixelRect{}); }
  PixelRect takeFlatDamage() { return std::exchange(flatDamage_, PixelRect{}); }

 private:
  void paint(const View& view, const PixelRect& area);

  PixelStore store_;
  PixelRect place_;
  double scale_ = 0.0;
  PixelRect layerDamage_;
  PixelRect flatDamage_;
};

}  // namespace kesu
