#include "foundation/Keepable.h"

namespace kesu {
namespace {

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
      kept.set(key, keepableCopy(value));
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
  return value.isNull() ? Value("") : value;
}

}  // namespace kesu
