#pragma once

#include <kesu/ui/ImageView.h>

#include <memory>

#include "message_ui/MessageLayout.h"
#include "messaging/InAppModel.h"

namespace kesu {

/// The fonts of a message's texts.
struct MessageFonts {
  Font title = kTitleFont;
  Font message = kMessageFont;
};

/// A message in its table's row: picture, title and text, in the message's colours as far as they can be read. Main
/// thread.
class MessageCell : public View {
 public:
  /// `canvas` is what the cell lies on. Where there is to be a picture its place is kept, quietly filled.
  MessageCell(const InAppModel& model, const MessageMeasures& measures, const MessageFonts& fonts, const Color& canvas);

  /// Puts the picture in, gradually or at once. Null leaves the place as it is.
  void showImage(ImagePtr image, bool fades);

 private:
  void addImage(const InAppModel& model, const CellFrames& frames, const Color& canvas);
  void addTitle(const InAppModel& model, const MessageMeasures& measures, const CellFrames& frames, const Font& font,
                const Color& canvas);
  void addScrim(const CellFrames& frames, const Color& shade);
  void addMessage(const InAppModel& model, const CellFrames& frames, const Font& font, const Color& canvas);

  std::shared_ptr<ImageView> imageView_;
};

/// What a table's row holds when there is no message: the text "No messages to show." in a row of this height.
ViewPtr makeEmptyCell(double height);

}  // namespace kesu
