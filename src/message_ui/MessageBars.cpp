#include "message_ui/MessageBars.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>

#include "foundation/NumberText.h"
#include "message_ui/ActionButton.h"

namespace kesu {
namespace {

constexpr double kButtonBorder = 1.0;
constexpr double kCounterScale = 0.85;
constexpr double kArrowFace = 0.2;  // How much of the arrow's colour is in the face behind it.
constexpr Color kDarkBar{0.11, 0.12, 0.14, 1.0};
constexpr Color kLightBar{0.95, 0.95, 0.97, 1.0};

/// An arrow has no face of its own: while it is focused it gets a faint one, so that it differs from the other arrow.
/// The face is opaque, since the button's shadow lies behind it.
class ArrowButton : public KesuCustomBtn {
 public:
  ArrowButton(const Rect& frame, const Color& face) : KesuCustomBtn(frame), face_(face) {}

  void didUpdateFocus() override {
    KesuCustomBtn::didUpdateFocus();
    setBackgroundColor(isFocused() ? face_ : Color::clear());
  }

 private:
  Color face_;
};

Color mixed(const Color& one, const Color& other, double part) {
  const auto mix = [part](double from, double to) { return from + (to - from) * part; };
  return {mix(one.red, other.red), mix(one.green, other.green), mix(one.blue, other.blue), 1.0};
}

std::uint32_t channel(double part, double alpha) {
  return static_cast<std::uint32_t>(std::lround(std::clamp(part, 0.0, 1.0) * alpha * 255.0));
}

void dressButton(KesuCustomBtn& button, const Font& font, const Color& border) {
  button.setup();
  button.setFont(font);
  button.setCornerRadius(kCardButtonRadius);
  button.setBorder(kButtonBorder, border);
  button.setClipsToBounds(true);
}

// Extends under what lies above: else a seam shows where edges fall between pixels.
Rect withOverlap(const Rect& frame) {
  constexpr double kOverlap = 2.0;
  return frame.isEmpty() ? frame : Rect{frame.x, frame.y - kOverlap, frame.width, frame.height + kOverlap};
}

std::string counterText(std::int64_t index, std::size_t count) {
  return "Showing " + decimal(index + 1) + " of " + decimal(static_cast<std::int64_t>(count)) + " in-app messages";
}

bool hasPaging(const BarContent& content) {
  return content.count > (content.isEmpty ? 1U : 0U);
}

Color barColor(const BarContent& content, const Color& text) {
  return content.bar.value_or(isLight(text) ? kDarkBar : kLightBar);
}

}  // namespace

ImagePtr imageWithColor(const Color& color) {
  const double alpha = std::clamp(color.alpha, 0.0, 1.0);
  const std::uint32_t pixel = channel(1.0, alpha) << 24U | channel(color.red, alpha) << 16U |
                              channel(color.green, alpha) << 8U | channel(color.blue, alpha);
  return std::make_shared<const Image>(1, 1, std::vector<std::uint32_t>{pixel});
}

// Backgrounds lie under the focused action button and its shadow, the counter and the arrows over them.
MessageBars::MessageBars(Pressed actionPressed, Pressed arrowPressed)
    : actionPressed_(std::move(actionPressed)), arrowPressed_(std::move(arrowPressed)) {
  bottomBar_->addSubview(pagingBackground_);
  bottomBar_->addSubview(buttonBackground_);
  bottomBar_->addSubview(buttonBar_);
  bottomBar_->addSubview(pagingBar_);
  pagingBar_->addSubview(counter_);
  counter_->setFont(counterFont());
  counter_->setAlignment(TextAlignment::Left);
  counter_->setMinimumScaleFactor(kCounterScale);
}

MessageBars::~MessageBars() {
  dropButtons();
  for (const auto& arrow : {previous_, next_}) {
    if (arrow != nullptr) {
      arrow->setAction({});
    }
  }
}

// Buttons may outlive the bars, with a card that is sliding out: they must not call any more.
void MessageBars::dropButtons() {
  for (const auto& button : buttons_) {
    button->setAction({});
  }
  buttons_.clear();
}

void MessageBars::show(const BarContent& content) {
  showButtons(content);
  const double top = buttonBar_->bounds().height;
  const double pagingHeight = hasPaging(content) ? kBarHeight : 0.0;
  pagingBar_->setFrame({0.0, top, kCardWidth, pagingHeight});
  pagingBackground_->setFrame(withOverlap(pagingBar_->frame()));
  Rect frame = bottomBar_->frame();
  frame.width = kCardWidth;
  frame.height = top + pagingHeight;
  bottomBar_->setFrame(frame);
  showPaging(content);
}

// A text that names no colour leaves the button without a face: then a title without a colour of its own must be
// legible on the card.
void MessageBars::dressFace(ActionButton& button, const BarContent& content, std::size_t index) {
  const std::optional<Color> face = content.data->buttonBackgroundAtIndex(index);
  const Color behind = face.value_or(content.canvas);
  const Color title = content.data->chosenButtonTitleColorAtIndex(index).value_or(legibleColor(Color::white(), behind));
  button.setTitleColor(title);
  button.setFace(imageWithColor(face.value_or(Color::clear())), legibleColor(title, behind));
}

void MessageBars::showButtons(const BarContent& content) {
  const std::size_t count = content.data != nullptr ? content.data->buttonCount() : 0;
  dropButtons();
  buttonBar_->removeAllSubviews();
  controlBar_ = nullptr;
  buttonBar_->setFrame({0.0, 0.0, kCardWidth, count > 0 ? kBarHeight : 0.0});
  buttonBackground_->setFrame(count > 0 ? withOverlap(buttonBar_->frame()) : Rect{});
  buttonBackground_->setBackgroundColor(content.canvas);
  if (count == 0) {
    return;
  }
  controlBar_ = std::make_shared<View>(buttonBar_->bounds());
  buttonBar_->addSubview(controlBar_);
  const Color border = isLight(content.canvas) ? Color::black().withAlpha(0.2) : Color::white().withAlpha(0.35);
  for (const Rect& frame : actionButtonFrames(count, kCardWidth)) {
    const std::size_t index = buttons_.size();
    auto button = std::make_shared<ActionButton>(frame);
    dressButton(*button, actionFont(), border);
    button->setTitle(content.data->buttonTitleAtIndex(index).value_or(""));
    dressFace(*button, content, index);
    button->setTag(static_cast<std::int64_t>(index));
    button->setAction(actionPressed_);
    button->setAccessibility({AccessibilityInfo::Role::Button, button->title(), ""});
    controlBar_->addSubview(button);
    buttons_.push_back(std::move(button));
  }
}

void MessageBars::showPaging(const BarContent& content) {
  const Color color = content.text.value_or(Color::white());
  const bool isShown = hasPaging(content);
  const Color bar = barColor(content, color);
  pagingBackground_->setBackgroundColor(bar);
  pagingBar_->setHidden(!isShown);
  counter_->setFrame(pagingFrames(kCardWidth).label);
  counter_->setHidden(content.isEmpty);
  counter_->setText(counterText(content.index, content.count));
  counter_->setTextColor(color);
  counter_->setAccessibility({AccessibilityInfo::Role::Text, counter_->text(), ""});
  const auto count = static_cast<std::int64_t>(content.count);
  showArrow(previous_, isShown && content.index > 0, kPreviousTag, color, bar);
  showArrow(next_, isShown && content.index + 1 < count, kNextTag, color, bar);
  for (const auto& button : buttons_) {
    const bool isLeft = button->frame().center().x < kCardWidth / 2.0;
    const auto& nearer = isLeft ? previous_ : next_;
    // An arrow may lie beside all buttons, where the window would not look for it.
    button->setWayDown(nearer != nullptr ? nearer : isLeft ? next_ : previous_);
  }
}

void MessageBars::showArrow(std::shared_ptr<KesuCustomBtn>& arrow, bool isShown, std::int64_t tag, const Color& color,
                            const Color& bar) {
  if (!isShown) {
    if (arrow != nullptr) {
      arrow->setAction({});
      arrow->removeFromSuperview();
      arrow = nullptr;
    }
    return;
  }
  if (arrow != nullptr) {
    return;  // The same view, which keeps the focus.
  }
  const bool isNext = tag == kNextTag;
  const PagingFrames frames = pagingFrames(kCardWidth);
  arrow = std::make_shared<ArrowButton>(isNext ? frames.next : frames.previous, mixed(bar, color, kArrowFace));
  dressButton(*arrow, arrowFont(), Color::clear());
  arrow->setTitle(isNext ? "\u276F" : "\u276E");
  arrow->setTitleColor(color);
  arrow->setBackgroundImage(imageWithColor(Color::clear()));
  arrow->setTag(tag);
  arrow->setAction(arrowPressed_);
  arrow->setAccessibility({AccessibilityInfo::Role::Button, isNext ? "Next message" : "Previous message", ""});
  pagingBar_->addSubview(arrow);
}

View* MessageBars::firstFocus() const {
  if (!buttons_.empty()) {
    return buttons_.front().get();
  }
  return next_ != nullptr ? next_.get() : previous_.get();
}

View* MessageBars::focusAfter(std::int64_t arrowTag) const {
  const auto& same = arrowTag == kNextTag ? next_ : previous_;
  const auto& other = arrowTag == kNextTag ? previous_ : next_;
  if (same != nullptr) {
    return same.get();
  }
  return other != nullptr ? other.get() : firstFocus();
}

}  // namespace kesu
