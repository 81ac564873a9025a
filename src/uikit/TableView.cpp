#include <kesu/ui/TableView.h>

#include <algorithm>
#include <cmath>
#include <memory>

#include "drawing/Canvas.h"
#include "uikit/Animator.h"
#include "uikit/ViewDrawing.h"

namespace kesu {
namespace {

constexpr std::size_t kMostRows = 10'000;  // More than can be scrolled through with a remote.
constexpr double kHighestRow = 1e6;        // The sum of all rows is exact in a double.
constexpr double kStep = 120.0;            // Of one press of an arrow, in points.
constexpr double kScrollSeconds = 0.25;
constexpr double kFadeHeight = 56.0;
constexpr double kIndicatorWidth = 4.0;
constexpr double kFocusedIndicatorWidth = 8.0;
constexpr double kFocusSeconds = 0.2;
constexpr Color kIndicatorColor{0.5, 0.5, 0.5, 0.75};  // Visible on light and dark backgrounds.
constexpr double kIndicatorMargin = 6.0;
constexpr double kShortestIndicator = 32.0;

/// Covers an edge at which rows are cut off with the table's background, fading towards the middle.
class Fade : public View {
 public:
  explicit Fade(bool isAtTop) : isAtTop_(isAtTop) { setUserInteractionEnabled(false); }

  void draw(Canvas& canvas) const override {
    const Color color = superview() != nullptr ? superview()->backgroundColor() : Color::clear();
    if (color.alpha >= 1.0) {
      canvas.fillGradient(ViewDrawing::presentedBounds(*this), color.withAlpha(isAtTop_ ? 1.0 : 0.0),
                          color.withAlpha(isAtTop_ ? 0.0 : 1.0));
    }
  }

 private:
  bool isAtTop_;
};

bool isLight(const Color& color) {
  return color.alpha > 0.5 && 0.3 * color.red + 0.6 * color.green + 0.1 * color.blue > 0.5;
}

double sensibleHeight(double height) {
  return height > 0.0 ? std::min(height, kHighestRow) : 0.0;
}

}  // namespace

TableView::TableView(const Rect& frame)
    : View(frame),
      content_(std::make_shared<View>()),
      topFade_(std::make_shared<Fade>(true)),
      bottomFade_(std::make_shared<Fade>(false)),
      indicator_(std::make_shared<View>()) {
  setClipsToBounds(true);
  indicator_->setUserInteractionEnabled(false);
  indicator_->setBackgroundColor(kIndicatorColor);
  for (const ViewPtr& part : {content_, topFade_, bottomFade_, indicator_}) {
    addSubview(part);
  }
  scroll(0.0);
}

void TableView::setDataSource(TableViewDataSource* source) {
  source_ = source;
  reloadData();
}

void TableView::reloadData() {
  content_->removeAllSubviews();
  rowTops_.clear();
  contentHeight_ = 0.0;
  const double width = bounds().width;
  TableViewDataSource* const asked = source_;
  const std::size_t rows = asked != nullptr ? std::min(asked->numberOfRows(), kMostRows) : 0;
  for (std::size_t row = 0; row < rows && source_ == asked; ++row) {
    const double height = sensibleHeight(asked->heightOfRow(row));
    const ViewPtr cell = source_ == asked ? asked->cellForRow(row, width) : nullptr;
    if (source_ == asked) {
      addRow(cell, height);
    }
  }
  scroll(offset_);
}

void TableView::addRow(const ViewPtr& cell, double height) {
  if (cell != nullptr) {
    cell->setFrame({0.0, contentHeight_, bounds().width, height});
    content_->addSubview(cell);
  }
  rowTops_.push_back(contentHeight_);
  contentHeight_ += height;
}

void TableView::setScrollOffset(double offset, bool animated) {
  if (animated) {
    animate(kScrollSeconds, [&] { scroll(offset); });
  } else {
    scroll(offset);
  }
}

void TableView::scrollToRow(std::size_t row, bool animated) {
  if (row < rowTops_.size()) {
    setScrollOffset(rowTops_[row], animated);
  }
}

bool TableView::canBecomeFocused() const {
  return largestOffset() > 0.0;
}

bool TableView::handleArrow(RemoteButton arrow) {
  const bool isVertical = arrow == RemoteButton::Up || arrow == RemoteButton::Down;
  const double wanted = std::clamp(offset_ + (arrow == RemoteButton::Up ? -kStep : kStep), 0.0, largestOffset());
  if (!isVertical || wanted == offset_) {
    return false;
  }
  setScrollOffset(wanted, true);
  return true;
}

void TableView::didUpdateFocus() {
  const Color outstanding = isLight(backgroundColor()) ? Color::black() : Color::white();
  indicator_->setBackgroundColor(isFocused() ? outstanding.withAlpha(kIndicatorColor.alpha) : kIndicatorColor);
  animate(kFocusSeconds, [this] { placeIndicator(); });
}

void TableView::sizeDidChange() {
  scroll(offset_);
}

double TableView::largestOffset() const {
  return std::ceil(std::max(0.0, contentHeight_ - bounds().height));
}

/// Moves everything to its place for an offset.
void TableView::scroll(double offset) {
  offset_ = std::isnan(offset) ? 0.0 : std::clamp(offset, 0.0, largestOffset());
  const Rect box = bounds();
  const double fadeHeight = std::min(kFadeHeight, box.height / 4.0);
  content_->setFrame({0.0, -offset_, box.width, contentHeight_});
  topFade_->setFrame({0.0, 0.0, box.width, fadeHeight});
  topFade_->setAlpha(offset_ / kFadeHeight);
  bottomFade_->setFrame({0.0, box.height - fadeHeight, box.width, fadeHeight});
  bottomFade_->setAlpha((largestOffset() - offset_) / kFadeHeight);
  placeIndicator();
}

void TableView::placeIndicator() {
  const Rect box = bounds();
  const double track = std::max(0.0, box.height - 2.0 * kIndicatorMargin);
  const double share = contentHeight_ > 0.0 ? box.height / contentHeight_ : 1.0;
  const double length = std::min(track, std::max(kShortestIndicator, track * share));
  const double part = largestOffset() > 0.0 ? offset_ / largestOffset() : 0.0;
  const double width = isFocused() ? kFocusedIndicatorWidth : kIndicatorWidth;
  indicator_->setCornerRadius(width / 2.0);
  indicator_->setFrame(
      {box.width - kIndicatorMargin - width, kIndicatorMargin + (track - length) * part, width, length});
  indicator_->setAlpha(largestOffset() > 0.0 ? 1.0 : 0.0);
}

}  // namespace kesu
