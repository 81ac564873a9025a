#include "message_ui/MessageLog.h"

#include <string>

#include "foundation/Describe.h"
#include "foundation/Json.h"
#include "foundation/Objects.h"
#include "services/MessageKeys.h"
#include "support/KesuPriorityLogger.h"

namespace kesu {
namespace {

constexpr int kLevel = 3;

std::string entry(const Dictionary& dictionary, std::string_view key) {
  return describe(dictionary.find(key));
}

int integerEntry(const Dictionary& dictionary, std::string_view key) {
  return static_cast<int>(integerIn(dictionary, key));
}

std::string element(const Array& button, std::size_t index) {
  return describe(index < button.size() ? &button[index] : nullptr);
}

void logButton(const Value& entryOfButton) {
  const Array button = entryOfButton.array() != nullptr ? *entryOfButton.array() : Array();
  KESU_LOG(kLevel, "Button title = %s, deep-link URL = %s, buttonBgColor = %s, buttonTextColor = %s",
           element(button, 0).c_str(), element(button, 1).c_str(), element(button, 2).c_str(),
           describe(button.empty() ? nullptr : &button.back()).c_str());
}

void logTemplate(const Dictionary& data) {
  KESU_LOG(kLevel, "image source URL = %s,imageWidth = %d,imageHeight = %d,msgColor = %s,titleColor = %s",
           entry(data, kImageUrlKey).c_str(), integerEntry(data, kImageWidthKey), integerEntry(data, kImageHeightKey),
           entry(data, kMessageColorKey).c_str(), entry(data, kTitleColorKey).c_str());
  const Value* buttons = data.find(kButtonsKey);
  if (const Array* entries = buttons != nullptr ? buttons->array() : nullptr) {
    for (const Value& button : *entries) {
      logButton(button);
    }
  }
}

}  // namespace

void logMessageContent(const Dictionary& body) {
  if (!KesuPriorityLogger::sharedLogger().shows(kLevel)) {
    return;
  }
  const Value* value = body.find(kPayloadKey);
  const Dictionary payload = value != nullptr && value->dictionary() != nullptr ? *value->dictionary() : Dictionary();
  KESU_LOG(kLevel, "title = %s , message = %s, template-id = %s", entry(payload, kMessageTitleKey).c_str(),
           entry(payload, kMessageTextKey).c_str(), entry(payload, kTemplateIdKey).c_str());
  const std::string* json = payload.findText(kTemplateDataKey);
  const auto data = json != nullptr ? parseJson(*json) : std::nullopt;
  logTemplate(data && data->dictionary() != nullptr ? *data->dictionary() : Dictionary());
}

}  // namespace kesu
