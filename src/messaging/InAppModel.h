#pragma once

#include <kesu/foundation/Value.h>

#include <optional>
#include <string>

#include "messaging/InAppTemplateData.h"

namespace kesu {

/// A full in-app message: its texts ("" for missing ones) and its looks. A plain value.
struct InAppModel {
  InAppModel() = default;

  /// Reads the message that the service sent ("payload" of a message body). An empty dictionary gives an empty model.
  /// "templateData" is a text that holds JSON itself; damaged, it gives template data with nothing set. Any thread.
  /// [initWithDictionary:loadDefaults:]
  InAppModel(const Dictionary& dictionary, bool loadDefaults);

  std::string msg;
  std::string title;
  std::string templateID;
  std::optional<InAppTemplateData> templateData;  ///< Nothing when the message has none.
};

}  // namespace kesu
