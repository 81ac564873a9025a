#include "foundation/Keepable.h"

#include <string>
#include <string_view>

namespace kesu {
namespace {

constexpr std::size_t kNonCharacterBytes = 3;  // U+FFFE and U+FFFF in UTF-8.

bool isNonCharacter(std::string_view text) {
  return text.starts_with("\xEF\xBF\xBE") || text.starts_with("\xEF\xBF\xBF");
}

bool isRefusedControl(char character) {
  return static_cast<unsigned char>(character) < 0x20 && character != '\t' && character != '\n' && character != '\r';
}

std::string keepableText(std::string_view text) {
  std::string kept;
  kept.reserve(text.size());
  for (std::size_t i = 0; i < text.size();) {
    if (isNonCharacter(text.substr(i, kNonCharacterBytes))) {
      i += kNonCharacterBytes;
      continue;
    }
    if (!isRefusedControl(text[i])) {
      kept.push_back(text[i]);
    }
    ++i;
  }
  return kept;
}

Value keepableArray(const Array& array) {
  Array kept;
  kept.reserve(array.size());
  for (const Value& element : array) {
    if (!element.isNull()) {
      kept.push_back(keepableCopy(element));
    }
  }
  return kept;
}

Value keepableDictionary(const Dictionary& dictionary) {
  Dictionary kept;
  kept.reserve(dictionary.size());
  for (const auto& [key, value] : dictionary) {
    if (!value.isNull()) {
      kept.set(keepableText(key), keepableCopy(value));
    }
  }
  return kept;
}

}  // namespace

Value keepableCopy(const Value& value) {
  if (const Array* array = value.array()) {
    return keepableArray(*array);
  }
  if (const Dictionary* dictionary = value.dictionary()) {
    return keepableDictionary(*dictionary);
  }
  if (const std::string* text = value.text()) {
    return keepableText(*text);
  }
  return value.isNull() ? Value("") : value;
}

}  // namespace kesu
