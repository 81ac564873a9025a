#include "foundation/Objects.h"

namespace kesu {

std::optional<std::string> textOf(const Object& object) {
  const std::string* text = object ? object->text() : nullptr;
  return text != nullptr ? std::optional(*text) : std::nullopt;
}

Object valueIn(const Dictionary& dictionary, std::string_view key) {
  const Value* value = dictionary.find(key);
  return value != nullptr ? Object(*value) : Object(nil);
}

std::string textIn(const Dictionary& dictionary, std::string_view key) {
  const std::string* text = dictionary.findText(key);
  return text != nullptr ? *text : std::string();
}

std::int64_t integerIn(const Dictionary& dictionary, std::string_view key) {
  const Value* value = dictionary.find(key);
  return value != nullptr ? value->integerValue() : 0;
}

void setUnlessNil(Dictionary& dictionary, std::string_view key, const Object& object) {
  if (object) {
    dictionary.set(key, *object);
  }
}

}  // namespace kesu
