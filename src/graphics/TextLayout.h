#pragma once

#include <kesu/graphics/Color.h>
#include <kesu/graphics/Font.h>
#include <kesu/graphics/Geometry.h>

#include <memory>
#include <string_view>

struct _cairo;

namespace kesu {

/// How a text is set.
struct TextStyle {
  Font font{};
  TextAlignment alignment = TextAlignment::Natural;
  int lines = 0;                    ///< Most lines; 0 is as many as there is height for.
  double minimumScaleFactor = 1.0;  ///< How small a single line may become before it is cut.
  bool isSetSolid = false;          ///< Cut at the end without an ellipsis.

  friend bool operator==(const TextStyle&, const TextStyle&) = default;
};

/// Loads the fonts: about 15 ms, more than half a second while the system's caches are cold. Any thread, best a worker;
/// whoever comes while it is under way waits. Everything below does it when nobody has. Without any font, texts have
/// sizes and show boxes.
void prepareFonts();

/// Whether prepareFonts() has been here. Any thread.
bool areFontsReady();

/// Gives back the fonts and all texts that nobody holds; the next text loads them again. Any thread.
void releaseFonts();

/// A text laid out for a box, to be measured and drawn (Canvas::drawText). One thread at a time, any. Text that is no
/// UTF-8 is shown with replacement characters; a text longer than 32 kB, or 4 kB for each of limited lines, or with
/// more than 1,000 line ends is cut. Texts that were set shortly before cost next to nothing.
class TextLayout {
 public:
  /// `box` in points; a width or height that is not above 0 is no limit. There always is a first line.
  TextLayout(std::string_view text, const TextStyle& style, Size box);
  ~TextLayout();
  TextLayout(TextLayout&&) noexcept;
  TextLayout& operator=(TextLayout&&) noexcept;

  /// The size of the set text in points, not above the box.
  Size size() const;
  int lineCount() const;

  /// For Canvas: draws with the source of a Cairo drawing, the box beginning at its origin.
  void draw(_cairo* cairo) const;

  struct State;

 private:
  std::shared_ptr<State> state_;
};

/// The height in points that `text` needs when it is broken into lines of at most `width` points; not rounded. 0 for an
/// empty text.
double heightOfText(std::string_view text, const Font& font, double width);

}  // namespace kesu
