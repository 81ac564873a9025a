// Fuzzes: foundation
#include <cstdint>
#include <cstdlib>

#include "foundation/PropertyList.h"

// Whatever can be read can be written and read again, except for what the standard form refuses. Texts are compared,
// for not-a-number equals nothing.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes{reinterpret_cast<const char*>(data), size};
  for (const auto form : {kesu::PropertyListForm::Standard, kesu::PropertyListForm::Escaped}) {
    const auto value = kesu::parsePropertyList(bytes, form);
    const auto list = value ? kesu::writePropertyList(*value, form) : std::nullopt;
    if (value && !list && form == kesu::PropertyListForm::Escaped) {
      std::abort();
    }
    const auto again = list ? kesu::parsePropertyList(*list, form) : std::nullopt;
    if (list && (!again || kesu::writePropertyList(*again, form) != list)) {
      std::abort();
    }
  }
  return 0;
}
