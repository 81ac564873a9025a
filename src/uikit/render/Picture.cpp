#include "uikit/render/Picture.h"

#include <algorithm>

#include "drawing/Canvas.h"
#include "drawing/PixelRects.h"
#include "uikit/ViewDrawing.h"
#include "uikit/render/ViewPainter.h"

namespace kesu {
namespace {

Rect scaledBy(const Rect& rect, double factor) {
  return {rect.x * factor, rect.y * factor, rect.width * factor, rect.height * factor};
}

}  // namespace

void Picture::update(View& view, const Rect& extent, double scale) {
  const PixelRect place = touchedPixels(scaledBy(extent, scale));
  const Rect changed = ViewDrawing::extractDamage(view);
  PixelRect area = changed.isEmpty() ? PixelRect{} : touchedPixels(scaledBy(changed, scale).inset(-1.0, -1.0));
  if (place != place_ || scale != scale_) {
    store_ = {};
    store_ = PixelStore(place.width, place.height);
    place_ = place;
    scale_ = scale;
    area = place;
  }
  area = intersected(area, place_);
  if (!area.isEmpty() && store_.pixels() != nullptr) {
    paint(view, area);
  }
}

void Picture::paint(const View& view, const PixelRect& area) {
  const PixelRect inPicture = movedBy(area, -place_.x, -place_.y);
  std::uint32_t* first = store_.pixels() + std::ptrdiff_t{inPicture.y} * place_.width + inPicture.x;
  for (int row = 0; row < area.height; ++row) {
    std::fill_n(first + std::ptrdiff_t{row} * place_.width, area.width, 0U);
  }
  if (const auto canvas = makeCanvas({first, area.width, area.height, place_.width, scale_, area.x, area.y})) {
    paintView(*canvas, view, PaintScope::OwnPicture);
  }
  layerDamage_ = united(layerDamage_, inPicture);
  flatDamage_ = united(flatDamage_, inPicture);
}

}  // namespace kesu
