#include <kesu/ui/ImageView.h>

#include <algorithm>
#include <utility>

#include "drawing/Canvas.h"
#include "uikit/ViewDrawing.h"

namespace kesu {
namespace {

Rect around(Point center, double width, double height) {
  return {center.x - width / 2.0, center.y - height / 2.0, width, height};
}

}  // namespace

void ImageView::setImage(ImagePtr image) {
  ViewDrawing::set(*this, image_, std::move(image));
}

void ImageView::setContentMode(ContentMode mode) {
  ViewDrawing::set(*this, contentMode_, mode);
}

void ImageView::draw(Canvas& canvas) const {
  const Rect box = ViewDrawing::presentedBounds(*this);
  if (image_ == nullptr || box.isEmpty()) {
    return;
  }
  const Rect whole{0.0, 0.0, static_cast<double>(image_->width()), static_cast<double>(image_->height())};
  const double scaleX = box.width / whole.width;
  const double scaleY = box.height / whole.height;
  canvas.save();
  if (cornerRadius() > 0.0) {
    canvas.clip(box, cornerRadius());
  }
  switch (contentMode_) {
    case ContentMode::Fill:
      canvas.drawImage(image_, whole, box);
      break;
    case ContentMode::AspectFit: {
      const double scale = std::min(scaleX, scaleY);
      canvas.drawImage(image_, whole, around(box.center(), whole.width * scale, whole.height * scale));
      break;
    }
    case ContentMode::AspectFill: {
      const double scale = std::max(scaleX, scaleY);
      canvas.drawImage(image_, around(whole.center(), box.width / scale, box.height / scale), box);
      break;
    }
  }
  canvas.restore();
}

}  // namespace kesu
