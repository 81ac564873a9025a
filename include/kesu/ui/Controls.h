#pragma once

#include <kesu/Export.h>
#include <kesu/graphics/Font.h>
#include <kesu/graphics/Image.h>
#include <kesu/ui/View.h>

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace kesu {

/// A text in one font and colour, in the middle of the view's height. A screen reader reads it. Main thread.
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
  /// 0: as many as fit, wrapped at words; text that does not fit ends in an ellipsis.
  int numberOfLines() const { return numberOfLines_; }
  void setNumberOfLines(int lines);
  /// How small a single line may be drawn, as a fraction of the font's size, before it is cut. 1: not smaller.
  double minimumScaleFactor() const { return minimumScaleFactor_; }
  void setMinimumScaleFactor(double factor);

  void draw(Canvas& canvas) const override;

 protected:
  AccessibilityInfo defaultAccessibility() const override;

 private:
  std::string text_;
  Font font_;
  Color textColor_ = Color::black();
  TextAlignment alignment_ = TextAlignment::Natural;
  int numberOfLines_ = 1;
  double minimumScaleFactor_ = 1.0;
};

/// A picture, stretched over the view or fitted into it, within the view's corners. A screen reader passes it over as
/// long as it is not told what there is to see. Main thread.
class KESU_API ImageView : public View {
 public:
  enum class ContentMode {
    Fill,       ///< Stretched to the view's size.
    AspectFit,  ///< Whole, in the middle.
    AspectFill  ///< Covering the view; what sticks out is cut.
  };
  using View::View;

  const ImagePtr& image() const { return image_; }
  void setImage(ImagePtr image);
  ContentMode contentMode() const { return contentMode_; }
  void setContentMode(ContentMode mode);

  void draw(Canvas& canvas) const override;

 private:
  ImagePtr image_;
  ContentMode contentMode_ = ContentMode::AspectFill;
};

/// Something to press, with a title of one line in its middle. Main thread.
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
  /// Drawn behind the title, stretched, within the view's corners; null for none.
  void setBackgroundImage(ImagePtr image);
  /// What activate() runs; an empty action is none. It may take the button away.
  void setAction(Action action) { action_ = std::move(action); }

  bool canBecomeFocused() const override { return true; }
  /// Runs the action.
  void activate() override;
  void draw(Canvas& canvas) const override;

 protected:
  AccessibilityInfo defaultAccessibility() const override;

 private:
  std::string title_;
  Font font_;
  Color titleColor_ = Color::white();
  ImagePtr backgroundImage_;
  Action action_;
};

/// What a table shows. It outlives the table, or is taken away from it (setDataSource, forgetDataSource), be it by what
/// the table asks. Main thread.
class KESU_API TableViewDataSource {
 public:
  virtual ~TableViewDataSource() = default;
  /// Only so many as a remote can scroll through: rows beyond the first 10,000 are left out.
  virtual std::size_t numberOfRows() = 0;
  virtual double heightOfRow(std::size_t row) = 0;  ///< In points.
  /// The view of a row, which the table places; `width` is the table's. Null leaves the row empty.
  virtual ViewPtr cellForRow(std::size_t row, double width) = 0;
};

/// Rows one below the other, scrolled with the remote while the table is focused. What is cut at an edge fades there,
/// and a slim bar tells the place, when there is more than fits; a background that is not opaque leaves the fading out.
/// Main thread.
class KESU_API TableView : public View {
 public:
  explicit TableView(const Rect& frame);

  /// Not owned; null for an empty table.
  void setDataSource(TableViewDataSource* source);
  /// The source goes away, and the rows stay as they are: for a table that is still on its way off the screen.
  void forgetDataSource() { source_ = nullptr; }
  /// Asks the source for all rows anew. The place scrolled to stays as far as there are rows.
  void reloadData();
  double contentHeight() const { return contentHeight_; }
  double scrollOffset() const { return offset_; }
  /// Scrolls to `offset` points from the top, at most to the end.
  void setScrollOffset(double offset, bool animated);
  /// Scrolls so that the row begins at the top, as far as there is enough below it.
  void scrollToRow(std::size_t row, bool animated);

  /// Only when there is more than fits.
  bool canBecomeFocused() const override;
  /// Up and Down scroll by about two lines of text, to the end at most; false when nothing is left that way.
  bool handleArrow(RemoteButton arrow) override;
  void didUpdateFocus() override;

 protected:
  void sizeDidChange() override;

 private:
  double largestOffset() const;
  void addRow(const ViewPtr& cell, double height);
  void scroll(double offset);
  void placeIndicator();

  TableViewDataSource* source_ = nullptr;
  std::vector<double> rowTops_;
  ViewPtr content_;
  ViewPtr topFade_;
  ViewPtr bottomFade_;
  ViewPtr indicator_;
  double contentHeight_ = 0.0;
  double offset_ = 0.0;
};

}  // namespace kesu
