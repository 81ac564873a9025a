#pragma once

#include <kesu/graphics/Color.h>
#include <kesu/graphics/Font.h>
#include <kesu/graphics/Geometry.h>

#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

namespace kesu {

// The geometry of a message's card: pure functions, in points. Any thread, except that measuring a text needs the fonts
// (drawing/TextLayout.h). None of them returns not-a-number, whatever a message says.

inline constexpr Rect kScreenBounds{0.0, 0.0, 1920.0, 1080.0};
inline constexpr double kCardWidth = 580.0;
inline constexpr double kCardTextWidth = 557.0;
inline constexpr double kCardGap = 8.0;
inline constexpr double kCardButtonRadius = 6.0;
inline constexpr double kBarHeight = 80.0;  ///< Of the row of action buttons, and of the paging bar.

inline Font titleFont() {
  return {"HelveticaNeue-Light", 34.0};
}
inline Font messageFont() {
  return {"HelveticaNeue-Light", 24.0};
}
inline Font actionFont() {
  return {"HelveticaNeue-Light", 30.0};
}
inline Font emptyFont() {
  return {"HelveticaNeue-Light", 18.0};
}
inline Font counterFont() {
  return {"HelveticaNeue-Regular", 18.0};
}
inline Font arrowFont() {
  return Font::system(36.0);
}

/// What a message's parts measure.
struct MessageMeasures {
  double imageHeight = 0.0;             ///< Of the picture at the card's width; 0 without one.
  std::optional<double> titleHeight;    ///< Nothing for an empty title.
  std::optional<double> messageHeight;  ///< Nothing for an empty text.
  bool textOverlapsImage = false;       ///< The title lies over the picture, where that has room for all of it.
};

/// Returns the height of the text broken at `width`, rounded up, plus 1; 0 when text or font is missing.
/// [heightForText:font:withinWidth:]
double heightForText(std::optional<std::string_view> text, const std::optional<Font>& font, double width);

/// Returns the size at this width with the same aspect ratio. Empty for sizes that are not positive; the height is
/// clamped to what can be scrolled through. [clippedSizeFromImageSize:scaledToWidth:]
Size clippedSizeFromImageSize(Size image, double width);

/// Returns the height of the whole message. [calculateContentHeight]
double calculateContentHeight(const MessageMeasures& measures);

/// Returns the height that the screen has room for, besides the bars. [calculateVisibleHeight]
double calculateVisibleHeight(double screenHeight, bool hasButtons);

/// Returns the height at which the message is shown; the rest is scrolled to. [virtualHeight]
double virtualHeight(double contentHeight, double visibleHeight);

/// Returns the frames of a row of `count` action buttons in a bar of this width; of the first kMostActionButtons only,
/// since more would leave no room for any.
std::vector<Rect> actionButtonFrames(std::size_t count, double barWidth);
inline constexpr std::size_t kMostActionButtons = 32;

/// Returns the largest width of a button's title that is not cut at the bar's ends while the button is `scale` times as
/// large.
double actionTitleWidth(const Rect& button, double barWidth, double scale);

/// Returns what the bar's ends leave of a button, from its upper left corner, while it is `scale` times as large.
Rect uncutPart(const Rect& button, double barWidth, double scale);

/// The frames of the paging bar's arrows and of its text, in a bar of this width.
struct PagingFrames {
  Rect previous;
  Rect next;
  Rect label;
};
PagingFrames pagingFrames(double barWidth);

/// The frames of a message's parts in its row, which is calculateContentHeight() high. Empty for parts that it lacks.
struct CellFrames {
  Rect image;
  Rect scrim;  ///< What dims the picture behind a title that lies over it; empty for any other.
  Rect title;
  Rect message;
  double height = 0.0;
};
CellFrames cellFrames(const MessageMeasures& measures);

/// Returns `wanted` when it is legible on `background`, else black or white, whichever contrasts more.
Color legibleColor(const Color& wanted, const Color& background);

/// Returns white; a dark colour if the colours that are set are legible on that one only.
Color legibleBackground(const std::optional<Color>& one, const std::optional<Color>& other);

/// Returns whether dark text is easier to read on this colour than light text.
bool isLight(const Color& color);

}  // namespace kesu
