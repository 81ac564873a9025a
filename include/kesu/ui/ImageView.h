#pragma once

#include <kesu/Export.h>
#include <kesu/graphics/Image.h>
#include <kesu/ui/View.h>

namespace kesu {

/// A picture, stretched over the view or fitted into it, clipped to the view's corners. A screen reader skips it unless
/// setAccessibility() describes it. Main thread.
class KESU_API ImageView : public View {
 public:
  enum class ContentMode {
    Fill,       ///< Stretched to the view's size.
    AspectFit,  ///< Whole, centred.
    AspectFill  ///< Covers the view; the rest is clipped.
  };
  using View::View;

  const ImagePtr& image() const { return image_; }
  void setImage(ImagePtr image);
  ContentMode contentMode() const { return contentMode_; }
  void setContentMode(ContentMode mode);

 private:
  void draw(Canvas& canvas) const override;

  ImagePtr image_;
  ContentMode contentMode_ = ContentMode::AspectFill;
};

}  // namespace kesu
