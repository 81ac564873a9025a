#pragma once

#include <kesu/Export.h>
#include <kesu/graphics/Font.h>
#include <kesu/graphics/Image.h>
#include <kesu/ui/View.h>

#include <functional>
#include <string>
#include <utility>

namespace kesu {

/// A button with a centred title of one line. Main thread.
class KESU_API Button : public View {
 public:
  using Action = std::function<void(Button&)>;
  using View::View;

  const std::string& title() const { return title_; }
  void setTitle(std::string title);
  const Font& font() const { return font_; }
  void setFont(Font font);
  const Color& titleColor() const { return titleColor_; }
  void setTitleColor(const Color& color);
  const ImagePtr& backgroundImage() const { return backgroundImage_; }
  /// Draws a picture behind the title, stretched and clipped to the view's corners; null for none.
  void setBackgroundImage(ImagePtr image);
  /// Sets what activate() runs; may be empty. The action may remove the button.
  void setAction(Action action) { action_ = std::move(action); }

  bool canBecomeFocused() const override { return true; }
  /// Runs the action.
  void activate() override;

 protected:
  AccessibilityInfo defaultAccessibility() const override;

 private:
  void draw(Canvas& canvas) const override;

  std::string title_;
  Font font_;
  Color titleColor_ = Color::white();
  ImagePtr backgroundImage_;
  Action action_;
};

}  // namespace kesu
