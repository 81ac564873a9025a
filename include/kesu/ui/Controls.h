#pragma once

#include <kesu/Export.h>
#include <kesu/graphics/Font.h>
#include <kesu/graphics/Image.h>
#include <kesu/ui/View.h>

#include <cstddef>
#include <functional>
#include <memory>
#include <string>

namespace kesu {

/// A text in one font and colour. Main thread.
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

 private:
  std::string text_;
  Font font_;
  Color textColor_ = Color::black();
  TextAlignment alignment_ = TextAlignment::Natural;
  int numberOfLines_ = 1;
  double minimumScaleFactor_ = 1.0;
};

/// A picture, stretched over the view or fitted into it. Main thread.
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

/// Something to press. It can be focused while it is enabled. Main thread.
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
  /// Drawn behind the title, stretched; null for none.
  void setBackgroundImage(ImagePtr image);
  void setAction(Action action) { action_ = std::move(action); }

  bool canBecomeFocused() const override { return true; }
  /// Runs the action.
  void activate() override;
  void draw(Canvas& canvas) const override;

 private:
  std::string title_;
  Font font_;
  Color titleColor_ = Color::white();
  ImagePtr backgroundImage_;
  Action action_;
};

/// What a table shows.
class KESU_API TableViewDataSource {
 public:
  virtual ~TableViewDataSource() = default;
  virtual std::size_t numberOfRows() = 0;
  virtual double heightOfRow(std::size_t row) = 0;  ///< In points.
  /// The view of a row, which the table places; `width` is the table's.
  virtual ViewPtr cellForRow(std::size_t row, double width) = 0;
};

/// Rows one below the other, scrolled with the remote while the table is focused. Main thread.
class KESU_API TableView : public View {
 public:
  explicit TableView(const Rect& frame);

  /// Not owned; null for an empty table.
  void setDataSource(TableViewDataSource* source);
  /// Asks the source for all rows anew. The place scrolled to stays as far as there are rows.
  void reloadData();
  double contentHeight() const { return contentHeight_; }
  double scrollOffset() const { return offset_; }
  /// Scrolls to `offset` points from the top, at most to the end.
  void setScrollOffset(double offset, bool animated);
  void scrollToRow(std::size_t row, bool animated);

  /// Only when there is more than fits.
  bool canBecomeFocused() const override;
  bool handleArrow(RemoteButton arrow) override;
  void draw(Canvas& canvas) const override;

 protected:
  void sizeDidChange() override;

 private:
  TableViewDataSource* source_ = nullptr;
  ViewPtr content_;
  double contentHeight_ = 0.0;
  double offset_ = 0.0;
};

}  // namespace kesu
