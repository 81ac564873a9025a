#include "message_ui/MessageLayout.h"

#include <algorithm>
#include <cmath>

#include "drawing/TextLayout.h"

namespace kesu {
namespace {

constexpr double kVisiblePart = static_cast<double>(0.9F);  // Kept: a single-precision number, widened.
constexpr double kTallestImage = 16384.0;                   // 15 screens: a service's typing error, not a picture.
constexpr double kActionButtonHeight = 74.0;
constexpr double kActionButtonTop = 2.0;
constexpr double kSideMargin = (kCardWidth - kCardTextWidth) / 2.0;
constexpr double kNoTitleHeight = 24.0;
constexpr double kOverlaidTitleMargin = 16.0;
constexpr double kScrimAbove = 72.0;      // The gradient begins well above the title, so that no edge shows.
constexpr double kLegibleContrast = 1.6;  // Low: the service chose the colours, only invisible texts are corrected.
constexpr double kLightLuminance = 0.4;
constexpr Color kInk{0.09, 0.1, 0.12, 1.0};

// The relative luminance of an sRGB colour, from 0 to 1, as contrast ratios are defined on it.
double luminance(const Color& color) {
  const auto linear = [](double part) {
    return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
  };
  return 0.2126 * linear(color.red) + 0.7152 * linear(color.green) + 0.0722 * linear(color.blue);
}

double contrast(double one, double other) {
  return (std::max(one, other) + 0.05) / (std::min(one, other) + 0.05);
}

bool isLegible(const Color& color, const Color& background) {
  return contrast(luminance(color), luminance(background)) >= kLegibleContrast;
}

double textPart(const MessageMeasures& measures) {
  return measures.messageHeight ? *measures.messageHeight + kCardGap : kCardGap;
}

bool isTitleOverImage(const MessageMeasures& measures) {
  return measures.textOverlapsImage && measures.titleHeight &&
         *measures.titleHeight + kCardGap + kOverlaidTitleMargin <= measures.imageHeight;
}

bool hasOwnTitle(const MessageMeasures& measures) {
  return measures.titleHeight.has_value() && !isTitleOverImage(measures);
}

double titlePart(const MessageMeasures& measures) {
  return hasOwnTitle(measures) ? *measures.titleHeight + kCardGap + kCardGap : kNoTitleHeight;
}

void placeOverImage(CellFrames& frames, double height) {
  const double bottom = frames.image.bottom() - kOverlaidTitleMargin;
  frames.title = {kSideMargin, bottom - height, kCardTextWidth, height};
  const double top = std::max(0.0, frames.title.y - kScrimAbove);
  frames.scrim = {0.0, top, kCardWidth, frames.image.bottom() - top};
}

}  // namespace

double heightForText(std::optional<std::string_view> text, const std::optional<Font>& font, double width) {
  return text && font ? std::ceil(heightOfText(*text, *font, width)) + 1.0 : 0.0;
}

Size clippedSizeFromImageSize(Size image, double width) {
  if (!(image.width > 0.0 && image.height > 0.0)) {
    return {};
  }
  const double factor = width / image.width;
  const double height = factor * image.height;
  return std::isfinite(height) && height > 0.0 ? Size{width, std::min(height, kTallestImage)} : Size{};
}

double calculateContentHeight(const MessageMeasures& measures) {
  return measures.imageHeight + kCardGap + textPart(measures) + titlePart(measures) + kCardGap;
}

double calculateVisibleHeight(double screenHeight, bool hasButtons) {
  return screenHeight * kVisiblePart - (hasButtons ? kBarHeight + kBarHeight : kBarHeight);
}

double virtualHeight(double contentHeight, double visibleHeight) {
  return std::min(contentHeight, visibleHeight);
}

std::vector<Rect> actionButtonFrames(std::size_t count, double barWidth) {
  const std::size_t shown = std::min(count, kMostActionButtons);
  const auto number = static_cast<double>(shown);
  const double width = std::max(0.0, (barWidth - (number + 1.0) * kCardGap) / std::max(1.0, number));
  std::vector<Rect> frames;
  for (std::size_t i = 0; i < shown; ++i) {
    const auto index = static_cast<double>(i);
    frames.push_back({(index + 1.0) * kCardGap + index * width, kActionButtonTop, width, kActionButtonHeight});
  }
  return frames;
}

double actionTitleWidth(const Rect& button, double barWidth, double scale) {
  const double center = button.center().x;
  const double toNearerEnd = std::min(center, barWidth - center);
  return std::max(0.0, std::min(button.width, 2.0 * toNearerEnd / std::max(1.0, scale)) - 2.0 * kCardGap);
}

Rect uncutPart(const Rect& button, double barWidth, double scale) {
  const double center = button.center().x;
  const double half = button.width / 2.0;
  const double left = std::min(half, center / scale);
  const double right = std::min(half, (barWidth - center) / scale);
  return {half - left, 0.0, left + right, button.height};
}

PagingFrames pagingFrames(double barWidth) {
  constexpr Size kArrow{96.0, 64.0};
  constexpr double kLabelOffset = 125.0;  // From the middle to where the text begins: about half of its length.
  constexpr double kLabelHeight = 40.0;
  constexpr double kArrowMargin = 16.0;  // A focused arrow, which is larger, still lies inside the bar.
  const double arrowTop = (kBarHeight - kArrow.height) / 2.0;
  const Rect previous{kArrowMargin, arrowTop, kArrow.width, kArrow.height};
  const Rect next = previous.movedBy(barWidth - kArrowMargin - previous.right(), 0.0);
  const double left = barWidth / 2.0 - kLabelOffset;
  return {previous, next, {left, (kBarHeight - kLabelHeight) / 2.0, next.x - kCardGap - left, kLabelHeight}};
}

// The gaps add up to what calculateContentHeight() reserves.
CellFrames cellFrames(const MessageMeasures& measures) {
  CellFrames frames;
  frames.height = calculateContentHeight(measures);
  frames.image = {0.0, 0.0, kCardWidth, measures.imageHeight};
  double top = measures.imageHeight + kNoTitleHeight;
  if (hasOwnTitle(measures)) {
    const double above = measures.messageHeight ? 2.0 * kCardGap : 2.5 * kCardGap;
    frames.title = {kSideMargin, measures.imageHeight + above, kCardTextWidth, *measures.titleHeight};
    top = frames.title.bottom() + kCardGap;
  } else if (measures.titleHeight) {
    placeOverImage(frames, *measures.titleHeight);
  }
  if (measures.messageHeight) {
    frames.message = {kSideMargin, top, kCardTextWidth, *measures.messageHeight};
  }
  return frames;
}

Color legibleColor(const Color& wanted, const Color& background) {
  if (isLegible(wanted, background)) {
    return wanted;
  }
  return isLight(background) ? kInk : Color::white();
}

Color legibleBackground(const std::optional<Color>& one, const std::optional<Color>& other) {
  const auto shows = [&](const Color& background) {
    return (!one || isLegible(*one, background)) && (!other || isLegible(*other, background));
  };
  return !shows(Color::white()) && shows(kInk) ? kInk : Color::white();
}

bool isLight(const Color& color) {
  return luminance(color) > kLightLuminance;
}

}  // namespace kesu
