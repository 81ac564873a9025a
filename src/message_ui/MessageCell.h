#pragma once

#include <kesu/ui/ImageView.h>

#include <memory>

#include "message_ui/MessageLayout.h"
#include "messaging/InAppModel.h"

namespace kesu {

/// The fonts of a message's texts.
struct MessageFonts {
  Font title = titleFont();
  Font message = messageFont();
};

/// The table's row for a message: picture, title and text, in the message's colours. Main thread.
class MessageCell : public View {
 public:
  /// `canvas` is the colour behind the cell. The place of a picture is filled with a placeholder.
  MessageCell(const InAppModel& model, const MessageMeasures& measures, const MessageFonts& fonts, const Color& canvas);

  /// Shows the picture, fading it in or at once. Null leaves the placeholder.
  void showImage(ImagePtr image, bool fades);

 private:
  void addImage(const InAppModel& model, const CellFrames& frames, const Color& canvas);
  void addTitle(const InAppModel& model, const CellFrames& frames, const Font& font, const Color& canvas);
  void addScrim(const CellFrames& frames, const Color& shade);
  void addMessage(const InAppModel& model, const CellFrames& frames, const Font& font, const Color& canvas);

  std::shared_ptr<ImageView> imageView_;
};

/// Returns the table's row when there is no message: the text "No messages to show." in a row of this height.
ViewPtr makeEmptyCell(double height);

}  // namespace kesu
