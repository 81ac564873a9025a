#include "message_ui/MessagePopup.h"

#include <string>
#include <utility>
#include <vector>

#include "uikit/GestureRecognizer.h"

namespace kesu {
namespace {

// The recognisers only watch the actions: the table may outlive its popup while it slides out.
std::shared_ptr<TableView> makeTable(double height, const std::weak_ptr<MessagePopup::Actions>& watched) {
  auto table = std::make_shared<TableView>(Rect{0.0, 0.0, kCardWidth, height});
  for (const SwipeDirection direction : {SwipeDirection::Left, SwipeDirection::Right}) {
    GestureRecognizer::add(
        *table, std::make_shared<SwipeGestureRecognizer>(direction, [direction, watched](GestureRecognizer&) {
          if (const auto actions = watched.lock()) {
            actions->swipe(direction);
          }
        }));
  }
  return table;
}

}  // namespace

const InAppTemplateData* MessageContent::templateData() const {
  return model != nullptr && model->templateData ? &*model->templateData : nullptr;
}

bool MessageContent::isEmpty() const {
  const InAppTemplateData* data = templateData();
  return model == nullptr || (model->title.empty() && model->msg.empty() &&
                              (data == nullptr || (!data->hasPicture() && data->buttonCount() == 0)));
}

MessagePopup::MessagePopup(MessageContent content, const MessageLooks& looks, Actions actions,
                           KesuPopoverDelegate& delegate)
    : content_(std::move(content)),
      looks_(looks),
      actions_(std::make_shared<Actions>(std::move(actions))),
      bars_(actions_->button, actions_->arrow) {
  measure();
  table_ = makeTable(virtualHeight(contentHeight(), visibleHeight()), actions_);
  showBars();
  const ViewPtr& bar = bars_.bottomBarView();
  bar->setFrame(bar->frame().movedBy(0.0, table_->bounds().height + kCardGap));
  controller_ = std::make_shared<KesuPopupController>(std::vector<ViewPtr>{table_, bar}, nullptr, &delegate);
  controller_->setScreenInsets(looks_.screenInsets);
  table_->setDataSource(this);
  showMessage();
}

MessagePopup::~MessagePopup() {
  table_->forgetDataSource();  // It keeps its rows while it slides out.
  controller_->setDelegate(nullptr);
}

void MessagePopup::present(std::function<void()> completion) {
  controller_->presentPopupControllerAnimated(true, [completion = std::move(completion)](bool) { completion(); });
  focus(bars_.firstFocus());
}

void MessagePopup::show(MessageContent content, std::int64_t arrowTag) {
  if (content.model != content_.model) {  // The same one after a body that could not be fetched.
    picture_ = nullptr;
    pictureSize_ = {};
  }
  content_ = std::move(content);
  measure();
  const Window* window = controller_->applicationWindow();
  // Before the bars change: the focused arrow may be removed.
  const bool wasReading = window != nullptr && window->focusedView() == table_.get();
  const double barHeight = bars_.bottomBarView()->bounds().height;
  showBars();
  fitHeight(barHeight);
  showMessage();
  table_->scrollToRow(0, true);
  focus(wasReading && table_->canBecomeFocused() ? table_.get() : bars_.focusAfter(arrowTag));
}

bool MessagePopup::lacksPicture() const {
  const InAppTemplateData* data = content_.templateData();
  return data != nullptr && data->hasPicture() && picture_ == nullptr;
}

void MessagePopup::showPicture(const ImagePtr& picture) {
  picture_ = picture;
  if (measures_.imageHeight <= 0.0) {  // The message has not declared a size: the card grows now.
    pictureSize_ = {static_cast<double>(picture->width()), static_cast<double>(picture->height())};
    measure();
    fitHeight(bars_.bottomBarView()->bounds().height);
    table_->reloadData();
  } else if (cell_ != nullptr) {
    cell_->showImage(picture, true);
  }
}

void MessagePopup::showBars() {
  bars_.show({content_.templateData(), content_.index, content_.count, canvasColor(), looks_.text, looks_.bar,
              content_.isEmpty()});
}

void MessagePopup::showMessage() {
  table_->setBackgroundColor(canvasColor());
  table_->reloadData();
  controller_->popupView().setAccessibility(
      {AccessibilityInfo::Role::Dialog, content_.isEmpty() ? std::string() : content_.model->title, ""});
}

ViewPtr MessagePopup::loadCurrentTemplate() {
  cell_ = nullptr;
  if (content_.isEmpty()) {
    return makeEmptyCell(contentHeight());
  }
  cell_ = std::make_shared<MessageCell>(*content_.model, measures_, fonts(), canvasColor());
  cell_->showImage(picture_, false);
  return cell_;
}

void MessagePopup::measure() {
  measures_ = {};
  const InAppTemplateData* data = content_.templateData();
  if (data != nullptr && data->hasPicture()) {
    const double declared = clippedSizeFromImageSize(data->imageSize(), kCardWidth).height;
    const double arrived = clippedSizeFromImageSize(pictureSize_, kCardWidth).height;
    measures_.imageHeight = declared > 0.0 ? declared : arrived;
  }
  const InAppModel* model = content_.model.get();
  if (model != nullptr && !model->title.empty()) {
    measures_.titleHeight = heightForText(model->title, fonts().title, kCardTextWidth);
  }
  if (model != nullptr && !model->msg.empty()) {
    measures_.messageHeight = heightForText(model->msg, fonts().message, kCardTextWidth);
  }
  measures_.textOverlapsImage = textOverlapsImage();
}

double MessagePopup::visibleHeight() const {
  const InAppTemplateData* data = content_.templateData();
  const double room = kScreenBounds.height - looks_.screenInsets.top - looks_.screenInsets.bottom;
  return calculateVisibleHeight(room, data != nullptr && data->buttonCount() > 0);
}

bool MessagePopup::textOverlapsImage() const {
  const InAppTemplateData* data = content_.templateData();
  return data != nullptr && data->textOverlapsImage();
}

void MessagePopup::fitHeight(double barHeightBefore) {
  const double height = virtualHeight(contentHeight(), visibleHeight());
  if (table_->bounds().height != height) {
    controller_->updatePopoverHeight(height);
  } else if (bars_.bottomBarView()->bounds().height != barHeightBefore) {  // Buttons came or went.
    controller_->redock();
  }
}

// Without a view of its own to focus a message may still be scrolled.
void MessagePopup::focus(View* view) {
  if (Window* window = controller_->applicationWindow()) {
    window->setFocusedView(view != nullptr ? view : table_.get());
  }
}

// White, unless the message says otherwise, or has chosen colours that cannot be read on white.
Color MessagePopup::canvasColor() const {
  const InAppTemplateData* data = content_.isEmpty() ? nullptr : content_.templateData();
  if (data == nullptr) {
    return Color::white();
  }
  return data->chosenCanvasColor().value_or(legibleBackground(data->chosenTitleColor(), data->chosenMessageColor()));
}

MessageFonts MessagePopup::fonts() const {
  MessageFonts fonts;
  fonts.title.size *= looks_.textScale;
  fonts.message.size *= looks_.textScale;
  return fonts;
}

}  // namespace kesu
