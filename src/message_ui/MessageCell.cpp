#include "message_ui/MessageCell.h"

#include <kesu/ui/Label.h>

#include <memory>
#include <utility>

#include "message_ui/GradientView.h"
#include "message_ui/PicturePlaceholder.h"
#include "uikit/Animator.h"

namespace kesu {
namespace {

constexpr double kFadeSeconds = 0.25;
constexpr double kScrimOpacity = 0.82;
constexpr double kScrimOpacityAtTitle = 0.55;  // Where the title begins: a long one stands high in the picture.
constexpr const char* kNoMessagesText = "No messages to show.";

std::shared_ptr<Label> makeLabel(const Rect& frame, const std::string& text, const Font& font, const Color& color) {
  auto label = std::make_shared<Label>(frame);
  label->setText(text);
  label->setFont(font);
  label->setTextColor(color);
  label->setNumberOfLines(0);
  return label;
}

Color wantedColor(const std::optional<InAppTemplateData>& data,
                  std::optional<Color> (InAppTemplateData::*color)() const) {
  return data ? ((*data).*color)().value_or(Color::white()) : Color::white();
}

}  // namespace

MessageCell::MessageCell(const InAppModel& model, const MessageMeasures& measures, const MessageFonts& fonts,
                         const Color& canvas) {
  const CellFrames frames = cellFrames(measures);
  setFrame({0.0, 0.0, kCardWidth, frames.height});
  addImage(model, frames, canvas);
  addTitle(model, measures, frames, fonts.title, canvas);
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

void MessageCell::addTitle(const InAppModel& model, const MessageMeasures& measures, const CellFrames& frames,
                           const Font& font, const Color& canvas) {
  if (frames.title.isEmpty()) {
    return;
  }
  const Color wanted = wantedColor(model.templateData, &InAppTemplateData::titleColor);
  const bool isOverlaid = measures.textOverlapsImage;
  if (isOverlaid) {
    const Color shade = isLight(wanted) ? Color::black() : Color::white();
    addScrim(frames, shade);
  }
  auto label = makeLabel(frames.title, model.title, font, isOverlaid ? wanted : legibleColor(wanted, canvas));
  label->setNumberOfLines(isOverlaid ? 0 : kTitleLines);
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
  const Color wanted = wantedColor(model.templateData, &InAppTemplateData::messageColor);
  auto label = makeLabel(frames.message, model.msg, font, legibleColor(wanted, canvas));
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
  auto label = makeLabel(cell->bounds(), kNoMessagesText, kEmptyFont, Color::black());
  const double textHeight = heightForText(kNoMessagesText, kEmptyFont, kCardTextWidth);
  label->setFrame({0.0, (height - textHeight) / 2.0, kCardWidth, textHeight});
  label->setAlignment(TextAlignment::Center);
  label->setAccessibility({AccessibilityInfo::Role::Text, kNoMessagesText, ""});
  View& shown = *label;
  cell->addSubview(std::move(label));
  cell->bringSubviewToFront(shown);
  return cell;
}

}  // namespace kesu
