#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "drawing/TextLayout.h"

struct _cairo;
struct _PangoContext;
struct _PangoLayout;
struct _PangoLayoutLine;

namespace kesu {

/// Returns a text that can be typeset: UTF-8 without control characters, short enough to be laid out within a frame or
/// two, and with break opportunities in endless words. `lines` as in TextStyle: line ends become spaces in a single
/// line.
std::string typesettableText(std::string_view text, int lines);

/// A text typeset by Pango. Lock the Typesetter's mutex to make, draw or destroy one.
struct PangoText {
  PangoText(_PangoContext* context, const std::string& text, const TextStyle& style, Size box);
  ~PangoText();
  PangoText(const PangoText&) = delete;
  PangoText& operator=(const PangoText&) = delete;

  /// Draws the lines that are not clipped, with the source of the context; the box is at its origin.
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
