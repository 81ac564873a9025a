#pragma once

#include <kesu/graphics/Geometry.h>
#include <kesu/graphics/Image.h>
#include <kesu/ui/TableView.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

#include "message_ui/KesuPopupController.h"
#include "message_ui/MessageBars.h"
#include "message_ui/MessageCell.h"
#include "message_ui/MessageLayout.h"
#include "messaging/InAppModel.h"

namespace kesu {

/// What a popup shows: a message, and its place among the others.
struct MessageContent {
  std::shared_ptr<const InAppModel> model;  ///< Null for none.
  std::int64_t index = 0;                   ///< From 0.
  std::size_t count = 0;                    ///< Of messages; without any there is no paging bar.

  /// Picture, colours and buttons; null without any.
  const InAppTemplateData* templateData() const;
  /// Returns whether there is nothing to show: no text, no picture and no button.
  bool isEmpty() const;
};

/// How a popup looks, from its presentation to its end.
struct MessageLooks {
  EdgeInsets screenInsets;
  double textScale = 1.0;
  std::optional<Color> text;  ///< Of arrows and counter; see BarContent.
  std::optional<Color> bar;
};

/// Everything of a message that is on the screen: the card with its table, cell, bars and picture, and their heights.
/// Knows no inbox. Main thread.
///
/// One object per presentation. It may be destroyed while the card is sliding out: the views stay as they are, and
/// their buttons and swipes do nothing any more.
class MessagePopup final : public TableViewDataSource {
 public:
  /// Called for pressed action buttons (tag: the button's index), arrows (tag: kPreviousTag, kNextTag) and swipes.
  struct Actions {
    Button::Action button;
    Button::Action arrow;
    std::function<void(SwipeDirection)> swipe;
  };

  /// Typesets the message, which needs the fonts. `delegate` is called when the user has closed the popup; it must
  /// outlive this object.
  MessagePopup(MessageContent content, const MessageLooks& looks, Actions actions, KesuPopoverDelegate& delegate);
  ~MessagePopup() override;

  MessagePopup(const MessagePopup&) = delete;
  MessagePopup& operator=(const MessagePopup&) = delete;

  /// Slides the card in and focuses its first button; `completion` is called when it is in its place.
  void present(std::function<void()> completion);

  /// Replaces the message after paging with this arrow, resizes the card, and lets the focus stay on the arrow, or on
  /// the table if it was scrolled.
  void show(MessageContent content, std::int64_t arrowTag);

  /// Returns whether the message has a picture that was not shown yet.
  bool lacksPicture() const;
  /// Fades the picture in. The card grows for one whose size the message has not declared.
  void showPicture(const ImagePtr& picture);

  const std::shared_ptr<KesuPopupController>& controller() const { return controller_; }
  TableView& table() const { return *table_; }
  const MessageBars& bars() const { return bars_; }
  double contentHeight() const { return calculateContentHeight(measures_); }
  double visibleHeight() const;
  bool textOverlapsImage() const;  ///< As the template says, also without a picture.

  // The table has one row, which holds the message; it is made anew for each, so that nothing is reused.
  std::size_t numberOfRows() override { return 1; }
  double heightOfRow(std::size_t /*row*/) override { return contentHeight(); }
  ViewPtr cellForRow(std::size_t /*row*/, double /*width*/) override { return loadCurrentTemplate(); }

 private:
  void showBars();
  void showMessage();
  ViewPtr loadCurrentTemplate();
  void measure();
  void fitHeight(double barHeightBefore);
  void focus(View* view);
  Color canvasColor() const;
  MessageFonts fonts() const;

  MessageContent content_;
  MessageLooks looks_;
  std::shared_ptr<Actions> actions_;  // Watched by what may outlive this object.
  MessageMeasures measures_;
  ImagePtr picture_;  // What the cell shows, once it has arrived.
  Size pictureSize_;  // Of a picture whose message has not declared it.
  MessageBars bars_;
  std::shared_ptr<TableView> table_;
  std::shared_ptr<MessageCell> cell_;
  std::shared_ptr<KesuPopupController> controller_;  // Shared with what closes it.
};

}  // namespace kesu
