// Fuzzes: foundation
#include <cstdint>

#include "Require.h"
#include "foundation/PropertyList.h"

// Whatever can be read can be written and read again, except for what the standard form refuses. Texts are compared,
// for not-a-number equals nothing.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes{reinterpret_cast<const char*>(data), size};
  for (const auto form : {kesu::PropertyListForm::Standard, kesu::PropertyListForm::Escaped}) {
    const auto value = kesu::parsePropertyList(bytes, form);
    const auto list = value ? kesu::writePropertyList(*value, form) : std::nullopt;
    kesu::fuzz::require(!value || list || form == kesu::PropertyListForm::Standard);
    const auto again = list ? kesu::parsePropertyList(*list, form) : std::nullopt;
    kesu::fuzz::require(!list || (again && kesu::writePropertyList(*again, form) == list));
  }
  return 0;
}
