#pragma once

#include <kesu/graphics/Color.h>
#include <kesu/graphics/Font.h>
#include <kesu/graphics/Geometry.h>

#include <memory>
#include <string_view>

namespace kesu {

/// How a text is set.
struct TextStyle {
  Font font;
  TextAlignment alignment = TextAlignment::Natural;
  int lines = 0;                    ///< Most lines; 0 is as many as there is height for.
  double minimumScaleFactor = 1.0;  ///< How small a single line may become before it is cut.
  bool isSetSolid = false;          ///< Cut at the end without an ellipsis.
};

/// Loads the fonts: tens of milliseconds, more than half a second while the system's caches are cold. Any thread, best
/// a worker; whoever comes while it is under way waits. Everything below does it when nobody has.
void prepareFonts();

/// Whether prepareFonts() has been here. Any thread.
bool areFontsReady();

/// A text laid out for a box, to be measured and drawn (Canvas::drawText). One thread at a time. Text that is no UTF-8
/// is shown with replacement characters; a text longer than a sensible length is cut.
class TextLayout {
 public:
  /// `box` in points; a width or height that is not above 0 is no limit.
  TextLayout(std::string_view text, const TextStyle& style, Size box);
  ~TextLayout();
  TextLayout(TextLayout&&) noexcept;
  TextLayout& operator=(TextLayout&&) noexcept;

  /// The size of the set text in points, not above the box.
  Size size() const;
  int lineCount() const;

  struct State;
  const State& state() const { return *state_; }  ///< For Canvas.

 private:
  std::unique_ptr<State> state_;
};

/// The height in points that `text` needs when it is broken into lines of at most `width` points; not rounded. 0 for an
/// empty text.
double heightOfText(std::string_view text, const Font& font, double width);

}  // namespace kesu
