#include "messaging/KeptSize.h"

namespace kesu {
namespace {

constexpr std::size_t kMarkupBytes = 20;  // "<string></string>", line end and tabs.

}  // namespace

std::size_t keptSize(const Value& value) {
  std::size_t size = kMarkupBytes;
  if (const std::string* text = value.text()) {
    size += text->size();
  } else if (const Array* array = value.array()) {
    for (const Value& element : *array) {
      size += keptSize(element);
    }
  } else if (const Dictionary* dictionary = value.dictionary()) {
    for (const auto& [key, content] : *dictionary) {
      size += kMarkupBytes + key.size() + keptSize(content);
    }
  }
  return size;
}

}  // namespace kesu
