#include "messaging/InAppTemplateData.h"

#include <utility>

#include "drawing/DataUrl.h"
#include "drawing/Pictures.h"
#include "foundation/Objects.h"
#include "messaging/HexColor.h"
#include "services/MessageKeys.h"

namespace kesu {
namespace {

constexpr Color kDefaultBackground{9.0 / 255.0, 182.0 / 255.0, 238.0 / 255.0, 1.0};  // 0x09b6ee
// Places in the array that is a button.
constexpr std::size_t kTitleEntry = 0;
constexpr std::size_t kActionEntry = 1;
constexpr std::size_t kBackgroundEntry = 2;
constexpr std::size_t kEntriesWithColors = 3;  // The last one is the title's colour.

// The text at a place of a button's entry, or null.
const std::string* entryText(const Array& entry, std::size_t place) {
  return place < entry.size() ? entry[place].text() : nullptr;
}

// The text of a colour; null when the entry is too short to have colours, or the text names the default.
const std::string* colorText(const Array& entry, std::size_t place) {
  const std::string* text = entry.size() >= kEntriesWithColors ? entryText(entry, place) : nullptr;
  return text != nullptr && isValidHexadecimalString(*text) ? text : nullptr;
}

}  // namespace

InAppTemplateData::InAppTemplateData(const Dictionary& dictionary, bool loadDefaults) {
  if (dictionary.empty()) {
    return;
  }
  imageURL_ = textIn(dictionary, kImageUrlKey);
  shouldLoadFromDefaults_ = loadDefaults;
  imageWidth_ = integerIn(dictionary, kImageWidthKey);
  imageHeight_ = integerIn(dictionary, kImageHeightKey);
  optionalBase64Image_ = textIn(dictionary, kInlineImageKey);
  titleColorHex_ = textIn(dictionary, kTitleColorKey);
  msgColor_ = textIn(dictionary, kMessageColorKey);
  if (const Value* buttons = dictionary.find(kButtonsKey); buttons != nullptr && buttons->array() != nullptr) {
    buttons_ = *buttons->array();
  }
  canvasBgColor_ = textIn(dictionary, kCanvasColorKey);
}

std::optional<Color> InAppTemplateData::colorOf(const std::string& text) const {
  return hasChosen(text) ? colorFromHexadecimalString(text) : Color::white();
}

// The entry of a button; null without such a button, or where the message has no array.
const Array* InAppTemplateData::button(std::size_t index) const {
  return index < buttons_.size() ? buttons_[index].array() : nullptr;
}

std::optional<std::string> InAppTemplateData::buttonTitleAtIndex(std::size_t index) const {
  const Array* entry = button(index);
  const std::string* title = entry != nullptr ? entryText(*entry, kTitleEntry) : nullptr;
  return title != nullptr ? std::optional(*title) : std::nullopt;
}

std::string InAppTemplateData::buttonActionAtIndex(std::size_t index) const {
  const Array* entry = button(index);
  const std::string* action = entry != nullptr ? entryText(*entry, kActionEntry) : nullptr;
  return action != nullptr ? *action : std::string();
}

// The text of a button's title colour; null for the default.
const std::string* InAppTemplateData::buttonTitleColorText(std::size_t index) const {
  const Array* entry = shouldLoadFromDefaults_ ? nullptr : button(index);
  return entry != nullptr ? colorText(*entry, entry->size() - 1) : nullptr;
}

std::optional<Color> InAppTemplateData::buttonTitleColorAtIndex(std::size_t index) const {
  const std::string* text = buttonTitleColorText(index);
  return text != nullptr ? colorFromHexadecimalString(*text) : Color::white();
}

std::optional<Color> InAppTemplateData::chosenButtonTitleColorAtIndex(std::size_t index) const {
  const std::string* text = buttonTitleColorText(index);
  return text != nullptr ? colorFromHexadecimalString(*text) : std::nullopt;
}

std::optional<Color> InAppTemplateData::buttonBackgroundAtIndex(std::size_t index) const {
  if (index >= buttons_.size()) {
    return std::nullopt;
  }
  const Array* entry = shouldLoadFromDefaults_ ? nullptr : button(index);
  const std::string* text = entry != nullptr ? colorText(*entry, kBackgroundEntry) : nullptr;
  return text != nullptr ? colorFromHexadecimalString(*text) : kDefaultBackground;
}

ImagePtr InAppTemplateData::base64Image() const {
  const std::optional<std::string> bytes = dataOfUrl(optionalBase64Image_);
  return bytes ? decodeImage(*bytes).image : nullptr;
}

ImagePtr InAppTemplateData::downloadedImage() const {
  const MutexLock lock(download_->mutex);
  return download_->image;
}

void InAppTemplateData::downloadImageWithCompletionHandler(MessageImageLoader& loader,
                                                           MessageImageLoader::Handler handler) const {
  if (ImagePtr image = downloadedImage()) {
    handler(std::move(image));
    return;
  }
  loader.load(imageURL_, [download = download_, handler = std::move(handler)](ImagePtr image) {
    {
      const MutexLock lock(download->mutex);
      download->image = image;
    }
    handler(std::move(image));
  });
}

}  // namespace kesu
