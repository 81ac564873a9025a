#pragma once

#include <kesu/ui/View.h>

namespace kesu {

/// Fades from one colour at its upper edge to another at its lower one. Main thread.
class GradientView : public View {
 public:
  GradientView(const Rect& frame, const Color& top, const Color& bottom) : View(frame), top_(top), bottom_(bottom) {}

  void draw(Canvas& canvas) const override;

 private:
  Color top_;
  Color bottom_;
};

}  // namespace kesu
