#include "messaging/InAppModel.h"

#include "foundation/Json.h"
#include "foundation/Objects.h"
#include "services/MessageKeys.h"

namespace kesu {
namespace {

constexpr std::string_view kTemplateWithTextOverImage = "p_temp_1";  // Every other one has it below.

InAppTemplateData templateDataOf(const std::string& json, bool loadDefaults) {
  const std::optional<Value> parsed = parseJson(json);
  const Dictionary* dictionary = parsed ? parsed->dictionary() : nullptr;
  return dictionary != nullptr ? InAppTemplateData(*dictionary, loadDefaults) : InAppTemplateData();
}

}  // namespace

InAppModel::InAppModel(const Dictionary& dictionary, bool loadDefaults)
    : msg(textIn(dictionary, kMessageTextKey)),
      title(textIn(dictionary, kMessageTitleKey)),
      templateID(textIn(dictionary, kTemplateIdKey)) {
  if (const std::string* json = dictionary.findText(kTemplateDataKey)) {
    templateData = templateDataOf(*json, loadDefaults);
    templateData->setTextOverlapsImage(templateID == kTemplateWithTextOverImage);
  }
}

}  // namespace kesu
