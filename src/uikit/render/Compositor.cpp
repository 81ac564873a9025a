#include "uikit/render/Compositor.h"

#include <algorithm>
#include <utility>

#include "drawing/FrameLayers.h"

namespace kesu {
namespace {

bool looksTheSame(const FrameLayer& a, const FrameLayer& b) {
  return a.id == b.id && rectOf(a) == rectOf(b) && a.alpha == b.alpha && a.color == b.color &&
         a.pixelWidth == b.pixelWidth && a.pixelHeight == b.pixelHeight;
}

PixelRect changedPart(const FrameLayer& layer) {
  if (layer.damage.isEmpty()) {
    return {};
  }
  const double scaleX = layer.width / layer.pixelWidth;
  const double scaleY = layer.height / layer.pixelHeight;
  const PixelRect& damage = layer.damage;
  const double around = isAtItsPixels(layer) ? 0.0 : -1.0;
  return touchedPixels(Rect{layer.x + (damage.x + around) * scaleX, layer.y + (damage.y + around) * scaleY,
                            (damage.width - 2.0 * around) * scaleX, (damage.height - 2.0 * around) * scaleY}
                           .inset(around, around));
}

}  // namespace

PixelRect Compositor::damageOf(const std::vector<Placed>& next) const {
  PixelRect damage;
  for (std::size_t i = 0; i < std::max(next.size(), shown_.size()); ++i) {
    const bool isSame = i < next.size() && i < shown_.size() && looksTheSame(next[i].layer, shown_[i].layer);
    if (!isSame) {
      damage = united(damage, i < next.size() ? next[i].area : PixelRect{});
      damage = united(damage, i < shown_.size() ? shown_[i].area : PixelRect{});
    }
    damage = united(damage, i < next.size() ? changedPart(next[i].layer) : PixelRect{});
  }
  return damage;
}

const FlatFrame& Compositor::compose(const std::vector<FrameLayer>& layers, int width, int height) {
  std::vector<Placed> next;
  next.reserve(layers.size());
  for (const FrameLayer& layer : layers) {
    next.push_back({layer, areaOf(layer)});
  }
  const PixelRect screen{0, 0, width, height};
  PixelRect damage = damageOf(next);
  if (store_.pixels() == nullptr || frame_.width != width || frame_.height != height) {
    store_ = {};
    store_ = PixelStore(width, height);
    damage = screen;
  } else if (layers.empty() && !shown_.empty()) {
    store_ = {};  // Pages that are not written take no memory.
    store_ = PixelStore(width, height);
  }
  damage = store_.pixels() != nullptr ? intersected(damage, screen) : PixelRect{};
  if (!damage.isEmpty() && !layers.empty()) {
    composeLayers(layers, store_.pixels(), width, damage);
  }
  shown_ = std::move(next);
  frame_ = {store_.pixels(), width, height, width, damage};
  return frame_;
}

}  // namespace kesu
