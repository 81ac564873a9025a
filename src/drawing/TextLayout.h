#pragma once

#include <kesu/graphics/Color.h>
#include <kesu/graphics/Font.h>
#include <kesu/graphics/Geometry.h>

#include <memory>
#include <string_view>

namespace kesu {

class TypesetText;

/// How a text is typeset.
struct TextStyle {
  Font font{};
  TextAlignment alignment = TextAlignment::Natural;
  int lines = 0;                    ///< Most lines; 0 is as many as there is height for.
  double minimumScaleFactor = 1.0;  ///< How far a single line may shrink before it is cut.
  bool hasNoEllipsis = false;       ///< Cut at the end without an ellipsis.

  friend bool operator==(const TextStyle&, const TextStyle&) = default;
};

/// Loads the drawing module and the fonts: about 25 ms, more than half a second while the system's caches are cold. Any
/// thread, best a worker; concurrent calls wait. Fonts are loaded implicitly by everything below. Without any font,
/// texts have sizes and show boxes; without a drawing module, they have none and fonts are never ready.
void prepareFonts();

/// Whether fonts are loaded. Any thread.
bool areFontsReady();

/// Releases the fonts and all texts without a TextLayout; the next text loads them again. Any thread.
void releaseFonts();

/// A text typeset for a box, to be measured and drawn (Canvas::drawText). One thread at a time, any. Invalid UTF-8 is
/// shown as replacement characters; a text longer than 32 kB, or 4 kB per line where lines are limited, or with more
/// than 1,000 line ends is cut. Texts that were typeset shortly before cost next to nothing.
class TextLayout {
 public:
  /// `box` in points; a width or height of 0 or less is no limit. There always is a first line.
  TextLayout(std::string_view text, const TextStyle& style, Size box);
  ~TextLayout();
  TextLayout(TextLayout&&) noexcept;
  TextLayout& operator=(TextLayout&&) noexcept;

  /// The size of the typeset text in points, clamped to the box.
  Size size() const;
  int lineCount() const;

  /// What the drawing module made of the text, for its canvas. Null without a module.
  const TypesetText* typeset() const { return typeset_.get(); }

 private:
  std::unique_ptr<TypesetText> typeset_;
};

/// The height in points of `text` broken into lines of at most `width` points; not rounded. 0 for an empty text.
double heightOfText(std::string_view text, const Font& font, double width);

}  // namespace kesu
