#include "message_ui/MessageCell.h"

#include <kesu/ui/Label.h>

#include <memory>
#include <utility>

#include "drawing/Canvas.h"
#include "uikit/Animator.h"
#include "uikit/ViewDrawing.h"

namespace kesu {
namespace {

constexpr double kFadeSeconds = 0.25;
constexpr double kScrimOpacity = 0.82;         // A white title stays legible on a white picture.
constexpr double kScrimOpacityAtTitle = 0.55;  // Where the title begins: a long one reaches high into the picture.
constexpr double kPlaceholderOpacity = 0.08;   // Faint: most pictures arrive within a second.
constexpr double kOutlineOpacity = 0.16;
constexpr Size kOutline{112.0, 84.0};
constexpr const char* kNoMessagesText = "No messages to show.";

/// Fades from one colour at its upper edge to another at its lower one.
class GradientView : public View {
 public:
  GradientView(const Rect& frame, const Color& top, const Color& bottom) : View(frame), top_(top), bottom_(bottom) {}

  void draw(Canvas& canvas) const override { canvas.fillGradient(ViewDrawing::presentedBounds(*this), top_, bottom_); }

 private:
  Color top_;
  Color bottom_;
};

/// Keeps the place of a picture that is missing, or has not arrived: a faint face with the outline of a picture in its
/// middle, where the face is high enough. `ink` is dark on light cards and light on dark ones.
class PicturePlaceholder : public View {
 public:
  PicturePlaceholder(const Rect& frame, const Color& ink) : View(frame), ink_(ink) {}

  void draw(Canvas& canvas) const override {
    const Rect box = ViewDrawing::presentedBounds(*this);
    canvas.fill(box, ink_.withAlpha(kPlaceholderOpacity));
    if (box.height < 2.0 * kOutline.height) {
      return;
    }
    const Point middle = box.center();
    canvas.beginGroup();
    drawOutline(canvas, {middle.x - kOutline.width / 2.0, middle.y - kOutline.height / 2.0});
    canvas.endGroup(kOutlineOpacity);
  }

 private:
  // A frame, a sun, and two hills that the frame cuts off.
  void drawOutline(Canvas& canvas, Point corner) const {
    constexpr double kRadius = 12.0;
    const auto fillDisc = [&](Point center, double radius) {
      canvas.fill({center.x - radius, center.y - radius, 2.0 * radius, 2.0 * radius}, ink_, radius);
    };
    canvas.save();
    canvas.translate(corner.x, corner.y);
    const Rect box{0.0, 0.0, kOutline.width, kOutline.height};
    canvas.strokeInside(box, 6.0, ink_, kRadius);
    canvas.clip(box, kRadius);
    fillDisc({34.0, 30.0}, 10.0);
    fillDisc({32.0, 108.0}, 50.0);
    fillDisc({84.0, 106.0}, 64.0);
    canvas.restore();
  }

  Color ink_;
};

std::shared_ptr<Label> makeLabel(const Rect& frame, const std::string& text, const Font& font, const Color& color) {
  auto label = std::make_shared<Label>(frame);
  label->setText(text);
  label->setFont(font);
  label->setTextColor(color);
  label->setNumberOfLines(0);
  return label;
}

// What a message has chosen stays, legible or not; the default is white, where that can be read.
Color textColor(const std::optional<Color>& chosen, const Color& background) {
  return chosen.value_or(legibleColor(Color::white(), background));
}

}  // namespace

MessageCell::MessageCell(const InAppModel& model, const MessageMeasures& measures, const MessageFonts& fonts,
                         const Color& canvas) {
  const CellFrames frames = cellFrames(measures);
  setFrame({0.0, 0.0, kCardWidth, frames.height});
  addImage(model, frames, canvas);
  addTitle(model, frames, fonts.title, canvas);
  addMessage(model, frames, fonts.message, canvas);
}

void MessageCell::addImage(const InAppModel& model, const CellFrames& frames, const Color& canvas) {
  if (frames.image.isEmpty()) {
    return;
  }
  addSubview(std::make_shared<PicturePlaceholder>(frames.image, isLight(canvas) ? Color::black() : Color::white()));
  imageView_ = std::make_shared<ImageView>(frames.image);
  imageView_->setClipsToBounds(true);
  imageView_->setAlpha(0.0);
  imageView_->setAccessibility({AccessibilityInfo::Role::Image, model.title, ""});
  addSubview(imageView_);
}

void MessageCell::addTitle(const InAppModel& model, const CellFrames& frames, const Font& font, const Color& canvas) {
  if (frames.title.isEmpty()) {
    return;
  }
  const std::optional<Color> chosen = model.templateData ? model.templateData->chosenTitleColor() : std::nullopt;
  const bool isOverlaid = !frames.scrim.isEmpty();
  const Color color = textColor(chosen, isOverlaid ? Color::black() : canvas);
  if (isOverlaid) {
    addScrim(frames, isLight(color) ? Color::black() : Color::white());
  }
  auto label = makeLabel(frames.title, model.title, font, color);
  label->setAccessibility({AccessibilityInfo::Role::Heading, model.title, ""});
  addSubview(std::move(label));
}

void MessageCell::addScrim(const CellFrames& frames, const Color& shade) {
  const Color middle = shade.withAlpha(kScrimOpacityAtTitle);
  Rect above = frames.scrim;
  above.height = frames.title.y - above.y;
  Rect behind = frames.scrim;
  behind.y = frames.title.y;
  behind.height = frames.scrim.bottom() - behind.y;
  addSubview(std::make_shared<GradientView>(above, shade.withAlpha(0.0), middle));
  addSubview(std::make_shared<GradientView>(behind, middle, shade.withAlpha(kScrimOpacity)));
}

void MessageCell::addMessage(const InAppModel& model, const CellFrames& frames, const Font& font, const Color& canvas) {
  if (frames.message.isEmpty()) {
    return;
  }
  const std::optional<Color> chosen = model.templateData ? model.templateData->chosenMessageColor() : std::nullopt;
  auto label = makeLabel(frames.message, model.msg, font, textColor(chosen, canvas));
  label->setAccessibility({AccessibilityInfo::Role::Text, model.msg, ""});
  addSubview(std::move(label));
}

void MessageCell::showImage(ImagePtr image, bool fades) {
  if (imageView_ == nullptr || image == nullptr) {
    return;
  }
  imageView_->setImage(std::move(image));
  animate(fades ? kFadeSeconds : 0.0, [this] { imageView_->setAlpha(1.0); });
}

ViewPtr makeEmptyCell(double height) {
  auto cell = std::make_shared<View>(Rect{0.0, 0.0, kCardWidth, height});
  auto label = makeLabel(cell->bounds(), kNoMessagesText, emptyFont(), Color::black());
  const double textHeight = heightForText(kNoMessagesText, emptyFont(), kCardTextWidth);
  label->setFrame({0.0, (height - textHeight) / 2.0, kCardWidth, textHeight});
  label->setAlignment(TextAlignment::Center);
  label->setAccessibility({AccessibilityInfo::Role::Text, kNoMessagesText, ""});
  View& shown = *label;
  cell->addSubview(std::move(label));
  cell->bringSubviewToFront(shown);
  return cell;
}

}  // namespace kesu
