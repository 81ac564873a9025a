#pragma once

#include <kesu/graphics/Color.h>
#include <kesu/graphics/Font.h>
#include <kesu/graphics/Geometry.h>

#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

namespace kesu {

// Where everything in a message's card lies: pure functions, in points. Any thread, except that measuring a text needs
// the fonts (graphics/TextLayout.h). None of them answers not-a-number, whatever a message says.

inline constexpr Rect kScreenBounds{0.0, 0.0, 1920.0, 1080.0};
inline constexpr double kCardWidth = 580.0;
inline constexpr double kCardTextWidth = 557.0;
inline constexpr double kCardGap = 8.0;
inline constexpr double kCardButtonRadius = 6.0;
inline constexpr double kBarHeight = 80.0;  ///< Of the row of action buttons, and of the paging bar.

inline const Font kTitleFont{"HelveticaNeue-Light", 34.0};
inline const Font kMessageFont{"HelveticaNeue-Light", 24.0};
inline const Font kActionFont{"HelveticaNeue-Light", 30.0};
inline const Font kEmptyFont{"HelveticaNeue-Light", 18.0};
inline const Font kCounterFont{"HelveticaNeue-Regular", 18.0};
inline const Font kArrowFont = Font::system(36.0);

/// More lines of a title end in an ellipsis, and take no more room.
inline constexpr int kTitleLines = 5;

/// What a message's parts measure.
struct MessageMeasures {
  double imageHeight = 0.0;             ///< Of the picture at the card's width; 0 without one.
  std::optional<double> titleHeight;    ///< Nothing for an empty title.
  std::optional<double> messageHeight;  ///< Nothing for an empty text.
  bool textOverlapsImage = false;       ///< The title lies over the picture.
};

/// [heightForText:font:withinWidth:] 0 when text or font is missing, else the height of the text broken at `width`,
/// rounded up, plus 1.
double heightForText(std::optional<std::string_view> text, const std::optional<Font>& font, double width);

/// The height that a title takes: heightForText, but of kTitleLines lines at most.
double titleHeight(std::string_view title, const Font& font);

/// [clippedSizeFromImageSize:scaledToWidth:] The size at this width with the same shape. Empty for sizes that are no
/// size; a height is held below any that somebody would scroll through.
Size clippedSizeFromImageSize(Size image, double width);

/// [calculateContentHeight] All that the message needs.
double calculateContentHeight(const MessageMeasures& measures);

/// [calculateVisibleHeight] What the screen has room for, beside the bars.
double calculateVisibleHeight(double screenHeight, bool hasButtons);

/// [virtualHeight] The height at which the message is shown; the rest is scrolled to.
double virtualHeight(double contentHeight, double visibleHeight);

/// The frames of a row of `count` action buttons in a bar of this width.
/// More than kMostActionButtons would leave no room for any: the first ones are shown.
std::vector<Rect> actionButtonFrames(std::size_t count, double barWidth);
inline constexpr std::size_t kMostActionButtons = 32;

/// How wide the title of such a button may be, so that it is not cut at the bar's ends while the button is `scale`
/// times as large.
double actionTitleWidth(const Rect& button, double barWidth, double scale);

/// What the bar's ends leave of such a button, from its upper left corner, while it is `scale` times as large.
Rect uncutPart(const Rect& button, double barWidth, double scale);

/// Where the paging bar's arrows and its text lie in a bar of this width.
struct PagingFrames {
  Rect previous;
  Rect next;
  Rect label;
};
PagingFrames pagingFrames(double barWidth);

/// Where the parts of a message lie in its row, which is calculateContentHeight() high. Empty for parts that it lacks.
struct CellFrames {
  Rect image;
  Rect scrim;  ///< What dims the picture behind a title that lies over it.
  Rect title;
  Rect message;
  double height = 0.0;
};
CellFrames cellFrames(const MessageMeasures& measures);

/// `wanted` when it can be told from `background`, else black or white, whichever is farther from it.
Color legibleColor(const Color& wanted, const Color& background);

/// Whether dark text is easier to read on this colour than light text.
bool isLight(const Color& color);

}  // namespace kesu
