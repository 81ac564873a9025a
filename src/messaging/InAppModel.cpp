#include "messaging/InAppModel.h"

#include "foundation/Json.h"
#include "services/MessageKeys.h"

namespace kesu {
namespace {

constexpr std::string_view kTemplateWithTextOverImage = "p_temp_1";

InAppTemplateData templateDataOf(const std::string& json, bool loadDefaults) {
  const std::optional<Value> parsed = parseJson(json);
  const Dictionary* dictionary = parsed ? parsed->dictionary() : nullptr;
  return dictionary != nullptr ? InAppTemplateData(*dictionary, loadDefaults) : InAppTemplateData();
}

void readText(const Dictionary& dictionary, std::string_view key, std::string& text) {
  if (const std::string* found = dictionary.findText(key)) {
    text = *found;
  }
}

}  // namespace

InAppModel::InAppModel(const Dictionary& dictionary, bool loadDefaults) {
  readText(dictionary, kMessageTextKey, msg);
  readText(dictionary, kMessageTitleKey, title);
  readText(dictionary, kTemplateIdKey, templateID);
  if (const std::string* json = dictionary.findText(kTemplateDataKey)) {
    templateData = templateDataOf(*json, loadDefaults);
    templateData->setTextOverlapsImage(templateID == kTemplateWithTextOverImage);
  }
}

}  // namespace kesu
