// Fuzzes: messaging
#include <cstddef>
#include <cstdint>
#include <string>

#include "Require.h"
#include "messaging/InAppModel.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string json(reinterpret_cast<const char*>(data), size);
  for (const bool loadDefaults : {false, true}) {
    const kesu::InAppModel model({{"templateId", "p_temp_1"}, {"templateData", json}}, loadDefaults);
    const kesu::InAppTemplateData& look = *model.templateData;
    for (std::size_t i = 0; i <= look.buttonCount(); ++i) {
      static_cast<void>(look.buttonTitleAtIndex(i));
      static_cast<void>(look.buttonActionAtIndex(i));
      static_cast<void>(look.buttonBackgroundAtIndex(i));
      kesu::fuzz::require(!look.shouldLoadFromDefaults() || look.buttonTitleColorAtIndex(i) == kesu::Color::white());
    }
    static_cast<void>(look.titleColor());
    static_cast<void>(look.messageColor());
    static_cast<void>(look.canvasColor());
  }
  return 0;
}
