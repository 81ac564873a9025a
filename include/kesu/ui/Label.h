#pragma once

#include <kesu/Export.h>
#include <kesu/graphics/Font.h>
#include <kesu/ui/View.h>

#include <string>

namespace kesu {

/// A text in one font and colour, vertically centred. A screen reader reads it. Main thread.
class KESU_API Label : public View {
 public:
  using View::View;

  const std::string& text() const { return text_; }
  void setText(std::string text);
  const Font& font() const { return font_; }
  void setFont(Font font);
  const Color& textColor() const { return textColor_; }
  void setTextColor(const Color& color);
  TextAlignment alignment() const { return alignment_; }
  void setAlignment(TextAlignment alignment);
  /// 0: as many as fit, wrapped at words. Text that does not fit ends in an ellipsis.
  int numberOfLines() const { return numberOfLines_; }
  void setNumberOfLines(int lines);
  /// How far a single line may shrink before it is cut, as a fraction of the font's size. 1: not at all.
  double minimumScaleFactor() const { return minimumScaleFactor_; }
  void setMinimumScaleFactor(double factor);

 protected:
  AccessibilityInfo defaultAccessibility() const override;

 private:
  void draw(Canvas& canvas) const override;

  std::string text_;
  Font font_;
  Color textColor_ = Color::black();
  TextAlignment alignment_ = TextAlignment::Natural;
  int numberOfLines_ = 1;
  double minimumScaleFactor_ = 1.0;
};

}  // namespace kesu
