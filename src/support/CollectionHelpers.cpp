#include <kesu/support/CollectionHelpers.h>

#include <utility>

#include "foundation/Json.h"

namespace kesu {

Dictionary dictionaryByReplacingNilValuesWithEmptyString(const Dictionary& dictionary) {
  Dictionary result;
  result.reserve(dictionary.size());
  for (const auto& [key, value] : dictionary) {
    if (value.isNull()) {
      result.set(key, "");
    } else if (const Dictionary* inner = value.dictionary()) {
      result.set(key, dictionaryByReplacingNilValuesWithEmptyString(*inner));
    } else {
      result.set(key, value);
    }
  }
  return result;
}

std::optional<std::string> serializeDictionaryToString(const Dictionary& dictionary) {
  std::string text;
  return writeJson(dictionary, text) == JsonStatus::Ok ? std::optional(std::move(text)) : std::nullopt;
}

std::string concatenated(std::string receiver, std::initializer_list<OptionalText> texts) {
  for (const OptionalText& text : texts) {
    receiver += text.value_or("");
  }
  return receiver;
}

std::string concat(std::string receiver, std::initializer_list<OptionalText> texts) {
  for (const OptionalText& text : texts) {
    if (!text) {
      break;
    }
    receiver += *text;
  }
  return receiver;
}

void block(const std::function<void()>& block) {
  block();
}

MainLoop::TimerId block(std::function<void()> block, double delaySeconds) {
  return MainLoop::shared().schedule(delaySeconds, false, std::move(block));
}

}  // namespace kesu
