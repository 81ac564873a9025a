#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "graphics/TextLayout.h"

struct _cairo;
struct _PangoContext;
struct _PangoLayout;
struct _PangoLayoutLine;

namespace kesu {

/// A text as it can be set: UTF-8 without control characters, not longer than can be laid out within a frame or two,
/// and with places to break in words without end. `lines` as in TextStyle: line ends become spaces in a single line.
std::string settableText(std::string_view text, int lines);

/// A text that was set. Whoever makes, draws or destroys one holds the mutex of the TypeSetter.
struct TextLayout::State {
  State(_PangoContext* context, const std::string& text, const TextStyle& style, Size box);
  ~State();
  State(const State&) = delete;
  State& operator=(const State&) = delete;

  /// Draws the lines that are not clipped away, with the source of the drawing; the box begins at the origin.
  void draw(_cairo* cairo) const;

  struct Line {
    _PangoLayoutLine* glyphs;  // Belongs to the layout.
    double x;
    double baseline;
    double width;
    double height;
  };
  std::vector<Line> lines;
  Size size;

 private:
  void fitToWidth(const TextStyle& style, double width);
  void collectLines(const TextStyle& style, Size box);
  void align(TextAlignment alignment, double width);

  _PangoLayout* layout_;
};

}  // namespace kesu
