#pragma once

#include <kesu/ui/View.h>

namespace kesu {

/// Holds the place of a picture that is not there, or not yet: a faint face with the outline of a picture in its
/// middle. `ink` is what it is drawn with: dark on light cards, light on dark ones. Main thread.
class PicturePlaceholder : public View {
 public:
  PicturePlaceholder(const Rect& frame, const Color& ink) : View(frame), ink_(ink) {}

  void draw(Canvas& canvas) const override;

 private:
  void drawOutline(Canvas& canvas, const Rect& outline) const;

  Color ink_;
};

}  // namespace kesu
