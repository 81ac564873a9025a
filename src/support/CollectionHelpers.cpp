#include <kesu/support/CollectionHelpers.h>

#include <utility>
#include <vector>

#include "foundation/Json.h"

namespace kesu {

// Does not recurse: a host's dictionary may be nested deeper than the stack is.
Dictionary dictionaryByReplacingNilValuesWithEmptyString(const Dictionary& dictionary) {
  Dictionary result = dictionary;
  std::vector<Dictionary*> work{&result};
  while (!work.empty()) {
    Dictionary& next = *work.back();
    work.pop_back();
    for (const auto& [key, value] : next) {
      if (value.isNull()) {
        next.set(key, "");  // In its place: nothing moves.
      } else if (value.dictionary() != nullptr) {
        work.push_back(next.find(key)->dictionary());
      }
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
