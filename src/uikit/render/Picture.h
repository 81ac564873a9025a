#pragma once

#include <kesu/graphics/Frame.h>
#include <kesu/ui/View.h>

#include <cstdint>
#include <utility>

#include "uikit/render/PixelStore.h"

namespace kesu {

/// The picture of one composited view. Main thread.
class Picture {
 public:
  /// Redraws what changed in the view. `extent` is the part that is shown, in the view's coordinates, `scale` the
  /// pixels per point.
  void update(View& view, const Rect& extent, double scale);

  /// The rectangle of the pixels, relative to the origin of the view.
  const PixelRect& place() const { return place_; }
  const std::uint32_t* pixels() const { return store_.pixels(); }

  /// Returns and clears what changed since the last call, in pixels of the picture; kept separately for frames of
  /// layers and flattened ones.
  PixelRect extractLayerDamage() { return std::exchange(layerDamage_, PixelRect{}); }
  PixelRect extractFlatDamage() { return std::exchange(flatDamage_, PixelRect{}); }

 private:
  void paint(const View& view, const PixelRect& area);

  PixelStore store_;
  PixelRect place_;
  double scale_ = 0.0;
  PixelRect layerDamage_;
  PixelRect flatDamage_;
};

}  // namespace kesu
