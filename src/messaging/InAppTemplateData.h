#pragma once

#include <kesu/foundation/Value.h>
#include <kesu/graphics/Color.h>
#include <kesu/graphics/Geometry.h>
#include <kesu/graphics/Image.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "foundation/Mutex.h"
#include "messaging/MessageImageLoader.h"

namespace kesu {

/// The visual parameters of a message: picture, colours and buttons. A value: copies share the downloaded picture only.
/// Texts that are missing, or of another type, are "". Main thread, unless a comment says otherwise.
class InAppTemplateData {
 public:
  InAppTemplateData() = default;

  /// Reads what the service sent; an empty dictionary leaves everything unset, the flag too. With `loadDefaults` every
  /// colour is its default instead of the message's. [initWithDictionary:loadDefaults:]
  InAppTemplateData(const Dictionary& dictionary, bool loadDefaults);

  const std::string& imageURL() const { return imageURL_; }
  std::int64_t imageWidth() const { return imageWidth_; }    ///< As the message says; may be any number.
  std::int64_t imageHeight() const { return imageHeight_; }  ///< As the message says; may be any number.
  bool textOverlapsImage() const { return textOverlapsImage_; }
  void setTextOverlapsImage(bool overlaps) { textOverlapsImage_ = overlaps; }

  /// Returns whether the message names a picture or carries one.
  bool hasPicture() const { return !(imageURL_.empty() && optionalBase64Image_.empty()); }

  /// Returns the width and height that the message names. [imageSize]
  Size imageSize() const { return {static_cast<double>(imageWidth_), static_cast<double>(imageHeight_)}; }

  /// Return the message's colour, white without one; nothing when its text names no colour.
  /// Kept: white is for a missing text only, messages rely on it. [titleColor], [messageColor], [canvasColor]
  std::optional<Color> titleColor() const { return colorOf(titleColorHex_); }
  std::optional<Color> messageColor() const { return colorOf(msgColor_); }
  std::optional<Color> canvasColor() const { return colorOf(canvasBgColor_); }

  /// Return the colour that the message itself has chosen; nothing where a default is shown.
  std::optional<Color> chosenTitleColor() const { return hasChosen(titleColorHex_) ? titleColor() : std::nullopt; }
  std::optional<Color> chosenMessageColor() const { return hasChosen(msgColor_) ? messageColor() : std::nullopt; }
  std::optional<Color> chosenCanvasColor() const { return hasChosen(canvasBgColor_) ? canvasColor() : std::nullopt; }
  std::optional<Color> chosenButtonTitleColorAtIndex(std::size_t index) const;

  /// Return the number of buttons, and what belongs to the button at an index from 0. An index without a button, and a
  /// button that lacks the entry, give nothing, "" or white, as each says. [buttonCount]
  std::size_t buttonCount() const { return buttons_.size(); }
  std::optional<std::string> buttonTitleAtIndex(std::size_t index) const;
  std::string buttonActionAtIndex(std::size_t index) const;  ///< "" when there is none.

  /// Nothing without such a button; "0x09b6ee" by default.
  std::optional<Color> buttonBackgroundAtIndex(std::size_t index) const;

  /// Returns the picture that the message carries within itself as a "data:" URL; null for none. Decodes: never on the
  /// main thread (post it to the image worker, with a copy of this object). [base64Image]
  ImagePtr base64Image() const;

  /// Returns the picture that was fetched from imageURL; null before. Any thread. [downloadedImage]
  ImagePtr downloadedImage() const;

  /// Calls `handler` with the picture at imageURL: synchronously when it was fetched before; else ON THE IMAGE WORKER,
  /// once it was fetched, with null if it cannot be. This object may be destroyed meanwhile.
  /// [downloadImageWithCompletionHandler:]
  void downloadImageWithCompletionHandler(MessageImageLoader& loader, MessageImageLoader::Handler handler) const;

  // Owed to the agreed interface; no caller inside the library.

  const std::string& optionalBase64Image() const { return optionalBase64Image_; }
  const std::string& titleColorHex() const { return titleColorHex_; }
  const std::string& msgColor() const { return msgColor_; }
  const Array& buttons() const { return buttons_; }  ///< Each an array: title, action, background, ..., title colour.
  const std::string& canvasBgColor() const { return canvasBgColor_; }
  /// White by default; nothing when the text passes isValidHexadecimalString() and names no colour.
  /// Kept: of three entries the last is the background, so that title and background have one colour.
  std::optional<Color> buttonTitleColorAtIndex(std::size_t index) const;
  bool shouldLoadFromDefaults() const { return shouldLoadFromDefaults_; }
  const std::string& templateID() const { return templateID_; }  ///< Not read from the message.
  void setTemplateID(std::string templateID) { templateID_ = std::move(templateID); }

 private:
  /// The picture, shared with downloads that are under way.
  struct Download {
    Mutex mutex;
    ImagePtr image KESU_GUARDED_BY(mutex);
  };

  bool hasChosen(const std::string& text) const { return !shouldLoadFromDefaults_ && !text.empty(); }
  std::optional<Color> colorOf(const std::string& text) const;
  const std::string* buttonTitleColorText(std::size_t index) const;
  const Array* button(std::size_t index) const;

  std::string imageURL_;
  std::int64_t imageWidth_ = 0;
  std::int64_t imageHeight_ = 0;
  std::string optionalBase64Image_;
  std::string titleColorHex_;
  std::string msgColor_;
  Array buttons_;
  std::string templateID_;
  std::string canvasBgColor_;
  bool textOverlapsImage_ = false;
  bool shouldLoadFromDefaults_ = false;
  std::shared_ptr<Download> download_ = std::make_shared<Download>();
};

}  // namespace kesu
