#include "foundation/Objects.h"

namespace kesu {

std::optional<std::string> textOf(const Object& object) {
  const std::string* text = object ? object->text() : nullptr;
  return text != nullptr ? std::optional(*text) : std::nullopt;
}

void setUnlessNil(Dictionary& dictionary, std::string_view key, const Object& object) {
  if (object) {
    dictionary.set(key, *object);
  }
}

}  // namespace kesu
